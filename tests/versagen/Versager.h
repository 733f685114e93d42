#pragma once

#include <string_view>

/// Makes one call of the system fail ("versagen"): the n-th, from 0, of those that can fail in that way. It stands for the
/// system's functions of that name in the whole process, because its library is linked first. What it does not stand
/// for: the calls that the system's loader and the C library make inside themselves. `close`, `closedir` and `dlclose` do
/// their work and then report a failure.
///
/// Threads: one.
class Versager {
public:
    enum Art : unsigned {
        FEHLER = 1,   ///< the system reports an error
        EIN_BYTE = 2, ///< a read yields one byte,
        HALB = 4,     ///< or half of what was asked for
        ENDE = 8,     ///< a file or a directory is at its end
        AUSFALL = 16, ///< a function without error numbers fails
    };
    struct Weise {
        Art art;
        int fehlernummer = 0;
    };

    Versager(Weise weise, int nummer);
    Versager(const Versager&) = delete;
    Versager& operator=(const Versager&) = delete;
    ~Versager();

    /// The function that failed; empty when there were fewer calls.
    static std::string_view ruf();
    /// The file or directory that it was called for; empty where the call has none.
    static std::string_view ort();
    /// Whether that function was ever called while a `Versager` lived.
    static bool gabEs(std::string_view ruf);

    /// Blocks of memory that `operator new` gave and nobody gave back. Always 0 with AddressSanitizer, which counts itself.
    static long belegteBloecke();

    /// A variable of the environment with the name of a function that fails once while the process starts.
    static constexpr char kBeimLaden[] = "ORVO_VERSAGT_BEIM_LADEN";

    /// What `dlerror` says after a failure of this kind.
    static constexpr char kGrundDesLaders[] = "ein Ausfall des Laders";
};
