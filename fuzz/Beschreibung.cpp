// The description in a plugin's file. The input is a file, or, if it begins with 'B', what follows is the content of a
// description whose head is correct. A description is refused with a reason, or has one form only.

#include <orvoplugin/beschreibung/Beschreibung.h>
#include <orvoplugin/plugin/Beschreibungsplatz.h>

#include "Speicher.h"

#include <link.h>

#include <cstring>
#include <fstream>
#include <string>

namespace {

void haengeZahlAn(std::string& bytes, std::uint64_t zahl) {
    auto rest = static_cast<std::uint32_t>(zahl);
    for (; rest >= 0x80; rest >>= 7)
        bytes += static_cast<char>(rest | 0x80);
    bytes += static_cast<char>(rest);
}

std::string mitKopf(const std::string& inhalt) {
    std::uint64_t summe = 14695981039346656037u;
    for (const char byte : inhalt)
        summe = (summe ^ static_cast<unsigned char>(byte)) * 1099511628211u;
    std::string bytes;
    for (const std::uint64_t zahl :
         {std::uint64_t{1}, std::uint64_t{ORVO_AUSGABE}, std::uint64_t{inhalt.size()}, summe, summe >> 32})
        haengeZahlAn(bytes, zahl);
    return bytes + inhalt;
}

/// A library's file with nothing but a note that holds the description.
std::string dateiMit(const std::string& beschreibung) {
    struct {
        ElfW(Ehdr) kopf;
        ElfW(Phdr) segment;
        OrvoNotizkopf notiz;
    } datei{.kopf{}, .segment{}, .notiz{.platz = static_cast<std::uint32_t>(beschreibung.size())}};
    std::ifstream("/proc/self/exe", std::ios::binary)
        .read(reinterpret_cast<char*>(&datei.kopf), sizeof(datei.kopf));
    datei.kopf.e_type = ET_DYN;
    datei.kopf.e_phoff = offsetof(decltype(datei), segment);
    datei.kopf.e_phnum = 1;
    datei.segment.p_type = PT_NOTE;
    datei.segment.p_offset = offsetof(decltype(datei), notiz);
    datei.segment.p_filesz = sizeof(datei.notiz) + beschreibung.size();
    return std::string(reinterpret_cast<const char*>(&datei), datei.segment.p_offset + sizeof(datei.notiz)) +
           beschreibung;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t laenge) {
    const std::string eingabe(reinterpret_cast<const char*>(daten), laenge);
    const bool istInhalt = eingabe.starts_with('B');
    const std::string bytes = istInhalt ? mitKopf(eingabe.substr(1)) : std::string();
    const Speicher speicher(istInhalt ? dateiMit(bytes) : eingabe);
    const Beschreibungsfund fund = liesBeschreibung(speicher.pfad());
    verlange((fund.stand == fund.ABGELEHNT) == !fund.grund.empty(), "a description is refused with a reason");
    verlange((fund.stand == fund.GEFUNDEN) == !fund.bytes.empty(), "a sound one has bytes");
    if (istInhalt)
        verlange(fund.stand == fund.ABGELEHNT || fund.bytes == bytes, "it has one form only");
    if (fund.stand == fund.GEFUNDEN)
        verlange(eingabe.size() < fund.stelle || istInhalt ||
                     eingabe.compare(fund.stelle, fund.bytes.size(), fund.bytes) == 0,
                 "its bytes are those of the file");
    return 0;
}
