#include <orvoutil/Einstellungen.h>

#include <orvoutil/BeobachterListe.h>
#include <orvoutil/PathUtil.h>

#include <dlfcn.h>

#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <string_view>

namespace orvo::orvoutil {

namespace {

constexpr char kResidentPlugins[] = "basis.resident_plugins";

/// The directory of the file that holds this code.
std::string verzeichnisDerBibliothek() {
    Dl_info bibliothek;
    if (dladdr(EINSTELLUNG_HOME_DIR, &bibliothek)) {
        const std::string verzeichnis = getAbsolutePath(concatPath(bibliothek.dli_fname, ".."));
        if (verzeichnis.front() == '/')
            return verzeichnis;
    }
    return "/"; // anything but the current directory
}

/// The settings of the process. Never destroyed: destructors read them to the end of the process.
struct Zustand {
    std::mutex sperre;
    std::map<std::string, std::string, std::less<>> werte; // no empty ones
    BeobachterListe<AenderungsBeobachter> beobachter;
    const std::string verzeichnis = verzeichnisDerBibliothek();

    static Zustand& hole() {
        static auto& zustand = *new Zustand;
        return zustand;
    }

    std::string wert(std::string_view schluessel) {
        const std::lock_guard halter(sperre);
        const auto eintrag = werte.find(schluessel);
        return eintrag == werte.end() ? std::string() : eintrag->second;
    }

    /// Returns: whether the value changed. Call with the lock held.
    bool aendere(const std::string& schluessel, const std::string& wert) {
        if (wert.empty())
            return werte.erase(schluessel) > 0;
        const auto eintrag = werte.find(schluessel);
        if (eintrag != werte.end() && eintrag->second == wert)
            return false;
        werte.insert_or_assign(schluessel, wert);
        return true;
    }
};

// Made while the library is loaded: its file may be named relative to the directory that is current then.
[[maybe_unused]] const Zustand& beimLaden = Zustand::hole();

} // namespace

Einstellungen::Einstellungen() = default;

std::string Einstellungen::basisHomeDir() const {
    Zustand& zustand = Zustand::hole();
    std::string gesetzt = zustand.wert(EINSTELLUNG_HOME_DIR);
    return gesetzt.empty() ? zustand.verzeichnis : gesetzt;
}

std::string Einstellungen::basisResidentPlugins() const { return Zustand::hole().wert(kResidentPlugins); }

std::string Einstellungen::wert(const std::string& schluessel) const {
    return Zustand::hole().wert(schluessel);
}

void Einstellungen::setze(const std::string& schluessel, const std::string& wert) const {
    const AenderungsNachricht nachricht(AenderungsNachricht::EINSTELLUNG_GEAENDERT, schluessel);
    Zustand& zustand = Zustand::hole();
    std::unique_lock sperre(zustand.sperre);
    if (!zustand.aendere(schluessel, wert))
        return;

    std::exception_ptr erste;
    BeobachterListe<AenderungsBeobachter>::Durchlauf durchlauf(zustand.beobachter);
    while (AenderungsBeobachter* const beobachter = durchlauf.naechster()) {
        sperre.unlock();
        try {
            beobachter->empfangeAenderungsNachricht(nachricht);
        } catch (...) {
            if (!erste)
                erste = std::current_exception();
        }
        sperre.lock();
    }
    if (erste)
        std::rethrow_exception(erste);
}

void Einstellungen::beobachterAnmelden(AenderungsBeobachter* beobachter) const {
    Zustand& zustand = Zustand::hole();
    const std::lock_guard halter(zustand.sperre);
    zustand.beobachter.anhaengen(beobachter);
}

void Einstellungen::beobachterAbmelden(AenderungsBeobachter* beobachter) const {
    Zustand& zustand = Zustand::hole();
    const std::lock_guard halter(zustand.sperre);
    zustand.beobachter.entfernen(beobachter);
}

} // namespace orvo::orvoutil
