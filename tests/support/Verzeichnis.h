#pragma once

#include <string>

/// A directory of its own for one test, removed with everything in it at the end.
class Verzeichnis {
public:
    Verzeichnis();
    Verzeichnis(const Verzeichnis&) = delete;
    Verzeichnis& operator=(const Verzeichnis&) = delete;
    ~Verzeichnis();

    const std::string& pfad() const { return pfad_; }
    /// Path of something in the directory.
    std::string pfad(const std::string& name) const { return pfad_ + "/" + name; }

    /// Each makes the directories on the way, and returns the path of what it made.
    std::string legeAn(const std::string& verzeichnis) const;
    std::string schreibe(const std::string& datei, const std::string& inhalt) const;
    /// A copy has an inode of its own, so the system's loader takes it for another library.
    std::string kopiere(const std::string& quelle, const std::string& datei) const;
    void entferne(const std::string& name) const;

private:
    std::string pfad_;
};
