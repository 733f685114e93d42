#include "kern/Ursachen.h"

#include <orvoelf/Dateiblick.h>
#include <orvoutil/PathUtil.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace werkzeug {

namespace {

/// Why a file cannot be opened for reading; `KEINE` when it can.
Ursache warumNichtZuOeffnen(const std::string& pfad, const std::string& name) {
    const int deskriptor = open(pfad.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (deskriptor >= 0) {
        close(deskriptor);
        return Ursache::KEINE;
    }
    switch (errno) {
    case EACCES:
    case EPERM:
        return Ursache::RECHTE;
    case ENOENT:
        return orvo::orvoutil::getOnlyFilenameOfFullFilename(pfad) == name ? Ursache::FEHLT : Ursache::ENDUNG;
    case EMFILE:
    case ENFILE:
        return Ursache::DESKRIPTOREN;
    default:
        return Ursache::LESEFEHLER;
    }
}

Ursache inDerDatei(const std::string& pfad, const std::string& name) {
    using orvo::orvoelf::Dateimangel;
    switch (orvo::orvoelf::blickeAufDatei(pfad).mangel) {
    case Dateimangel::KEINER:
        return Ursache::KEINE;
    case Dateimangel::NICHT_ZU_OEFFNEN:
        return warumNichtZuOeffnen(pfad, name);
    case Dateimangel::KEINE_DATEI:
        return Ursache::KEINE_DATEI;
    case Dateimangel::KEINE_ELF_DATEI:
        return Ursache::FREMDES_FORMAT;
    case Dateimangel::ANDERER_PROZESSOR:
        return Ursache::PROZESSOR;
    case Dateimangel::KEINE_BIBLIOTHEK:
        return Ursache::PROGRAMM;
    case Dateimangel::ABGESCHNITTEN:
        return Ursache::ABGESCHNITTEN;
    case Dateimangel::NICHT_ZU_ENDE_GESCHRIEBEN:
        return Ursache::NICHT_ZU_ENDE;
    case Dateimangel::BESCHAEDIGT:
        return Ursache::BESCHAEDIGT;
    case Dateimangel::ANDERE_AUSGABE:
        return Ursache::AUSGABE;
    case Dateimangel::BENOETIGTE_BIBLIOTHEK:
        return Ursache::BESCHAEDIGTE_HILFE;
    }
    return Ursache::KEINE;
}

/// By the words of the system's loader; the first that occur decide.
Ursache beimOeffnen(const std::string& meldung) {
    constexpr struct {
        const char* worte;
        Ursache ursache;
    } kWorte[] = {
        {"undefined symbol", Ursache::SYMBOL},
        {"DT_RELR without", Ursache::KEINE}, // the linker's fault, on every system
        {"DT_RELR", Ursache::ALTES_SYSTEM},
        {"static TLS block", Ursache::THREADSPEICHER},
        {"Operation not permitted", Ursache::AUSFUEHRRECHT},
        {"failed to map segment", Ursache::SPEICHER},
        {"annot allocate memory", Ursache::SPEICHER},
        {"Too many open files", Ursache::DESKRIPTOREN},
        {"cannot open shared object file", Ursache::BIBLIOTHEK},
        {"' not found (required by", Ursache::SYMBOLVERSION},
    };
    for (const auto& [worte, ursache] : kWorte)
        if (meldung.find(worte) != std::string::npos)
            return ursache;
    return Ursache::KEINE;
}

} // namespace

Ursache sucheUrsache(orvo_plugin_ablehnung_t schritt, const std::string& pfad, const std::string& name,
                     const std::string& meldung) {
    if (schritt == ABLEHNUNG_DATEIPRUEFUNG)
        return inDerDatei(pfad, name);
    return schritt == ABLEHNUNG_OEFFNEN ? beimOeffnen(meldung) : Ursache::KEINE;
}

bool liegtAmRechner(Ursache ursache) {
    switch (ursache) {
    case Ursache::BIBLIOTHEK:
    case Ursache::SYMBOLVERSION:
    case Ursache::ALTES_SYSTEM:
    case Ursache::AUSFUEHRRECHT:
    case Ursache::SPEICHER:
    case Ursache::DESKRIPTOREN:
        return true;
    default:
        return false;
    }
}

} // namespace werkzeug
