#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace werkzeug {

/// How the loader resolves several symbols of one name.
enum class Symbolbindung : std::int32_t {
    Global = 1,   ///< the first library that has it wins
    Schwach = 2,  ///< the same; its address is null when it is missing
    Einmalig = 3, ///< one for the whole process ("unique"); its library is never unmapped
    Andere = 4,
};

/// What a symbol is.
enum class Symbolart : std::int32_t {
    Funktion = 1,
    Daten = 2,
    ThreadLokal = 3,
    Andere = 4, ///< also symbols that were undefined at link time
};

/// A name that a library offers to others, or needs from them.
struct Bibliothekssymbol {
    std::string name;
    Symbolbindung bindung = Symbolbindung::Global;
    Symbolart art = Symbolart::Andere;
};

/// A version of another library's symbols that a library needs, such as "GLIBC_2.34" of "libc.so.6".
struct Versionsbedarf {
    std::string bibliothek;
    std::string version;
};

/// The contents of a library's file that concern the loader.
struct Bibliotheksinhalt {
    std::string soname;                  ///< the name by which other libraries need it; empty for none
    std::vector<std::string> benoetigte; ///< names of the libraries that it needs, in the loader's order
    std::vector<std::string> suchpfade;  ///< where these are searched, as written in the file
    std::vector<Bibliothekssymbol> exportierte;  ///< in the file's order
    std::vector<Bibliothekssymbol> undefinierte; ///< in the file's order
    std::vector<Versionsbedarf> versionen;       ///< in the file's order
    std::uint32_t startfunktionen = 0;           ///< number of functions that run on opening
    std::uint32_t endfunktionen = 0;             ///< and on closing
    bool bindetSofort = false;                   ///< all symbols are bound on opening
    bool bleibtGeladen = false;                  ///< marked as never to be unmapped
    bool hatThreadLokale = false;                ///< defines thread-local variables
    bool aendertCode = false;                    ///< has text relocations
    bool nenntStapel = false;                    ///< says whether its code runs on the stack
    bool stapelMitCode = false;                  ///< says that it does
};

/// Reads a library's file without opening the library: none of its code runs. Shows what cannot be examined safely by
/// opening a faulty plugin, and what any library exports and needs.
///
/// The file is first checked as `SharedLib::load` does; a file that this would refuse is not read, nor one whose tables
/// exceed the file. On systems other than Linux the contents stay empty.
///
/// Errors: throws only std::bad_alloc; `getGrund` says what is wrong with a file.
/// Encoding: names are bytes, as in the file; the reason is Latin-1.
/// Threads: any number of threads may read a finished object.
class Bibliotheksbild {
public:
    /// Parameters: `pfad` names a file, also when it holds no slash.
    explicit Bibliotheksbild(const std::string& pfad);

    const std::string& getPfad() const { return pfad_; }
    /// Whether the loader may open the file and its tables can be read.
    bool istLadbar() const { return grund_.empty(); }
    /// Why it is not; without the file's name; empty when it is.
    const std::string& getGrund() const { return grund_; }

    const Bibliotheksinhalt& getInhalt() const { return inhalt_; }
    /// Returns: the exported symbol of that name, owned by this object; null when there is none.
    const Bibliothekssymbol* findeExportiertes(std::string_view name) const;
    /// Whether it exports a function of that name, so that `SharedLib::getSymbol` would find one.
    bool exportiertFunktion(std::string_view name) const;
    /// Whether it registers destructors of thread-local variables. Once one is registered, the library stays mapped
    /// until that thread ends.
    bool hatThreadDestruktoren() const;

private:
    std::string pfad_;
    std::string grund_;
    Bibliotheksinhalt inhalt_;
};

} // namespace werkzeug
