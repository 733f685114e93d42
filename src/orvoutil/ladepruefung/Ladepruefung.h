#pragma once

#include <string>

namespace orvo::orvoutil {

struct Bibliotheksinhalt;
struct Vorwissen;

/// Looks at a library's file before the system's loader does. The loader trusts what it maps: a truncated file, or
/// one whose headers point astray, can end the process instead of failing to load.
///
/// It reads the headers and the tables that the loader follows, not the code. Between this look and the loader's
/// own the file may still be exchanged or cut: whoever updates a library writes a new file and renames it into
/// place. (Opening the file once and handing the loader the descriptor would close this window, but the library
/// would bear another name then, and opening it twice would give two libraries.)
///
/// Parameters: `pfad` names a file, with a slash in it, as the loader gets it.
/// Returns: why the loader should not see the file; empty when nothing speaks against it. On systems whose
/// libraries are of a kind unknown here nothing does.
/// Errors: none but want of memory.
/// Encoding: Latin-1, without the path. Threads: any.
std::string grundGegenLaden(const std::string& pfad);

/// The same with fewer system calls: a file that has not changed since it passed is not read again. Takes down what it
/// found.
std::string grundGegenLaden(const std::string& pfad, Vorwissen& vorwissen);

/// The same as the first; and when nothing speaks against the file, takes down what stands in it for the loader.
std::string grundGegenLaden(const std::string& pfad, Bibliotheksinhalt& inhalt);

} // namespace orvo::orvoutil
