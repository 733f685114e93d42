#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

/// The registry and the use counts, written plainly from the rules and without regard to speed: lists that are searched
/// from the front. It uses nothing of the libraries under test.
namespace modell {

/// An extension as a plugin declares it.
struct Angebot {
    std::string art; ///< "check", "feldinfo", "fehlertext", "finanzamt", "xpath" or "reader"
    std::string ua;
    std::vector<std::string> jahre; ///< four digits, or "immer"
    std::string factory;            ///< empty for the kind's own
};

/// A plugin's description.
struct Beschreibung {
    std::string version;
    bool resident = false;
    bool loeschen = false;
    bool abgelehnt = false;
    std::vector<Angebot> angebote;

    /// The orders for the plugin's text file.
    std::string text() const;
};

/// A client's request.
struct Frage {
    int typ = 1;
    std::string ua;
    std::string zeitraum; ///< digits under "Y", "YYYY", "YYYYMM" or "YYYYMMTT" by their number, or "immer"

    std::string text() const;
};

struct Plugin;

struct Erweiterung {
    Plugin* plugin = nullptr;
    Angebot angebot;
    int typ = 0;
    int ausgegeben = 0;
    std::map<const void*, int> instanzen;
};

struct Plugin {
    std::string pfad;
    Beschreibung beschreibung;
    int nutzer = 0;
    int status = 0;
    bool offen = false;
    std::vector<std::unique_ptr<Erweiterung>> erweiterungen;

    int ausgegeben() const;
};

/// The result of a request for a service.
enum class Service { KEINER, PASSENDER, FALSCHER };

class Modell {
public:
    /// Returns: whether the plugin was loaded.
    bool lade(const std::string& pfad, const Beschreibung& beschreibung);
    void entlade(std::size_t plugin);
    void entladeAlle();

    /// The result of the look-up; null if nothing is found.
    Erweiterung* finde(const Frage& frage) const;
    Erweiterung* findeFinanzamt() const { return finde({4, "0", "2000"}); }
    bool istUnterstuetzt(const Frage& frage) const { return finde(frage) != nullptr; }

    static void nutze(Plugin& plugin);
    static void lass(Plugin& plugin);
    /// Whether `lass` leaves the library open for services in use.
    static bool darfLassen(const Plugin& plugin);

    /// Requests a service; `merke` says which object it is.
    static Service hole(Erweiterung& erweiterung);
    static void merke(Erweiterung& erweiterung, const void* service);
    void gib(Erweiterung& erweiterung, const void* service);

    const std::vector<std::unique_ptr<Plugin>>& plugins() const { return plugins_; }
    /// The extension of each key, in no order.
    std::vector<Erweiterung*> registriert() const;

    int doppelte = 0;   ///< how many keys of versioned extensions were taken
    int unbekannte = 0; ///< how many unknown services were given back

private:
    struct Schluessel {
        int typ;
        std::string ua;
        int jahr;
    };
    struct Eintrag {
        Schluessel schluessel;
        Erweiterung* erweiterung;
    };

    static bool gleich(const Schluessel& a, const Schluessel& b);
    static std::vector<Schluessel> schluesselVon(const Erweiterung& erweiterung);
    Eintrag* suche(const Schluessel& schluessel);
    void trageEin(Erweiterung* erweiterung);

    std::vector<std::unique_ptr<Plugin>> plugins_;
    std::vector<Eintrag> register_;
};

} // namespace modell
