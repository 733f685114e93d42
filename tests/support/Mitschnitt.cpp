#include "support/Mitschnitt.h"

#include <orvoutil/Logger.h>

#include <algorithm>

using namespace orvo::orvoutil;

class Mitschnitt::Senke : public LogSink {
public:
    void write(const LogEntry& eintrag) override { eintraege.push_back(eintrag); }
    std::vector<LogEntry> eintraege;
};

namespace {

template <class Bedingung>
std::vector<std::string> zeilenMit(const std::vector<LogEntry>& eintraege, Bedingung bedingung) {
    std::vector<std::string> zeilen;
    for (const LogEntry& eintrag : eintraege)
        if (bedingung(eintrag))
            zeilen.push_back(Mitschnitt::zeile(eintrag));
    return zeilen;
}

} // namespace

Mitschnitt::Mitschnitt(LogLevel level) : senke_(std::make_shared<Senke>()) {
    Logger::setLevel(level);
    Logger::setSink(senke_);
}

Mitschnitt::~Mitschnitt() { Logger::setSink(nullptr); }

const std::vector<LogEntry>& Mitschnitt::eintraege() const { return senke_->eintraege; }

std::vector<std::string> Mitschnitt::zeilen() const {
    return zeilenMit(eintraege(), [](const LogEntry&) { return true; });
}

std::vector<std::string> Mitschnitt::zeilen(const std::string& kategorie) const {
    return zeilenMit(eintraege(), [&](const LogEntry& e) { return e.category == kategorie; });
}

std::vector<std::string> Mitschnitt::meldungen() const {
    return zeilenMit(eintraege(), [](const LogEntry& e) {
        return e.kind == LogKind::Tagged || e.level != LogLevel::Debug;
    });
}

int Mitschnitt::anzahl(const std::string& gesucht) const {
    const auto alle = zeilen();
    return static_cast<int>(std::count(alle.begin(), alle.end(), gesucht));
}

int Mitschnitt::anzahlMit(const std::string& teil) const {
    const auto alle = zeilen();
    return static_cast<int>(std::count_if(alle.begin(), alle.end(), [&](const std::string& zeile) {
        return zeile.find(teil) != std::string::npos;
    }));
}

void Mitschnitt::leere() { senke_->eintraege.clear(); }

std::string Mitschnitt::zeile(const LogEntry& e) {
    switch (e.kind) {
    case LogKind::Enter:
        return "> " + e.text;
    case LogKind::Leave:
        return "< " + e.text;
    case LogKind::ConstructorEnter:
        return "+> " + e.text;
    case LogKind::ConstructorLeave:
        return "+< " + e.text;
    case LogKind::DestructorEnter:
        return "~> " + e.text;
    case LogKind::DestructorLeave:
        return "~< " + e.text;
    case LogKind::Tagged:
        return "[" + e.tag + "|" + std::to_string(e.code1) + "|" + e.text + "|" + std::to_string(e.code2) +
               "]";
    case LogKind::Message:
        break;
    }
    switch (e.level) {
    case LogLevel::Debug:
        return "D " + e.text;
    case LogLevel::Info:
        return "I " + e.text;
    case LogLevel::Warn:
        return "W " + e.text;
    case LogLevel::Error:
        return "E " + e.text;
    }
    return "? " + e.text;
}
