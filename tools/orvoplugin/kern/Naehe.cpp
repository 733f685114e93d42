#include "kern/Naehe.h"

#include "kern/Anzeige.h"

#include <orvoutil/StringUtil.h>

#include <algorithm>

using namespace orvo::orvoutil;

namespace werkzeug {

std::size_t abstand(std::string_view a, std::string_view b) {
    const std::string links = tolower(std::string(a)), rechts = tolower(std::string(b));
    std::vector<std::size_t> vorvorige(rechts.size() + 1), vorige(rechts.size() + 1),
        diese(rechts.size() + 1);
    for (std::size_t j = 0; j <= rechts.size(); ++j)
        diese[j] = j;
    for (std::size_t i = 1; i <= links.size(); ++i) {
        vorvorige = std::move(vorige);
        vorige = diese;
        diese[0] = i;
        for (std::size_t j = 1; j <= rechts.size(); ++j) {
            const bool gleich = links[i - 1] == rechts[j - 1];
            diese[j] = std::min({vorige[j] + 1, diese[j - 1] + 1, vorige[j - 1] + (gleich ? 0 : 1)});
            if (i > 1 && j > 1 && links[i - 1] == rechts[j - 2] && links[i - 2] == rechts[j - 1])
                diese[j] = std::min(diese[j], vorvorige[j - 2] + 1);
        }
    }
    return diese[rechts.size()];
}

std::string naechstes(const std::string& text, const std::vector<std::string>& worte) {
    if (isNumeric(text))
        return {};
    std::string naechste;
    std::size_t kleinster = std::max<std::size_t>(text.size() / 3, 1) + 1; // one letter in three may be wrong
    for (const std::string& wort : worte) {
        if (compareIgnoreCase(wort, text) == 0)
            return {};
        if (const std::size_t weite = abstand(wort, text); weite < kleinster && weite < wort.size()) {
            kleinster = weite;
            naechste = wort;
        }
    }
    return naechste;
}

std::string rueckfrage(const std::string& wort) {
    return wort.empty() ? wort : satz(": did you mean {1}?", einzeilig(wort));
}

} // namespace werkzeug
