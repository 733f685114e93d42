#pragma once

#include "kern/Kindprozess.h"

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace werkzeug {

/// How many processors this process may use.
std::size_t verfuegbareProzessoren();

/// Pieces of work that are done in processes of their own, several at once.
struct Arbeitsplan {
    std::vector<std::size_t> stuecke; ///< numbers of the pieces, in the order in which they are begun
    std::size_t zugleich = 1;         ///< processes at once
    /// Does a piece, in its process. What is sent is read in the caller.
    std::function<void(std::size_t stueck, const std::function<void(std::string_view)>& sende)> arbeit;
    /// Called when a piece is done, with all that it sent, and how its process ended.
    std::function<void(std::size_t stueck, const std::string& gesendet, const Kindende& ende)> fertig;
    /// Called at intervals with the piece that was begun first and is under way, and what it has sent so far.
    std::function<void(std::size_t stueck, const std::string& gesendet)> takt;
};

/// Does all pieces. The work may use `laufeImKind`; plugin code belongs there, and not into these processes.
/// Errors: `Unterbrochen` on SIGINT, SIGTERM and SIGHUP, after the processes and their children have been removed;
/// `std::system_error` when no process can be made.
void verteile(const Arbeitsplan& plan);

} // namespace werkzeug
