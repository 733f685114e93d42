#include <orvoplugin/plugin/OrvoPluginLoader.h>

#include <orvoplugin/plugin/Einsprungpunkt.h>
#include <orvoplugin/plugin/Ladeschritt.h>
#include <orvoplugin/plugin/OrvoPluginV1.h>
#include <orvoplugin/plugin/PluginInitException.h>
#include <orvoplugin/plugin/PluginLoaderException.h>
#include <orvoplugin/plugin/PluginVersion.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/Logger.h>
#include <orvoutil/SharedLib.h>
#include <orvoutil/Spur.h>

#include <exception>
#include <list>
#include <typeinfo>
#include <vector>

using namespace orvo::orvoutil;

/// One library on its way to a plugin. The plugin, once there is one, owns the library.
struct OrvoPluginLoader::Obhut {
    ~Obhut() {
        const Laderarbeit laderarbeit;
        bibliothek.reset();
    }

    std::unique_ptr<SharedLib> bibliothek;
    std::unique_ptr<OrvoPluginV1> plugin;

    /// What loaders left behind that died with an exception under way. Never destroyed: a plugin may still be
    /// there when the process ends.
    static std::vector<std::unique_ptr<Obhut>>& nachlass() {
        static auto& nachlass = *new std::vector<std::unique_ptr<Obhut>>;
        return nachlass;
    }

    /// Closes what was left behind, unless an exception is about that may need it.
    static void raeumeNachlass() {
        if (!std::current_exception() && std::uncaught_exceptions() == 0)
            nachlass().clear();
    }

    [[noreturn]] static void lehneAb(std::unique_ptr<Obhut>& obhut, orvo_plugin_loader_exception_typ_t typ,
                                     const std::string& text) {
        obhut.reset();
        throw PluginLoaderException(typ, text);
    }
};

namespace {

constexpr std::int32_t kUnterstuetzterTyp = 1;
constexpr int kOhneCode = 99;
constexpr char kTypen[] = "orvo_plugin_get_types";
constexpr Latin1Text kUngueltigeVersion{u8"Ungültige Pluginversion"};

std::list<orvo_plugin_version_t> typenVon(void* einsprung) {
    using Funktion = void (*)(std::list<orvo_plugin_version_t>*);
    std::list<orvo_plugin_version_t> typen;
    const Einsprungpunkt einsprungpunkt;
    reinterpret_cast<Funktion>(einsprung)(&typen);
    return typen;
}

} // namespace

OrvoPluginLoader::OrvoPluginLoader() : ausnahmenBeiBau_(std::uncaught_exceptions()) {}

OrvoPluginLoader::~OrvoPluginLoader() {
    if (obhut_ && std::uncaught_exceptions() > ausnahmenBeiBau_)
        Obhut::nachlass().push_back(std::move(obhut_));
}

OrvoPlugin* OrvoPluginLoader::loadPlugin(SharedLib* uebergeben) {
    std::unique_ptr<SharedLib> bibliothek(uebergeben);
    Logger* const logger = Logger::getInstance("orvo.plugin.loader.OrvoPluginLoader");
    const Spur spur(logger, "loadPlugin()");
    Obhut::raeumeNachlass();
    obhut_ = std::make_unique<Obhut>();
    obhut_->bibliothek = std::move(bibliothek);

    Ladeschritt::ist(ABLEHNUNG_OEFFNEN);
    if (!uebergeben)
        Obhut::lehneAb(obhut_, BIBLIOTHEK_FEHLER, "");
    if (!oeffneBibliothek(*uebergeben)) {
        if (uebergeben->scheiterteVorDemOeffnen())
            Ladeschritt::ist(ABLEHNUNG_DATEIPRUEFUNG);
        Obhut::lehneAb(obhut_, BIBLIOTHEK_FEHLER, uebergeben->getLastError());
    }

    Ladeschritt::ist(ABLEHNUNG_OHNE_TYPEN);
    void* const einsprung = uebergeben->getSymbol(kTypen);
    if (!einsprung)
        Obhut::lehneAb(obhut_, STRUKTUR_FEHLER,
                       "Einsprungpunkt(orvo_plugin_get_types) in Bibliothek nicht gefunden.");

    Ladeschritt::ist(ABLEHNUNG_AUSNAHME_TYPEN);
    const std::list<orvo_plugin_version_t> typen = typenVon(einsprung);
    Ladeschritt::ist(ABLEHNUNG_LEERE_TYPEN);
    if (typen.empty())
        Obhut::lehneAb(obhut_, STRUKTUR_FEHLER,
                       "Einsprungpunkt(orvo_plugin_get_types) nennt keine Pluginversion.");

    for (const orvo_plugin_version_t& version : typen) {
        Ladeschritt::ist(ABLEHNUNG_PLUGINVERSION);
        if (version.type != kUnterstuetzterTyp)
            Obhut::lehneAb(obhut_, UNGUELTIGE_PLUGIN_VERSION, kUngueltigeVersion.c_str());

        SharedLib* const besitz = obhut_->plugin ? uebergeben : obhut_->bibliothek.release();
        std::unique_ptr<OrvoPluginV1> frueheres = std::move(obhut_->plugin);
        obhut_->plugin = std::make_unique<OrvoPluginV1>(besitz);
        if (frueheres)
            obhut_->plugin->behalteFrueheres(std::move(frueheres));
        try {
            obhut_->plugin->initialize();
        } catch (const PluginInitException& ausnahme) {
            // The library's own exceptions need no plugin code; one that a plugin derived from it may.
            if (typeid(ausnahme) == typeid(PluginInitException))
                obhut_.reset();
            throw;
        }
    }

    std::unique_ptr<OrvoPluginV1> plugin = std::move(obhut_->plugin);
    obhut_.reset();
    // The message stands in the tag, and the text is empty: log readers know it so.
    if (logger && Logger::hatSenke())
        logger->tagged("Kompatibles Plugin gefunden : Type=1,Version=" + plugin->getProduktVersion() +
                           " Fileversion=" + plugin->getFileVersion(),
                       kOhneCode, std::string(), kOhneCode);
    spur.ende();
    return plugin.release();
}
