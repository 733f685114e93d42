#include <orvoplugin/plugin/OrvoPluginLoader.h>

#include <orvoplugin/beschreibung/Beschriebenes.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginLoaderException.h>
#include <orvoplugin/plugin/intern/Pluginbibliothek.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/Spur.h>

#include <list>
#include <memory>

using namespace orvo::orvoutil;

constexpr Latin1Text kUngueltigeVersion{u8"Ungültige Pluginversion"};

OrvoPluginLoader::OrvoPluginLoader() : OrvoPluginLoader(false) {}
OrvoPluginLoader::OrvoPluginLoader(bool nimmtBeschreibungen) : nimmtBeschreibungen_(nimmtBeschreibungen) {}

OrvoPluginLoader::~OrvoPluginLoader() { Pluginbibliothek::schliesseAufgeschobene(); }

OrvoPlugin* OrvoPluginLoader::loadPlugin(SharedLib* uebergeben) {
    Pluginbibliothek::Zeiger bibliothek = Pluginbibliothek::fuer(uebergeben);
    const Log log("orvo.plugin.loader.OrvoPluginLoader");
    const Spur spur(log, "loadPlugin()");
    auto plugin = nimmtBeschreibungen_ ? beschriebenesPlugin(bibliothek, log) : nullptr;
    if (!plugin)
        plugin = frage(std::move(bibliothek));

    // By contract the message is the tag, and the text is empty.
    log.ereignis(
        [&] {
            return "Kompatibles Plugin gefunden : Type=1,Version=" + plugin->getProduktVersion() +
                   " Fileversion=" + plugin->getFileVersion();
        },
        "");
    spur.ende();
    return plugin.release();
}

/// Opens the library and has it describe itself.
std::unique_ptr<OrvoPluginV1>
OrvoPluginLoader::frage(std::unique_ptr<Pluginbibliothek, BibliotheksSchliesser> bibliothek) {
    Pluginbibliothek& tuer = *bibliothek;
    std::unique_ptr<OrvoPluginV1> plugin; // owns the library once it is made
    const auto scheitere = [&](orvo_plugin_ablehnung_t schritt, orvo_plugin_loader_exception_typ_t typ,
                               const std::string& grund) {
        schritt_ = schritt;
        plugin.reset();
        bibliothek.reset();
        throw PluginLoaderException(typ, grund);
    };
    if (!tuer.oeffne())
        scheitere(tuer.getSchritt(), BIBLIOTHEK_FEHLER, tuer.getGrund());
    using Typen = std::list<orvo_plugin_version_t>;
    static const std::string& kEinsprung =
        *new std::string("orvo_plugin_get_types"); // used to the end of the process
    auto* const nenneTypen = tuer.funktion<void(Typen*)>(kEinsprung);
    if (!nenneTypen)
        scheitere(ABLEHNUNG_OHNE_TYPEN, STRUKTUR_FEHLER,
                  "Einsprungpunkt(orvo_plugin_get_types) in Bibliothek nicht gefunden.");

    Typen typen;
    schritt_ = ABLEHNUNG_AUSNAHME_TYPEN;
    tuer.beschreibt(nenneTypen, &typen);
    if (typen.empty())
        scheitere(ABLEHNUNG_LEERE_TYPEN, STRUKTUR_FEHLER,
                  "Einsprungpunkt(orvo_plugin_get_types) nennt keine Pluginversion.");
    for (const orvo_plugin_version_t& version : typen) {
        if (version.type != OrvoPluginV1::SCHNITTSTELLE)
            scheitere(ABLEHNUNG_PLUGINVERSION, UNGUELTIGE_PLUGIN_VERSION, kUngueltigeVersion);
        plugin.reset(plugin ? new OrvoPluginV1(std::move(plugin)) : new OrvoPluginV1(std::move(bibliothek)));
        try {
            plugin->initialize();
        } catch (...) {
            schritt_ = tuer.getSchritt();
            throw;
        }
    }
    return plugin;
}
