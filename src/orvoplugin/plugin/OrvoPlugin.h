#pragma once

#include <orvoplugin/Export.h>
#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <orvoplugin/plugin/PluginVersion.h>
#include <orvoutil/Log.h>

#include <cstdint>
#include <list>
#include <memory>
#include <string>

class Pluginbibliothek;
class ServiceGriffBasis;

/// Closes and deletes a plugin's library as soon as that is safe.
struct BibliotheksSchliesser {
    void operator()(Pluginbibliothek* bibliothek) const noexcept;
};

namespace orvo::orvoutil {
class SharedLib;
}

/// State of a plugin. Any other value is carried too.
enum orvo_plugin_status_t : std::int32_t {
    ORVO_PLUGIN_ERZEUGT = 0,  ///< made, never used yet
    ORVO_PLUGIN_GELADEN = 2,  ///< in use, or used and resident
    ORVO_PLUGIN_ENTLADEN = 3, ///< given back by its last user
};

/// Record of one plugin library: its handle, its description, its use count and its state. The setters are for the
/// plugin while it initialises, and for the manager. What a plugin does depends on its interface; see `OrvoPluginV1`.
///
/// Ownership: owns its library. The plugin manager owns the plugins.
/// Errors: throws only `std::bad_alloc`. A null library handle has an empty name.
class ORVOPLUGIN_API OrvoPlugin {
public:
    /// A label of the plugin, which gives it a meaning.
    struct ORVOPLUGIN_API LabelEintrag {
        LabelEintrag();
        LabelEintrag(const LabelEintrag&);
        LabelEintrag& operator=(const LabelEintrag&);
        ~LabelEintrag();

        std::int32_t zahl1 = 0;
        std::string text1;
        Veranlagungszeitraum zeitraum;
        std::string text2;
        std::int32_t zahl2 = 0;
        std::string text3;
        std::string text4;
    };

    /// Takes the library over.
    OrvoPlugin(const orvo_plugin_version_t& version, orvo::orvoutil::SharedLib* sharedLib);
    OrvoPlugin(const OrvoPlugin&) = delete;
    OrvoPlugin& operator=(const OrvoPlugin&) = delete;
    virtual ~OrvoPlugin();

    /// One user more; the first one opens the library.
    virtual void notifyUse() = 0;
    /// One user fewer; the last one closes the library unless the plugin is resident.
    virtual void release() = 0;
    /// Type, versions and library, a line each.
    virtual std::string toString() const;
    /// Lets the library describe itself; once, by the loader.
    virtual void initialize() = 0;

    void setProduktVersion(const std::string& version);
    void setFileVersion(const std::string& version);
    void addLabelInformation(const LabelEintrag& label);
    /// A resident plugin is not closed by its last user, only when it is destroyed.
    void setResident(bool resident);
    void setStatus(const orvo_plugin_status_t& status);
    /// Names the exported function to call after each opening for use; empty for none.
    void setOnLoadFuncName(const std::string& name);
    /// Names the exported function to call before each closing after use; empty for none.
    void setOnUnloadFuncName(const std::string& name);

    std::int32_t getTyp() const { return typ_; }
    /// Owned by the plugin; may be null.
    orvo::orvoutil::SharedLib* getSharedLib() const { return sharedLib_; }
    orvo_plugin_status_t getStatus() const { return status_; }
    bool isResident() const { return resident_; }
    /// Number of users; below zero after a `release` too many.
    std::int32_t getUseCount() const { return useCount_; }
    const std::string& getOnLoadFuncName() const { return onLoadFuncName_; }
    const std::string& getOnUnloadFuncName() const { return onUnloadFuncName_; }
    const std::string& getProduktVersion() const { return produktVersion_; }
    const std::string& getFileVersion() const { return fileVersion_; }
    const std::list<LabelEintrag>& getLabels() const { return labels_; }
    /// Whether the record was made from the description in the library's file, and not by the library's code.
    bool istBeschrieben() const { return beschrieben_; }

protected:
    using Bibliothekszeiger = std::unique_ptr<Pluginbibliothek, BibliotheksSchliesser>;

    /// Takes the library over.
    OrvoPlugin(const orvo_plugin_version_t& version, Bibliothekszeiger bibliothek);

    /// Of category "orvo.plugin.<klasse>(<file name of the library>)".
    static orvo::orvoutil::Log logFuer(const char* klasse,
                                       const orvo::orvoutil::SharedLib* sharedLib) noexcept;

    /// Path of the library; empty without one.
    const std::string& getBibliotheksname() const;
    Pluginbibliothek& bibliothek() const { return *bibliothek_; }
    /// Hands the library to the caller; the plugin is left without one.
    Bibliothekszeiger gibBibliothekAb();
    /// Logs that the record may be wrong, if it was made from a description: the library is not as it says.
    void verdaechtigeBeschreibung() const;
    /// As `setStatus`, without a trace in the log.
    void setzeStatus(orvo_plugin_status_t status) { status_ = status; }
    std::int32_t zaehleNutzerHoch() { return ++useCount_; }
    std::int32_t zaehleNutzerRunter() { return --useCount_; }

private:
    template <bool>
    friend class Beschreibungsstrom;
    friend class OrvoServiceErweiterung;
    friend class ServiceGriffBasis;

    std::int32_t typ_;
    orvo::orvoutil::SharedLib* sharedLib_; ///< owned by `bibliothek_`
    orvo_plugin_status_t status_ = ORVO_PLUGIN_ERZEUGT;
    std::string produktVersion_;
    std::string fileVersion_;
    std::list<LabelEintrag> labels_;
    bool resident_ = false;
    std::int32_t useCount_ = 0;
    std::string onUnloadFuncName_;
    std::string onLoadFuncName_;
    [[maybe_unused]] std::string reserviert_; ///< kept for the layout; no operation uses it
    orvo::orvoutil::Log log_;
    Bibliothekszeiger bibliothek_;
    bool beschrieben_ = false;            ///< made from the description in its file
    ServiceGriffBasis* griffe_ = nullptr; ///< the handles that hold one of its services, the latest first
};
