#pragma once

// The words of the command-line parser in the user's language.

#include <string>

namespace CLI {
class App;
}

namespace werkzeug {

/// Translates the help of the program and of its commands, whose texts are given in English.
void uebersetzeHilfe(CLI::App& app);

/// The text of an error of the parser, translated where it is of a known form.
std::string parsertext(const std::string& text);

} // namespace werkzeug
