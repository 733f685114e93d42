#pragma once

#include <orvoutil/LogSink.h>

#include <string>
#include <vector>

/// Receives the library's log and keeps what a client needs of a loading run: the refused files with the reasons, the
/// keys that were offered twice, and messages of plugins.
///
/// Threads: this client has only one.
class LadeProtokoll : public orvo::orvoutil::LogSink {
public:
    struct Ablehnung {
        std::string datei; ///< without its directory
        std::string grund;
    };
    /// A key that a second plugin offered.
    struct Kollision {
        std::string dienst; ///< the name of its kind
        std::string unterfallart;
        std::string zeitraum;
        std::string zweiter; ///< file that came second
    };

    void write(const orvo::orvoutil::LogEntry& eintrag) override;

    /// Forgets all but the warnings: for the next loading run.
    void leere();

    const std::vector<Ablehnung>& getAblehnungen() const { return ablehnungen_; }
    const std::vector<Kollision>& getKollisionen() const { return kollisionen_; }
    /// Messages of the example plugins.
    const std::vector<std::string>& getPluginmeldungen() const { return pluginmeldungen_; }
    /// The library's warnings and errors.
    const std::vector<std::string>& getWarnungen() const { return warnungen_; }

private:
    void liesManager(const std::string& text);
    void liesErweiterungsManager(const std::string& text);

    std::string datei_; ///< being read
    std::vector<Ablehnung> ablehnungen_;
    std::vector<Kollision> kollisionen_;
    std::vector<std::string> pluginmeldungen_;
    std::vector<std::string> warnungen_;
};
