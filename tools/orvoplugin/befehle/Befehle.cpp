#include "befehle/Befehle.h"

#include "befehle/Befehl.h"

namespace werkzeug {

const std::vector<BefehlEintrag>& alleBefehle() {
    static const std::vector<BefehlEintrag> befehle{
        {"list", "Every file found, what became of it, and why", macheList},
        {"show", "One plugin whole: versions, labels, hooks, extensions", macheShow},
        {"find", "Who answers for a kind of extension, a sub-case type and a period, and by which key",
         macheFind},
        {"why", "The chain of decisions about a file or a look-up, and what to do", macheWhy},
        {"coverage", "Which plugin serves which sub-case type in which year, and what nobody serves",
         macheCoverage},
        {"diff", "What another plugin directory, or one copied over this one, would change", macheDiff},
        {"check", "Checks plugins for conformance, for their authors and for CI", check::macheCheckBefehl},
        {"describe", "Writes what plugins say of themselves into their files", macheDescribe},
    };
    return befehle;
}

} // namespace werkzeug
