#include <orvoplugin/plugin/OrvoPlugin.h>

#include <orvoplugin/plugin/Einsprungpunkt.h>
#include <orvoutil/Logger.h>
#include <orvoutil/PathUtil.h>
#include <orvoutil/SharedLib.h>
#include <orvoutil/Spur.h>

#include <locale>
#include <sstream>

using namespace orvo::orvoutil;

OrvoPlugin::LabelEintrag::LabelEintrag() = default;
OrvoPlugin::LabelEintrag::LabelEintrag(const LabelEintrag&) = default;
OrvoPlugin::LabelEintrag& OrvoPlugin::LabelEintrag::operator=(const LabelEintrag&) = default;
OrvoPlugin::LabelEintrag::~LabelEintrag() = default;

OrvoPlugin::OrvoPlugin(const orvo_plugin_version_t& version, SharedLib* sharedLib)
    : typ_(version.type), sharedLib_(sharedLib), logger_(loggerFuer("OrvoPlugin", sharedLib)) {
    const KonstruktorSpur spur(logger_, "OrvoPlugin()");
    spur.ende();
}

OrvoPlugin::~OrvoPlugin() {
    const DestruktorSpur spur(logger_, "OrvoPlugin()");
    {
        const Laderarbeit laderarbeit; // it is closed if it is open
        delete sharedLib_;
    }
    spur.ende();
}

void OrvoPlugin::setProduktVersion(const std::string& version) {
    const Spur spur(logger_, "OrvoPlugin::setProduktVersion");
    produktVersion_ = version;
    spur.ende();
}

void OrvoPlugin::setFileVersion(const std::string& version) {
    const Spur spur(logger_, "OrvoPlugin::setFileVersion");
    fileVersion_ = version;
    spur.ende();
}

void OrvoPlugin::addLabelInformation(const LabelEintrag& label) {
    const Spur spur(logger_, "OrvoPlugin::addLabel");
    labels_.push_back(label);
    spur.ende();
}

void OrvoPlugin::setResident(bool resident) {
    const Spur spur(logger_, "OrvoPlugin::setResident");
    resident_ = resident;
    spur.ende();
}

void OrvoPlugin::setStatus(const orvo_plugin_status_t& status) {
    const Spur spur(logger_, "OrvoPlugin::setStatus");
    status_ = status;
    spur.ende();
}

void OrvoPlugin::setOnLoadFuncName(const std::string& name) { onLoadFuncName_ = name; }

void OrvoPlugin::setOnUnloadFuncName(const std::string& name) { onUnloadFuncName_ = name; }

std::string OrvoPlugin::toString() const {
    // The last label alone has a blank behind its colon; readers of these lines take them apart that way.
    std::ostringstream text;
    text.imbue(std::locale::classic()); // the host's may write "1.234"
    text << "Typ:" << typ_ << std::endl
         << "ProduktVersion:" << produktVersion_ << std::endl
         << "FileVersion:" << fileVersion_ << std::endl
         << "Bibliothek: " << getBibliotheksname() << std::endl;
    return text.str();
}

Logger* OrvoPlugin::loggerFuer(const char* klasse, const SharedLib* sharedLib) {
    if (!Logger::hatSenke())
        return nullptr;
    std::string kategorie = "orvo.plugin.";
    kategorie += klasse;
    kategorie += '(';
    if (sharedLib)
        kategorie += getOnlyFilenameOfFullFilename(sharedLib->getName());
    kategorie += ')';
    return Logger::getInstance(kategorie);
}

const std::string& OrvoPlugin::getBibliotheksname() const {
    static const std::string& ohneNamen = *new std::string; // outlives whoever asks at the process's end
    return sharedLib_ ? sharedLib_->getName() : ohneNamen;
}

SharedLib* OrvoPlugin::gibBibliothekAb() {
    SharedLib* const bibliothek = sharedLib_;
    sharedLib_ = nullptr;
    return bibliothek;
}
