#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

namespace werkzeug {

/// How a child process ended.
struct Kindende {
    enum class Art {
        GUT,     ///< its work came back
        SIGNAL,  ///< a signal ended it; `zahl` is its number
        BEENDET, ///< its code ended the process before the work was done; `zahl` is the exit code
        ZEIT,    ///< it was killed, for nothing came from it in time
        KANAL, ///< it was killed, for its code closed the way to the parent, or wrote there what is no record
    };

    Art art = Art::GUT;
    int zahl = 0;
    std::string ausgabe; ///< the last that was written to its standard error, as it came: at most 4 KiB

    bool istGut() const { return art == Art::GUT; }
    /// For people: "ended by signal 11 (SIGSEGV)" and the like; empty when it ended well.
    std::string text() const;
};

/// Hands a record from the child to its parent. For the child's work; after it has returned true the parent has the
/// record even if the child crashes at once.
using Sender = std::function<bool(std::string_view)>;

/// What the child does, and what becomes of its records; the latter runs in the parent as they come in.
using Kindarbeit = std::function<void(const Sender& sende)>;
using Empfang = std::function<void(std::string_view)>;

/// Somebody wants this process to end, by a signal, while a child is waited for. It is thrown when nothing of the child
/// is left; who catches it cleans up and ends by that signal. Not to be taken for an error, and so of no error's class.
struct Unterbrochen {
    int signal = 0;
};

/// In a child: a descriptor for what it has to say on our standard error. Not for plugins: these write to theirs.
int protokollDeskriptor();
/// In a child: ends it as one that cannot report any more, for what it has to say was tampered with.
[[noreturn]] void meldeKanalVerloren();
/// In a child that has nothing to say there: closes it, so that no code in the child comes by it.
void schliesseProtokollDeskriptor();

/// Runs work that may crash, hang or end its process, in a child of its own.
///
/// The child is a copy of this process, without its descriptors. Its standard input and output are the null device,
/// its standard error is kept from the terminal (see `Kindende::ausgabe`); it ignores SIGPIPE. It has a session of its
/// own, and so no terminal. It dies with us. The way to the parent is a descriptor of random number, and each record
/// carries a secret of this one child: code in the child that writes to any descriptor does not pass for it. Its parent
/// is a process that stands in for us, so that a signal to it ends the child only. When the child has ended, or when
/// for the time given neither a record nor its end has come, all of its process group is killed, and on Linux what
/// left the group too, so that nothing that it has started stays.
///
/// Parameters: `takt`, if given, is called now and then while the child is waited for.
/// Errors: `Unterbrochen` on SIGINT, SIGTERM and SIGHUP; `std::system_error` when no child can be made. An exception
/// that leaves the work counts as its end by `abort`.
Kindende laufeImKind(const Kindarbeit& arbeit, const Empfang& empfange,
                     std::chrono::duration<double> zeitlimit, const std::function<void()>& takt = {});

} // namespace werkzeug
