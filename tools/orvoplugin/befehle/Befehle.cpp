#include "befehle/Befehle.h"

#include "befehle/Befehl.h"
#include "kern/Sprache.h"

namespace werkzeug {

const std::vector<BefehlEintrag>& alleBefehle() {
    static const std::vector<BefehlEintrag> befehle{
        {"list", N_("Every file found, what became of it, and why"), macheList,
         "  orvoplugin list --home /opt/client\n"
         "  orvoplugin list --dir ./plugins --json\n"},
        {"show", N_("One plugin whole: versions, labels, hooks, extensions"), macheShow,
         "  orvoplugin show ./libmine.dylib\n"
         "  orvoplugin show mine --home /opt/client\n"},
        {"find", N_("Who answers for a kind of extension, a sub-case type and a period, and by which key"),
         macheFind,
         "  orvoplugin find check --home /opt/client\n"
         "  orvoplugin find check LSTB 2009-05 --home /opt/client\n"},
        {"why", N_("The chain of decisions about a file or a look-up, and what to do"), macheWhy,
         "  orvoplugin why libmine.dylib --home /opt/client\n"
         "  orvoplugin why check LSTB 2009 --home /opt/client\n"},
        {"coverage", N_("Which plugin serves which sub-case type in which year, and what nobody serves"),
         macheCoverage,
         "  orvoplugin coverage --home /opt/client --html coverage.html\n"
         "  orvoplugin coverage --home /opt/client --require required.txt\n"},
        {"diff", N_("What another plugin directory, or one copied over this one, would change"), macheDiff,
         "  orvoplugin diff /opt/client/plugins ./plugins\n"
         "  orvoplugin diff --merge /opt/client/plugins ./delivery\n"},
        {"lock", N_("Writes an inventory of a plugin directory: sizes, SHA-256, versions and keys"),
         macheLock, "  orvoplugin lock /opt/client/plugins > plugins.lock.json\n"},
        {"verify", N_("Says what is not as a lock file has it, and runs no plugin code"), macheVerify,
         "  orvoplugin verify plugins.lock.json /opt/client/plugins\n"},
        {"check", N_("Checks plugins for conformance, for their authors and for CI"), macheCheck,
         "  orvoplugin check ./libmine.dylib\n"
         "  orvoplugin check --only exports,unloads ./libmine.dylib\n"
         "  orvoplugin check --strict --home /opt/client\n"},
        {"describe", N_("Writes what plugins say of themselves into their files"), macheDescribe,
         "  orvoplugin describe ./libmine.dylib\n"
         "  orvoplugin list --described --dir .\n"},
    };
    return befehle;
}

} // namespace werkzeug
