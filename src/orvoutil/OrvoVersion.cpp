#include <orvoutil/OrvoVersion.h>

#include <string_view>

namespace orvo::orvoutil {

namespace {

constexpr char kTrenner[] = ".,";
constexpr char kLeer[] = " \t";
constexpr char kZiffern[] = "0123456789";

std::string_view ab(std::string_view text, std::size_t stelle) {
    return stelle == std::string_view::npos ? std::string_view() : text.substr(stelle);
}

/// Takes the next part off the text. Returns: the part without blanks around it.
std::string_view nimmTeil(std::string_view& text) {
    const std::size_t ende = text.find_first_of(kTrenner);
    std::string_view teil = text.substr(0, ende);
    text = ende == std::string_view::npos ? std::string_view() : text.substr(ende + 1);

    teil = ab(teil, teil.find_first_not_of(kLeer));
    return teil.substr(0, teil.find_last_not_of(kLeer) + 1);
}

bool istZahl(std::string_view teil) { return teil.find_first_not_of(kZiffern) == std::string_view::npos; }

/// Takes the next number off the text. Returns: its digits without leading zeros, so none for 0.
std::string_view nimmZahl(std::string_view& text) {
    const std::string_view teil = nimmTeil(text);
    return istZahl(teil) ? ab(teil, teil.find_first_not_of('0')) : std::string_view();
}

std::strong_ordering vergleicheZahlen(std::string_view a, std::string_view b) {
    return a.size() != b.size() ? a.size() <=> b.size() : a.compare(b) <=> 0;
}

} // namespace

OrvoVersion::OrvoVersion(const std::string& text) : text_(text) {}

bool OrvoVersion::hatNurZahlen() const noexcept {
    if (text_.find_last_of(kTrenner) == text_.size() - 1) // nothing behind it; or the text is empty
        return false;
    for (std::string_view rest = text_; !rest.empty();)
        if (const std::string_view teil = nimmTeil(rest); teil.empty() || !istZahl(teil))
            return false;
    return true;
}

bool OrvoVersion::operator==(const OrvoVersion& andere) const noexcept {
    return (*this <=> andere) == std::strong_ordering::equal;
}

std::strong_ordering OrvoVersion::operator<=>(const OrvoVersion& andere) const noexcept {
    std::string_view a = text_;
    std::string_view b = andere.text_;
    while (!a.empty() || !b.empty()) {
        const std::string_view zahlA = nimmZahl(a);
        const std::string_view zahlB = nimmZahl(b);
        if (const auto ordnung = vergleicheZahlen(zahlA, zahlB); ordnung != std::strong_ordering::equal)
            return ordnung;
    }
    return std::strong_ordering::equal;
}

} // namespace orvo::orvoutil
