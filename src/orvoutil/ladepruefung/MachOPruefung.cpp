#include <orvoutil/ladepruefung/MachOPruefung.h>

#include <mach-o/fat.h>
#include <mach-o/loader.h>

#include <optional>

namespace orvo::orvoutil {

namespace {

#if defined(__aarch64__)
constexpr cpu_type_t kProzessor = CPU_TYPE_ARM64;
#else
constexpr cpu_type_t kProzessor = CPU_TYPE_X86_64;
#endif

constexpr std::uint32_t kMaxArchitekturen = 64;

/// The numbers of a universal file stand in the network's byte order.
std::uint32_t gedreht(std::uint32_t zahl) { return __builtin_bswap32(zahl); }

/// A part of a file.
struct Teil {
    std::uint64_t ab, groesse;

    bool reichtFuer(std::uint64_t stelle, std::uint64_t anzahl) const {
        return anzahl <= groesse && stelle <= groesse - anzahl;
    }
};

/// The part for this processor; the whole file when it is not a universal one.
std::optional<Teil> teilDesProzessors(Sicht& sicht) {
    fat_header kopf;
    if (!sicht.lies(0, &kopf, sizeof(kopf)) || gedreht(kopf.magic) != FAT_MAGIC)
        return Teil{0, sicht.groesse()};
    const std::uint32_t anzahl = gedreht(kopf.nfat_arch);
    for (std::uint32_t i = 0; i < anzahl && i < kMaxArchitekturen; ++i) {
        fat_arch architektur;
        if (!sicht.lies(sizeof(kopf) + std::uint64_t{i} * sizeof(architektur), &architektur,
                        sizeof(architektur)))
            return std::nullopt;
        if (static_cast<cpu_type_t>(gedreht(static_cast<std::uint32_t>(architektur.cputype))) == kProzessor)
            return Teil{gedreht(architektur.offset), gedreht(architektur.size)};
    }
    return std::nullopt;
}

std::string pruefeBefehle(Sicht& sicht, const Teil& teil, const mach_header_64& kopf) {
    if (!teil.reichtFuer(sizeof(kopf), kopf.sizeofcmds))
        return "abgeschnitten: Ladebefehle enden hinter der Datei";
    std::uint64_t ab = sizeof(kopf);
    const std::uint64_t ende = ab + kopf.sizeofcmds;
    for (std::uint32_t i = 0; i < kopf.ncmds; ++i) {
        load_command befehl;
        if (ende - ab < sizeof(befehl) || !sicht.lies(teil.ab + ab, &befehl, sizeof(befehl)) ||
            befehl.cmdsize < sizeof(befehl) || befehl.cmdsize > ende - ab)
            return "unsinniger Ladebefehl " + std::to_string(i);
        if (befehl.cmd == LC_SEGMENT_64) {
            segment_command_64 segment;
            if (befehl.cmdsize < sizeof(segment) || !sicht.lies(teil.ab + ab, &segment, sizeof(segment)))
                return "unsinniger Ladebefehl " + std::to_string(i);
            if (!teil.reichtFuer(segment.fileoff, segment.filesize))
                return "abgeschnitten: Segment " + std::to_string(i) + " endet hinter der Datei";
        }
        ab += befehl.cmdsize;
    }
    return {};
}

} // namespace

std::string pruefeMachO(Bytequelle& quelle) {
    Sicht sicht(quelle);
    const std::optional<Teil> teil = teilDesProzessors(sicht);
    if (!teil)
        return "Mach-O-Datei von einem anderen Prozessor";
    if (!sicht.reichtFuer(teil->ab, teil->groesse))
        return "abgeschnitten: Teil dieses Prozessors endet hinter der Datei";
    mach_header_64 kopf;
    if (!teil->reichtFuer(0, sizeof(kopf)) || !sicht.lies(teil->ab, &kopf, sizeof(kopf)) ||
        kopf.magic != MH_MAGIC_64)
        return "keine Mach-O-Datei";
    if (kopf.cputype != kProzessor)
        return "Mach-O-Datei von einem anderen Prozessor";
    if (kopf.filetype != MH_DYLIB && kopf.filetype != MH_BUNDLE)
        return "Mach-O-Datei, aber keine Bibliothek";
    return pruefeBefehle(sicht, *teil, kopf);
}

} // namespace orvo::orvoutil
