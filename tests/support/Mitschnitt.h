#pragma once

#include <orvoutil/LogSink.h>

#include <memory>
#include <string>
#include <vector>

/// Installs a log sink while it lives, and keeps every entry. Lines have a short, exact form:
///
///     "> Klasse::op"   "< Klasse::op"          entry and exit of an operation
///     "+> Klasse()"    "+< Klasse()"           of a constructor
///     "~> Klasse()"    "~< Klasse()"           of a destructor
///     "D text" "I text" "W text" "E text"      messages by level
///     "[tag|99|text|99]"                       tagged entries
class Mitschnitt {
public:
    explicit Mitschnitt(orvo::orvoutil::LogLevel level = orvo::orvoutil::LogLevel::Debug);
    Mitschnitt(const Mitschnitt&) = delete;
    Mitschnitt& operator=(const Mitschnitt&) = delete;
    ~Mitschnitt();

    const std::vector<orvo::orvoutil::LogEntry>& eintraege() const;
    /// All lines, or those of one category.
    std::vector<std::string> zeilen() const;
    std::vector<std::string> zeilen(const std::string& kategorie) const;
    /// The lines without traces and debug messages.
    std::vector<std::string> meldungen() const;
    /// How many lines equal, or contain, that text.
    int anzahl(const std::string& zeile) const;
    int anzahlMit(const std::string& teil) const;
    void leere();

    static std::string zeile(const orvo::orvoutil::LogEntry& eintrag);

private:
    class Senke;
    std::shared_ptr<Senke> senke_;
};
