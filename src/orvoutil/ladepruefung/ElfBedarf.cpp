#include <orvoutil/ladepruefung/ElfTabellen.h>

#include <orvoutil/Latin1.h>

#include <string>
#include <string_view>

namespace orvo::orvoutil {

namespace {

/// This tree's libraries, by what their names begin with; the number of the release follows.
constexpr std::string_view kEigene[] = {"liborvoplugin.so.", "liborvoutil.so."};
constexpr std::string_view kAusgabe = ORVO_AUSGABE;
constexpr Latin1Text kFremd{u8"für eine andere Ausgabe gebaut: braucht "};
constexpr Latin1Text kHier{u8", hier ist "};

/// A text of the string table, which is known to end there.
class Text {
public:
    Text(const ElfTabelle<char>& texte, std::uint64_t ab) : texte_(texte), ab_(ab) {}

    bool beginntMit(std::string_view anfang) const {
        for (std::size_t i = 0; i < anfang.size(); ++i)
            if (zeichen(i) != anfang[i])
                return false;
        return true;
    }

    /// What follows, but not more than a name that is worth reporting.
    std::string ab(std::size_t stelle) const {
        constexpr std::size_t kMaxRest = 32;
        std::string rest;
        while (rest.size() < kMaxRest && zeichen(stelle + rest.size()) != '\0')
            rest += zeichen(stelle + rest.size());
        return rest;
    }

private:
    char zeichen(std::size_t stelle) const { return texte_[ab_ + stelle]; }

    const ElfTabelle<char>& texte_;
    std::uint64_t ab_;
};

} // namespace

void pruefeBedarf(const ElfDynamik& dynamik) {
    const auto texte = dynamik.abbild().tabelle<char>(dynamik.verlangter(DT_STRTAB, "DT_STRTAB"),
                                                      dynamik.verlangter(DT_STRSZ, "DT_STRSZ"));
    for (std::uint64_t i = 0; i < dynamik.anzahl(); ++i) {
        const ElfW(Dyn) eintrag = dynamik.eintrag(i);
        if (eintrag.d_tag != DT_NEEDED)
            continue;
        const Text name(texte, eintrag.d_un.d_val);
        for (const std::string_view eigene : kEigene) {
            if (!name.beginntMit(eigene))
                continue;
            const std::string ausgabe = name.ab(eigene.size());
            if (ausgabe != kAusgabe)
                throw ElfMangel(kFremd.c_str() + std::string(eigene) + ausgabe + kHier.c_str() +
                                std::string(eigene).append(kAusgabe));
        }
    }
}

} // namespace orvo::orvoutil
