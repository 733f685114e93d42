#include "LadeProtokoll.h"

#include <orvoutil/Latin1.h>
#include <orvoutil/PathUtil.h>

#include <string_view>

using namespace orvo::orvoutil;

namespace {

/// Removes a prefix from the text. Returns: whether the text had it.
bool nimm(std::string_view& text, std::string_view anfang) {
    if (!text.starts_with(anfang))
        return false;
    text.remove_prefix(anfang.size());
    return true;
}

/// Removes and returns the text before the separator.
std::string nimmBis(std::string_view& text, std::string_view trenner) {
    const std::size_t ende = text.find(trenner);
    std::string vorn(text.substr(0, ende));
    text.remove_prefix(ende == std::string_view::npos ? text.size() : ende + trenner.size());
    return vorn;
}

} // namespace

void LadeProtokoll::write(const LogEntry& eintrag) {
    if (eintrag.kind == LogKind::Tagged && eintrag.tag == "OrvoPluginManager")
        liesManager(eintrag.text);
    else if (eintrag.kind == LogKind::Tagged && eintrag.tag == "ErweiterungsManager")
        liesErweiterungsManager(eintrag.text);
    else if (eintrag.kind == LogKind::Message && eintrag.category.starts_with("beispiel."))
        pluginmeldungen_.push_back(eintrag.category + ": " + toUtf8(eintrag.text));
    else if (eintrag.level >= LogLevel::Warn)
        warnungen_.push_back(eintrag.category + ": " + toUtf8(eintrag.text));
}

void LadeProtokoll::leere() {
    ablehnungen_.clear();
    kollisionen_.clear();
    pluginmeldungen_.clear();
}

void LadeProtokoll::liesManager(const std::string& text) {
    std::string_view rest = text;
    if (nimm(rest, "Lese Bibliothek: "))
        datei_ = toUtf8(getOnlyFilenameOfFullFilename(rest));
    else if (nimm(rest, "Plugin nicht geladen: "))
        ablehnungen_.push_back({datei_, toUtf8(rest)});
    else if (nimm(rest, "Plugin ") && rest.ends_with(" in Sperrliste. Wird ignoriert"))
        ablehnungen_.push_back({toUtf8(nimmBis(rest, " in Sperrliste")), "steht auf der Sperrliste"});
}

void LadeProtokoll::liesErweiterungsManager(const std::string& text) {
    constexpr std::string_view kAnfang = "Es existiert schon eine Erweiterung mit dem Schluessel: ";
    std::string_view rest = text;
    if (!nimm(rest, kAnfang))
        return;
    nimm(rest, kAnfang); // the line says it twice
    Kollision kollision;
    kollision.dienst = nimmBis(rest, "/");
    kollision.unterfallart = nimmBis(rest, "/");
    kollision.zeitraum = nimmBis(rest, " nutze die Erweiterung");
    kollision.zweiter = datei_;
    kollisionen_.push_back(kollision);
}
