#pragma once

#include <memory>
#include <string>

namespace werkzeug {

/// What would be in plugin directory A if B were copied over it: a directory of its own with links to the files of
/// both, where B's take the place of those with the same path below A.
///
/// A file of B that is there already under another name, as the same inode, is copied instead: copying would have made
/// two libraries of it, and links would not. The directory goes with the object, also when the process is killed.
class Zusammenlegung {
public:
    /// Errors: `Unlesbar` when a directory of B cannot be read, or when B has a directory where A has a file or the
    /// other way round; `std::filesystem::filesystem_error` when the links cannot be made.
    Zusammenlegung(const std::string& a, const std::string& b);
    Zusammenlegung(const Zusammenlegung&) = delete;
    Zusammenlegung& operator=(const Zusammenlegung&) = delete;
    ~Zusammenlegung();

    const std::string& pfad() const { return pfad_; }
    /// Where the file comes from, by its path below the directory: its full path below A or B.
    std::string herkunft(const std::string& unterpfad) const;
    /// The text, in which the path of a file of the directory is that of its origin.
    std::string mitHerkunft(std::string text, const std::string& unterpfad) const;

private:
    class Waechter;

    std::string a_;
    std::string b_;
    std::unique_ptr<Waechter> waechter_; ///< makes the directory
    std::string pfad_;
};

} // namespace werkzeug
