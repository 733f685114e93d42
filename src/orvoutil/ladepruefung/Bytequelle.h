#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace orvo::orvoutil {

/// Bytes at positions: those of a file, or of memory.
class Bytequelle {
public:
    virtual std::uint64_t groesse() const = 0;
    /// Reads bytes that lie before the end. Returns: false when they cannot be had.
    virtual bool lies(std::uint64_t ab, void* ziel, std::size_t anzahl) = 0;

protected:
    ~Bytequelle() = default;
};

/// A view of a source that never reads beyond its end, and keeps the blocks read last: whoever walks through a
/// table in small steps reads the source once per block.
class Sicht {
public:
    explicit Sicht(Bytequelle& quelle) : quelle_(quelle), groesse_(quelle.groesse()) {}

    std::uint64_t groesse() const { return groesse_; }
    bool reichtFuer(std::uint64_t ab, std::uint64_t anzahl) const {
        return anzahl <= groesse_ && ab <= groesse_ - anzahl;
    }

    /// Returns: false, with the target in any state, when the source ends before or cannot be read.
    bool lies(std::uint64_t ab, void* ziel, std::size_t anzahl) {
        if (!reichtFuer(ab, anzahl))
            return false;
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

private:
    static constexpr std::size_t kBlock = 4096;
    static constexpr std::uint64_t kKeiner = ~std::uint64_t{0};

    struct Block {
        std::uint64_t nummer = kKeiner;
        unsigned char bytes[kBlock];
    };

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
    Block bloecke_[4];
};

} // namespace orvo::orvoutil
