#pragma once

#include "kern/Arbeitsverzeichnis.h"

#include <memory>
#include <string>

namespace werkzeug {

/// The result of copying plugin directory B over A: a temporary directory with links to the files of both, where B's
/// files replace those with the same path below A.
///
/// A file of B that is already present under another name, as the same inode, is copied: copying B would have made two
/// libraries, but links would make one. The directory is removed with the object, also when the process is killed.
class Zusammenlegung {
public:
    /// Errors: `Unlesbar` when a directory of B cannot be read, or when B has a directory where A has a file or the
    /// other way round; `std::filesystem::filesystem_error` when the links cannot be made.
    Zusammenlegung(const std::string& a, const std::string& b);
    Zusammenlegung(const Zusammenlegung&) = delete;
    Zusammenlegung& operator=(const Zusammenlegung&) = delete;
    ~Zusammenlegung();

    const std::string& pfad() const { return verzeichnis_.pfad(); }
    /// The original of a file, by its path below the directory: its full path below A or B.
    std::string herkunft(const std::string& unterpfad) const;
    /// Replaces paths in the directory by the paths of the originals.
    std::string mitHerkunft(std::string text, const std::string& unterpfad) const;

private:
    class Waechter;

    std::string a_;
    std::string b_;
    std::unique_ptr<Waechter> waechter_; ///< makes the directory
    Arbeitsverzeichnis verzeichnis_;
};

} // namespace werkzeug
