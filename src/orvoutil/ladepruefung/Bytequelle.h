#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <span>

namespace orvo::orvoutil {

/// Bytes at positions: those of a file, or of memory.
class Bytequelle {
public:
    virtual std::uint64_t groesse() const = 0;
    /// Reads bytes that lie before the end. Returns: false when they cannot be had.
    virtual bool lies(std::uint64_t ab, void* ziel, std::size_t anzahl) = 0;
    /// The first bytes, if so many of them are in memory anyway. They stay as they are while the source lives.
    virtual std::span<const unsigned char> anfang() const { return {}; }

protected:
    ~Bytequelle() = default;
};

/// A view of a source that never reads beyond its end. What the source has in memory is taken from there; of the
/// rest the blocks read last are kept, so whoever walks through a table in small steps reads the source once per block.
class Sicht {
public:
    explicit Sicht(Bytequelle& quelle)
        : quelle_(quelle), groesse_(quelle.groesse()), anfang_(quelle.anfang()) {}

    std::uint64_t groesse() const { return groesse_; }
    bool reichtFuer(std::uint64_t ab, std::uint64_t anzahl) const {
        return anzahl <= groesse_ && ab <= groesse_ - anzahl;
    }

    /// Where the bytes stand in memory; null when they have to be read.
    const unsigned char* imSpeicher(std::uint64_t ab, std::uint64_t anzahl) const {
        return anzahl <= anfang_.size() && ab <= anfang_.size() - anzahl ? anfang_.data() + ab : nullptr;
    }

    /// Returns: false, with the target in any state, when the source ends before or cannot be read.
    bool lies(std::uint64_t ab, void* ziel, std::size_t anzahl) {
        if (const unsigned char* const bytes = imSpeicher(ab, anzahl)) {
            std::memcpy(ziel, bytes, anzahl);
            return true;
        }
        return reichtFuer(ab, anzahl) && liesBloecke(ab, ziel, anzahl);
    }

private:
    static constexpr std::size_t kBlock = 4096;
    static constexpr std::uint64_t kKeiner = ~std::uint64_t{0};

    struct Block {
        std::uint64_t nummer = kKeiner;
        unsigned char bytes[kBlock];
    };

    bool liesBloecke(std::uint64_t ab, void* ziel, std::size_t anzahl) {
        auto* schreibe = static_cast<unsigned char*>(ziel);
        while (anzahl > 0) {
            const unsigned char* const block = hole(ab / kBlock);
            if (!block)
                return false;
            const auto im = static_cast<std::size_t>(ab % kBlock);
            const std::size_t teil = std::min(anzahl, kBlock - im);
            std::memcpy(schreibe, block + im, teil);
            schreibe += teil;
            ab += teil;
            anzahl -= teil;
        }
        return true;
    }

    const unsigned char* hole(std::uint64_t nummer) {
        Block& block = bloecke_[nummer % std::size(bloecke_)];
        if (block.nummer != nummer) {
            block.nummer = kKeiner;
            const std::uint64_t ab = nummer * kBlock;
            const auto anzahl = static_cast<std::size_t>(std::min<std::uint64_t>(kBlock, groesse_ - ab));
            if (!quelle_.lies(ab, block.bytes, anzahl))
                return nullptr;
            block.nummer = nummer;
        }
        return block.bytes;
    }

    Bytequelle& quelle_;
    std::uint64_t groesse_;
    std::span<const unsigned char> anfang_;
    Block bloecke_[4];
};

} // namespace orvo::orvoutil
