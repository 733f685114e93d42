#include "kern/Sprache.h"

#include <libintl.h>
#include <locale.h> // NOLINT: newlocale is POSIX's

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace werkzeug {

namespace {

constexpr char kKatalog[] = "orvoplugin";

locale_t sprache = nullptr; ///< null: English
bool istEnglisch = false;   ///< for a while

/// The locale while a text is fetched: gettext and the system's texts go by the thread's own.
class Sprechen {
public:
    Sprechen() : vorher_(sprache && !istEnglisch ? uselocale(sprache) : nullptr) {}
    Sprechen(const Sprechen&) = delete;
    Sprechen& operator=(const Sprechen&) = delete;
    ~Sprechen() {
        if (vorher_)
            uselocale(vorher_);
    }

private:
    locale_t vorher_;
};

std::string_view gewuenschte() {
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const char* const wert = std::getenv(name); wert && *wert)
            return wert;
    return {};
}

/// Beside the program, wherever it is installed.
std::string kataloge() {
    std::error_code fehler;
    const std::filesystem::path programm = std::filesystem::read_symlink("/proc/self/exe", fehler);
    return (programm.parent_path().parent_path() / "share/locale").string();
}

} // namespace

void sprichDieSpracheDesBenutzers() {
    sprache = newlocale(LC_MESSAGES_MASK | LC_CTYPE_MASK, "", nullptr);
    if (!sprache && !gewuenschte().empty()) { // a machine that lacks the locale may still have our catalogue
        setenv("LANGUAGE", std::string(gewuenschte()).c_str(), 0);
        sprache = newlocale(LC_MESSAGES_MASK | LC_CTYPE_MASK, "C.UTF-8", nullptr);
    }
    bindtextdomain(kKatalog, kataloge().c_str());
    bind_textdomain_codeset(kKatalog, "UTF-8");
}

Englisch::Englisch(bool ja) : vorher_(istEnglisch) { istEnglisch = ja; }
Englisch::~Englisch() { istEnglisch = vorher_; }

const char* uebersetzt(const char* text) {
    const Sprechen sprechen;
    return *text == '\0' ? text : dgettext(kKatalog, text);
}

std::string uebersetzt(const std::string& text) { return uebersetzt(text.c_str()); }

std::string systemtext(int fehler) {
    const Sprechen sprechen;
    return std::strerror(fehler);
}

std::string fuelleSatz(const char* text, const std::vector<std::string>& werte) {
    std::string satz;
    for (std::string_view rest = uebersetzt(text); !rest.empty();) {
        const std::size_t platz = rest.size() > 2 && rest[0] == '{' && rest[2] == '}'
                                      ? static_cast<std::size_t>(rest[1] - '1')
                                      : werte.size();
        if (platz < werte.size()) {
            satz += werte[platz];
            rest.remove_prefix(3);
        } else {
            satz += rest[0];
            rest.remove_prefix(1);
        }
    }
    return satz;
}

std::string anzahl(std::size_t zahl, const char* einzahl, const char* mehrzahl) {
    const Sprechen sprechen;
    return std::to_string(zahl) + " " + dngettext(kKatalog, einzahl, mehrzahl, zahl);
}

} // namespace werkzeug
