#pragma once

#include <orvoutil/Export.h>

#include <list>
#include <string>

namespace orvo::orvoutil {

/// The names in a directory when the object was made, sorted bytewise: the same order on every file system. Hidden
/// entries (with a leading dot) are left out.
///
/// Errors: what cannot be read is missing from the lists, and `getFehler` gives the reason; `std::bad_alloc`.
/// Encoding: names are bytes, as the file system has them.
class ORVOUTIL_API DirReader {
public:
    /// Parameters: `muster` selects files: '*' stands for any number of bytes, '?' for one. So "*.*" takes only names
    /// with a dot in them.
    DirReader(const std::string& verzeichnis, const std::string& muster);

    /// The regular files whose names match the pattern, and links to such files.
    const std::list<std::string>& getFiles() const { return dateien_; }
    /// The subdirectories, whatever their names. Links to directories are left out, so that a walk always ends.
    const std::list<std::string>& getDirectories() const { return verzeichnisse_; }
    /// Why the directory could not be read to its end, or which entry may be a file that the lists lack: a path and the
    /// system's reason. Empty when all was read, for a directory that does not exist, and for links that lead nowhere.
    const std::string& getFehler() const { return fehler_; }

private:
    /// Returns: 0, or the system's error number.
    int lies(const std::string& verzeichnis, const std::string& muster);

    std::list<std::string> dateien_;
    std::list<std::string> verzeichnisse_;
    std::string fehler_;
};

} // namespace orvo::orvoutil
