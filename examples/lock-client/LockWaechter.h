#pragma once

#include <orvoplugin/plugin/LadeBeobachter.h>

#include <map>
#include <string>
#include <vector>

/// Lets the plugin manager load a file only if it is in a lock file of `orvoplugin lock`, with the content that it has
/// there. Install it with `OrvoPluginManager::setLadeBeobachter` before the first request.
///
/// Between this check and the loading somebody could replace the file. So nobody else may write to the plugin directory,
/// nor to the lock file.
class LockWaechter : public LadeBeobachter {
public:
    /// Errors: `std::exception` if the lock file cannot be read, or is none.
    LockWaechter(const std::string& lockdatei, const std::string& pluginverzeichnis);

    bool ladeDatei(const std::string& pfad) noexcept override;

    /// Paths of the files that were not loaded, each with the reason.
    const std::vector<std::string>& getAbgewiesene() const { return abgewiesene_; }

private:
    std::string warumNicht(const std::string& pfad) const;

    std::string anfang_;
    std::map<std::string, std::string> summen_; ///< SHA-256 by path below the plugin directory
    std::vector<std::string> abgewiesene_;
};
