#pragma once

#include <string>

/// A temporary directory for one test, removed with its contents at the end.
class Verzeichnis {
public:
    Verzeichnis();
    Verzeichnis(const Verzeichnis&) = delete;
    Verzeichnis& operator=(const Verzeichnis&) = delete;
    ~Verzeichnis();

    const std::string& pfad() const { return pfad_; }
    /// Path of something in the directory.
    std::string pfad(const std::string& name) const { return pfad_ + "/" + name; }

    /// Each creates missing parent directories, and returns the path that it made.
    std::string legeAn(const std::string& verzeichnis) const;
    std::string schreibe(const std::string& datei, const std::string& inhalt) const;
    /// A copy is another inode, so the system's loader treats it as another library.
    std::string kopiere(const std::string& quelle, const std::string& datei) const;
    void entferne(const std::string& name) const;

private:
    std::string pfad_;
};
