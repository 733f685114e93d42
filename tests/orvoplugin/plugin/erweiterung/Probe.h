#pragma once

#include <orvoplugin/plugin/OrvoPlugin.h>
#include <orvoplugin/plugin/erweiterung/OrvoServiceErweiterung.h>
#include <orvoplugin/service/Service.h>
#include <orvoutil/Logger.h>

#include "orvoplugin/plugin/Attrappe.h"
#include "support/Mitschnitt.h"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

// A service extension over a fake plugin and a fake library. One transcript has the calls and log lines in their order.

using Ablauf = std::vector<std::string>;

/// Writes the extension's lines to the transcript as long as it lives.
class Mitschreiber {
public:
    explicit Mitschreiber(Ablauf& ablauf, orvo::orvoutil::LogLevel level = orvo::orvoutil::LogLevel::Debug) {
        orvo::orvoutil::Logger::setLevel(level);
        orvo::orvoutil::Logger::setSink(std::make_shared<Senke>(ablauf));
    }
    Mitschreiber(const Mitschreiber&) = delete;
    Mitschreiber& operator=(const Mitschreiber&) = delete;
    ~Mitschreiber() { orvo::orvoutil::Logger::setSink(nullptr); }

private:
    class Senke : public orvo::orvoutil::LogSink {
    public:
        explicit Senke(Ablauf& ablauf) : ablauf_(ablauf) {}
        void write(const orvo::orvoutil::LogEntry& eintrag) override {
            if (eintrag.category == "orvo.plugin.erweiterung.OrvoServiceErweiterung")
                ablauf_.push_back(Mitschnitt::zeile(eintrag));
        }

    private:
        Ablauf& ablauf_;
    };
};

/// A plugin that counts its users and records the calls.
class Pluginprobe : public OrvoPlugin {
public:
    Pluginprobe(Ablauf& ablauf, orvo::orvoutil::SharedLib* bibliothek)
        : OrvoPlugin(orvo_plugin_version_t{1}, bibliothek), ablauf_(ablauf) {}

    void notifyUse() override {
        zaehleNutzerHoch();
        ablauf_.push_back("notifyUse");
    }
    void release() override {
        zaehleNutzerRunter();
        ablauf_.push_back("release");
    }
    void initialize() override {}

private:
    Ablauf& ablauf_;
};

/// A minimal service extension.
class Erweiterungsprobe : public OrvoServiceErweiterung {
public:
    explicit Erweiterungsprobe(const std::string& factory = "fabrik", tag_erweiterung_typ typ = NONE)
        : OrvoServiceErweiterung(typ, factory) {}
    Erweiterungsprobe(const Erweiterungsprobe&) = default;
    OrvoErweiterung* clone() const override { return new Erweiterungsprobe(*this); }
};

/// The set-up of one test: `fabrik` returns `naechster`.
class Probe : public testing::Test {
protected:
    Probe() {
        eine = this;
        bibliothek->exportiere("fabrik", &fabrik);
        erweiterung.setPlugin(&plugin);
    }
    ~Probe() override { eine = nullptr; }

    /// A service that records its destruction.
    class Dienst : public Service {
    public:
        ~Dienst() override { eine->ablauf.push_back("delete"); }
    };

    /// One whose memory is the test's own.
    class Ortsfest : public Dienst {
    public:
        static void* operator new(std::size_t, void* platz) { return platz; }
        static void operator delete(void*) {}
        static void operator delete(void*, void*) {}
    };

    /// The transcript since the last call.
    Ablauf seither() {
        Ablauf bisher;
        bisher.swap(ablauf);
        return bisher;
    }

    static Service* fabrik() {
        eine->ablauf.push_back("fabrik");
        return eine->naechster;
    }

    static inline Probe* eine = nullptr;

    Attrappe::Notizen notizen;
    Ablauf& ablauf = notizen.aufrufe;
    Attrappe* bibliothek = new Attrappe(notizen, "/plugins/libprobe.dylib"); // the plugin's
    Pluginprobe plugin{ablauf, bibliothek};
    Erweiterungsprobe erweiterung;
    Service* naechster = nullptr;
};
