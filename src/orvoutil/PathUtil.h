#pragma once

/// \file
/// Helpers for paths, all of them lexical: none looks at the file system, so links are not followed.
/// Encoding: paths are bytes; the separator is '/'. Errors: `std::bad_alloc`.

#include <orvoutil/Export.h>

#include <string>
#include <string_view>

namespace orvo::orvoutil {

/// Joins two parts with exactly one separator. When one part is empty, the other is the result.
ORVOUTIL_API std::string concatPath(std::string_view a, std::string_view b);

/// The path made absolute: below the current directory when it is relative, without ".", "..", doubled or
/// trailing slashes. It stays relative when the current directory is gone.
ORVOUTIL_API std::string getAbsolutePath(std::string_view pfad);

/// The full name of a file in a directory.
ORVOUTIL_API std::string getFullFilename(std::string_view verzeichnis, std::string_view name);

/// Splits a file's full name at the last slash and then at the last dot.
/// Parameters: `pfad` gets no trailing slash unless it is "/", `endung` no dot.
/// Returns: false, with the three unchanged, when the last component is empty or has no dot.
ORVOUTIL_API bool extractPathFilenameExtension(std::string_view voll, std::string& pfad, std::string& name,
                                               std::string& endung);

/// What follows the last slash.
ORVOUTIL_API std::string getOnlyFilenameOfFullFilename(std::string_view voll);

} // namespace orvo::orvoutil
