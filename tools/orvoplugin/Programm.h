#pragma once

namespace werkzeug {

/// The whole program: reads the command line, runs the command that it names. Returns: the exit code.
int programm(int argc, char** argv);

} // namespace werkzeug
