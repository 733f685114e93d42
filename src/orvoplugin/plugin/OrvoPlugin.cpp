#include <orvoplugin/plugin/OrvoPlugin.h>

#include <orvoplugin/plugin/erweiterung/ServiceGriff.h>
#include <orvoplugin/plugin/intern/Pluginbibliothek.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/PathUtil.h>
#include <orvoutil/SharedLib.h>
#include <orvoutil/Spur.h>
#include <orvoutil/StringUtil.h>

#include <new>
#include <utility>

using namespace orvo::orvoutil;

constexpr Latin1Text kVerdaechtig{
    u8"Das Plugin wurde nach der Beschreibung in seiner Datei geladen, die falsch sein kann: "};

OrvoPlugin::LabelEintrag::LabelEintrag() = default;
OrvoPlugin::LabelEintrag::LabelEintrag(const LabelEintrag&) = default;
OrvoPlugin::LabelEintrag& OrvoPlugin::LabelEintrag::operator=(const LabelEintrag&) = default;
OrvoPlugin::LabelEintrag::~LabelEintrag() = default;

OrvoPlugin::OrvoPlugin(const orvo_plugin_version_t& version, SharedLib* sharedLib)
    : OrvoPlugin(version, Pluginbibliothek::fuer(sharedLib)) {}

OrvoPlugin::OrvoPlugin(const orvo_plugin_version_t& version, Bibliothekszeiger bibliothek)
    : typ_(version.type),
      sharedLib_(bibliothek->get()),
      log_(logFuer("OrvoPlugin", sharedLib_)),
      bibliothek_(std::move(bibliothek)) {
    KonstruktorSpur(log_, "OrvoPlugin()").ende();
}

OrvoPlugin::~OrvoPlugin() {
    const DestruktorSpur spur(log_, "OrvoPlugin()");
    ServiceGriffBasis::verwaiseAlle(*this);
    bibliothek_.reset();
    spur.ende();
}

void OrvoPlugin::setProduktVersion(const std::string& version) {
    const Spur spur(log_, "OrvoPlugin::setProduktVersion");
    produktVersion_ = version;
    spur.ende();
}

void OrvoPlugin::setFileVersion(const std::string& version) {
    const Spur spur(log_, "OrvoPlugin::setFileVersion");
    fileVersion_ = version;
    spur.ende();
}

void OrvoPlugin::addLabelInformation(const LabelEintrag& label) {
    const Spur spur(log_, "OrvoPlugin::addLabel");
    labels_.push_back(label);
    spur.ende();
}

void OrvoPlugin::setResident(bool resident) {
    const Spur spur(log_, "OrvoPlugin::setResident");
    resident_ = resident;
    spur.ende();
}

void OrvoPlugin::setStatus(const orvo_plugin_status_t& status) {
    const Spur spur(log_, "OrvoPlugin::setStatus");
    status_ = status;
    spur.ende();
}

void OrvoPlugin::setOnLoadFuncName(const std::string& name) { onLoadFuncName_ = name; }
void OrvoPlugin::setOnUnloadFuncName(const std::string& name) { onUnloadFuncName_ = name; }

std::string OrvoPlugin::toString() const {
    // By contract a blank follows only the last colon.
    return "Typ:" + int2String(typ_) + "\n" + "ProduktVersion:" + produktVersion_ + "\n" +
           "FileVersion:" + fileVersion_ + "\n" + "Bibliothek: " + getBibliotheksname() + "\n";
}

Log OrvoPlugin::logFuer(const char* klasse, const SharedLib* sharedLib) noexcept {
    if (!Logger::hatSenke())
        return {};
    try {
        const std::string datei =
            sharedLib ? getOnlyFilenameOfFullFilename(sharedLib->getName()) : std::string();
        return Log(std::string("orvo.plugin.") + klasse + "(" + datei + ")");
    } catch (const std::bad_alloc&) { // then the plugin has no log
        return {};
    }
}

const std::string& OrvoPlugin::getBibliotheksname() const {
    static const std::string& ohneNamen = *new std::string; // outlives callers at the end of the process
    return sharedLib_ ? sharedLib_->getName() : ohneNamen;
}

OrvoPlugin::Bibliothekszeiger OrvoPlugin::gibBibliothekAb() {
    Bibliothekszeiger abgegebene = std::exchange(bibliothek_, Pluginbibliothek::fuer(nullptr));
    sharedLib_ = nullptr;
    return abgegebene;
}

void OrvoPlugin::verdaechtigeBeschreibung() const {
    if (beschrieben_)
        log_.warn([&] { return kVerdaechtig.c_str() + getBibliotheksname(); });
}
