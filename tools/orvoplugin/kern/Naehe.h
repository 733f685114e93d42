#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace werkzeug {

/// The edit distance of two texts: letters to insert, delete, replace or swap with the next. Ignores letter case.
std::size_t abstand(std::string_view a, std::string_view b);

/// The word that was probably meant: the one with the smallest distance. Numbers are never near.
/// Returns: an empty text when no word is near enough, or the text is one of the words.
std::string naechstes(const std::string& text, const std::vector<std::string>& worte);

/// The question whether that word was meant, to follow a message: ": did you mean LSTB?". Empty without a word.
std::string rueckfrage(const std::string& wort);

} // namespace werkzeug
