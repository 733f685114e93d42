#include "deckung/Vorlage.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>
#include <vector>

namespace werkzeug {

namespace {

constexpr std::pair<char, const char*> kErsatz[] = {
    {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&#39;"}};

void haengeEscapedAn(std::string& html, std::string_view text) {
    for (const char c : text) {
        const auto ersatz = std::find_if(std::begin(kErsatz), std::end(kErsatz),
                                         [&](const auto& einer) { return einer.first == c; });
        ersatz == std::end(kErsatz) ? html += c : html += ersatz->second;
    }
}

class Fueller {
public:
    explicit Fueller(const Json& werte) : umgebung_{&werte} {}

    void fuelle(std::string_view vorlage) {
        for (std::size_t i = 0; i < vorlage.size();) {
            const std::size_t marke = vorlage.find("{{", i);
            html.append(vorlage.substr(i, marke - i));
            if (marke == std::string_view::npos)
                return;
            const bool roh = vorlage.substr(marke).starts_with("{{{");
            const std::size_t anfang = marke + (roh ? 3 : 2);
            const std::size_t ende = vorlage.find("}}", anfang);
            if (ende == std::string_view::npos)
                throw std::logic_error("a mark of the template has no end");
            const std::string_view name = vorlage.substr(anfang, ende - anfang);
            i = ende + (roh ? 3 : 2);
            if (name.starts_with('#') || name.starts_with('^'))
                i = block(vorlage, i, name.substr(1), name[0] == '#');
            else
                wert(hole(name), roh);
        }
    }

    std::string html;

private:
    /// Returns: the place behind the block's end.
    std::size_t block(std::string_view vorlage, std::size_t i, std::string_view name, bool wennDa) {
        const std::string endmarke = "{{/" + std::string(name) + "}}";
        const std::size_t ende = vorlage.find(endmarke, i);
        if (ende == std::string_view::npos)
            throw std::logic_error("the template lacks " + endmarke);
        const auto hinterUmbruch = [&](std::size_t stelle) {
            return stelle + (vorlage.substr(stelle).starts_with('\n') ? 1 : 0);
        };
        i = hinterUmbruch(i);
        const std::string_view inhalt = vorlage.substr(i, ende - i);
        const Json& json = hole(name);
        const bool fehlt =
            json.is_null() || json == false || json == "" || (!json.is_string() && json.empty());
        if (fehlt && !wennDa)
            fuelle(inhalt);
        else if (!fehlt && wennDa)
            wiederhole(inhalt, json);
        return hinterUmbruch(ende + endmarke.size());
    }

    void wiederhole(std::string_view inhalt, const Json& json) {
        const auto einmal = [&](const Json& eintrag) {
            umgebung_.push_back(&eintrag);
            fuelle(inhalt);
            umgebung_.pop_back();
        };
        if (!json.is_array())
            return einmal(json);
        for (const Json& eintrag : json)
            einmal(eintrag);
    }

    const Json& hole(std::string_view name) const {
        if (name == ".")
            return *umgebung_.back();
        const std::size_t punkt = name.find('.');
        const std::string_view erster = name.substr(0, punkt);
        for (auto stufe = umgebung_.rbegin(); stufe != umgebung_.rend(); ++stufe)
            if (const auto gefunden = (*stufe)->find(erster); gefunden != (*stufe)->end())
                return punkt == std::string_view::npos || gefunden->is_null()
                           ? *gefunden
                           : gefunden->at(std::string(name.substr(punkt + 1)));
        throw std::logic_error("the template names an unknown value: " + std::string(name));
    }

    void wert(const Json& json, bool roh) {
        if (roh)
            html += json.get_ref<const std::string&>();
        else if (json.is_string())
            haengeEscapedAn(html, einzeilig(json.get_ref<const std::string&>()));
        else if (!json.is_null())
            haengeEscapedAn(html, json.dump());
    }

    std::vector<const Json*> umgebung_;
};

} // namespace

std::string fuelleVorlage(std::string_view vorlage, const Json& werte) {
    Fueller fueller(werte);
    fueller.fuelle(vorlage);
    return std::move(fueller.html);
}

} // namespace werkzeug
