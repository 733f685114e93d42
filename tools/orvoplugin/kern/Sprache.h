#pragma once

// The tool speaks the language of the locale's message category (LC_ALL, LC_MESSAGES, LANG, LANGUAGE), by the catalogues
// of gettext. The texts in the sources are English and are the catalogue's keys. The process stays in the "C" locale, so
// that plugins and the system's loader behave the same in every language.

#include <cstddef>
#include <string>
#include <vector>

namespace werkzeug {

/// Takes up the user's language. Without a call, and where no catalogue has that language, the tool speaks English.
void sprichDieSpracheDesBenutzers();
/// Speaks English while it lives, for output that programs read; with `ja` false, the user's language again.
class Englisch {
public:
    explicit Englisch(bool ja = true);
    Englisch(const Englisch&) = delete;
    Englisch& operator=(const Englisch&) = delete;
    ~Englisch();

private:
    bool vorher_;
};

/// Marks a text for the catalogue where it cannot be translated yet, in a constant table for example.
constexpr const char* N_(const char* text) { return text; }

/// The text in the user's language, UTF-8. The empty text stays empty.
const char* uebersetzt(const char* text);
std::string uebersetzt(const std::string& text);
/// The text of an error of the system.
std::string systemtext(int fehler);

/// The text in the user's language, with each "{1}", "{2}", ... replaced by the value of that number.
std::string fuelleSatz(const char* text, const std::vector<std::string>& werte);

inline std::string alsWert(const std::string& text) { return text; }
inline std::string alsWert(const char* text) { return text; }
template <class Zahl>
std::string alsWert(Zahl zahl) {
    return std::to_string(zahl);
}

/// A sentence: satz("{1} is held by {2}", key, plugin). The text is a literal, so that it gets into the catalogue.
template <class... Werte>
std::string satz(const char* text, const Werte&... werte) {
    return fuelleSatz(text, {alsWert(werte)...});
}

/// A number of things: anzahl(n, "file", "files") is "1 file", "3 files".
std::string anzahl(std::size_t zahl, const char* einzahl, const char* mehrzahl);

} // namespace werkzeug
