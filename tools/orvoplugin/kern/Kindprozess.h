#pragma once

#include <sys/types.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <set>
#include <string>
#include <string_view>

namespace werkzeug {

/// How a child process ended.
struct Kindende {
    enum class Art {
        GUT,     ///< its work came back
        SIGNAL,  ///< a signal ended it; `zahl` is its number
        BEENDET, ///< its code ended the process before the work was done; `zahl` is the exit code
        ZEIT,    ///< it was killed: it sent nothing in time
        KANAL,   ///< it was killed: its code closed the channel to the parent, or wrote invalid data to it
    };

    Art art = Art::GUT;
    int zahl = 0;
    std::string ausgabe; ///< the end of its standard error output, unchanged: at most 4 KiB

    bool istGut() const { return art == Art::GUT; }
    /// For people: "ended by signal 11 (SIGSEGV)" and the like; empty when it ended well.
    std::string text() const;
};

/// Sends a record from the child to its parent. Once it has returned true, the parent gets the record even if the child
/// crashes at once.
using Sender = std::function<bool(std::string_view)>;

/// The work of the child, and the handler of its records; the handler runs in the parent as records arrive.
using Kindarbeit = std::function<void(const Sender& sende)>;
using Empfang = std::function<void(std::string_view)>;

/// Thrown when a signal asks this process to end while it waits for a child, after the child has been removed. The
/// handler cleans up and ends by that signal. It is not an error, and so is not derived from an exception class.
struct Unterbrochen {
    int signal = 0;
};

/// Records SIGINT, SIGTERM and SIGHUP while it lives, so that children are ended first.
class Signalwache {
public:
    Signalwache();
    Signalwache(const Signalwache&) = delete;
    Signalwache& operator=(const Signalwache&) = delete;
    ~Signalwache();

    /// Errors: `Unterbrochen` when one came.
    void pruefe() const;
    /// Lets the signals act as before. Returns: false when one came.
    bool legeNieder();

private:
    static constexpr int kSignale[] = {SIGINT, SIGTERM, SIGHUP};
    struct sigaction vorher_[3];
};

/// A pipe whose ends no other program inherits.
/// Errors: `std::system_error`.
class Rohr {
public:
    Rohr();
    Rohr(const Rohr&) = delete;
    Rohr& operator=(const Rohr&) = delete;
    ~Rohr();

    int lesende() const { return enden_[0]; }
    int schreibende() const { return enden_[1]; }
    /// Moves the writing end to a random number.
    void versteckeSchreibende();
    void schliesse(int ende);

private:
    int enden_[2] = {-1, -1};
};

/// Waits until the child has ended. Returns: its wait status.
int warteAuf(pid_t kind);
/// How a child ended, by its wait status; well if its exit code is 0.
Kindende kindende(int zustand);

/// The children of this process; none where the system does not tell.
std::set<pid_t> kinder();
/// Ends all children of this process but these, and orphans that become its children by that.
void raeumeAuf(const std::set<pid_t>& eigene);

/// Returns: whether all could be written.
bool schreibeGanz(int deskriptor, const void* daten, std::size_t anzahl);

/// In a child: a descriptor of the tool's own standard error. Plugins do not see it: they write to the child's.
int protokollDeskriptor();
/// In a child: ends it because its report can no longer be trusted.
[[noreturn]] void meldeKanalVerloren();
/// In a child that writes no messages: closes that descriptor, so that plugin code cannot use it.
void schliesseProtokollDeskriptor();

/// Runs work that may crash, hang or end its process in a child process.
///
/// The child is a fork of this process without its descriptors. Its standard input and output are the null device; its
/// standard error is captured (see `Kindende::ausgabe`). It ignores SIGPIPE, has a session of its own and so no
/// terminal, and is killed when this process dies. Records go through a descriptor with a random number, and each
/// carries a secret of this child, so that plugin code that writes to any descriptor cannot forge one. Between child
/// and tool stands another process as the child's parent: a signal to the parent ends the child only.
/// When the child has ended, or has sent nothing for the given time, its whole process group is killed; on Linux,
/// processes that left the group are killed too.
///
/// Parameters: `takt`, if given, is called at intervals while the child runs.
/// Errors: `Unterbrochen` on SIGINT, SIGTERM and SIGHUP; `std::system_error` when no child can be made. An exception
/// that leaves the work ends the child by `abort`.
Kindende laufeImKind(const Kindarbeit& arbeit, const Empfang& empfange,
                     std::chrono::duration<double> zeitlimit, const std::function<void()>& takt = {});

} // namespace werkzeug
