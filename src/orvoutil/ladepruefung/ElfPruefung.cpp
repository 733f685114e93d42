#include <orvoutil/ladepruefung/ElfPruefung.h>

#include <orvoutil/Latin1.h>
#include <orvoutil/ladepruefung/ElfTabellen.h>

namespace orvo::orvoutil {

namespace {

constexpr Latin1Text kProgramm{u8"ausführbares Programm, keine Bibliothek"};

/// Programs that may lie at any address are marked, or, if older, have what only programs have.
bool istProgramm(const ElfDynamik& dynamik) {
    return dynamik.hatBit(DT_FLAGS_1, DF_1_PIE) ||
           (dynamik.abbild().hatInterpreter() && dynamik.hat(DT_DEBUG));
}

void pruefeFunktionen(const ElfDynamik& dynamik) {
    if (const auto start = dynamik.wert(DT_INIT))
        dynamik.abbild().verlangeFunktion("DT_INIT", *start);
    if (const auto ende = dynamik.wert(DT_FINI))
        dynamik.abbild().verlangeFunktion("DT_FINI", *ende);
}

} // namespace

std::string pruefeElf(Bytequelle& quelle) {
    try {
        ElfAbbild abbild(quelle);
        const ElfDynamik dynamik(abbild);
        verlange(!istProgramm(dynamik), kProgramm);
        pruefeBedarf(dynamik);
        pruefeAbschnitte(dynamik);
        pruefeFunktionen(dynamik);
        const std::uint64_t benutzt = pruefeRelokationen(dynamik);
        const std::uint64_t symbole = pruefeSymbole(dynamik, benutzt);
        pruefeVersionen(dynamik, symbole);
        return {};
    } catch (const ElfMangel& mangel) {
        return mangel.what();
    }
}

} // namespace orvo::orvoutil
