#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace werkzeug {

/// How the loader deals with several symbols of one name.
enum class Symbolbindung : std::int32_t {
    Global = 1,   ///< the first library that has it wins
    Schwach = 2,  ///< the same; and when it is missing, its address is null
    Einmalig = 3, ///< one for the whole process ("unique"): the library that has it is never unmapped
    Andere = 4,
};

/// What a symbol is.
enum class Symbolart : std::int32_t {
    Funktion = 1,
    Daten = 2,
    ThreadLokal = 3,
    Andere = 4, ///< also that of symbols that no library had when this one was linked
};

/// A name that a library offers to others, or needs from them.
struct Bibliothekssymbol {
    std::string name;
    Symbolbindung bindung = Symbolbindung::Global;
    Symbolart art = Symbolart::Andere;
};

/// What stands in a library's file for the loader.
struct Bibliotheksinhalt {
    std::string soname;                  ///< the name by which other libraries need it; empty for none
    std::vector<std::string> benoetigte; ///< names of the libraries that it needs, in the loader's order
    std::vector<std::string> suchpfade;  ///< where it wants these looked for, as written in the file
    std::vector<Bibliothekssymbol> exportierte;  ///< in the file's order
    std::vector<Bibliothekssymbol> undefinierte; ///< in the file's order
    std::uint32_t startfunktionen = 0;           ///< how many functions run when it is opened
    std::uint32_t endfunktionen = 0;             ///< and when it is closed
    bool bindetSofort = false;                   ///< wants all symbols bound when it is opened
    bool bleibtGeladen = false;                  ///< marked as never to be unmapped
    bool hatThreadLokale = false;                ///< has thread-local variables of its own
    bool aendertCode = false;                    ///< its code is written to when it is opened
};

/// A look into a library's file without opening it as a library: none of its code runs. Tells of a plugin what cannot be
/// learnt any more once a faulty one has been opened, and of any library what it offers and needs.
///
/// The file is first looked at as `SharedLib::load` does; of one that would be refused nothing is read, nor of one whose
/// tables lead out of the file. On systems other than Linux the content stays empty.
///
/// Errors: throws only std::bad_alloc; what is wrong with a file stands in `getGrund`.
/// Encoding: names are bytes, as in the file; the reason is Latin-1.
/// Threads: once made, any number may read.
class Bibliotheksbild {
public:
    /// Parameters: `pfad` names a file, also when it holds no slash.
    explicit Bibliotheksbild(const std::string& pfad);

    const std::string& getPfad() const { return pfad_; }
    /// Whether the file is a library that the loader may see and whose tables can be read.
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
