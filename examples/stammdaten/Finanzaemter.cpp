#include <stammdaten/Finanzaemter.h>

#include <orvoutil/Latin1.h>

#include <string_view>

namespace stammdaten {
namespace {

/// Made-up offices, one per line: number, blank, name.
constexpr orvo::orvoutil::Latin1Text kFinanzaemter{u8"9901 Amselfelde\n"
                                                   u8"9902 Grünwinkel-Süd\n"
                                                   u8"9903 Hohenmühle\n"
                                                   u8"9904 Königsaue\n"
                                                   u8"9905 Weißenbrück\n"};

} // namespace

Finanzaemter::Finanzaemter() {
    constexpr std::size_t kZiffern = 4;
    std::string_view rest(kFinanzaemter.c_str());
    while (!rest.empty()) {
        const std::string_view zeile = rest.substr(0, rest.find('\n'));
        namen_.emplace(zeile.substr(0, kZiffern), zeile.substr(kZiffern + 1));
        rest.remove_prefix(zeile.size() + 1);
    }
}

std::string Finanzaemter::nameVon(const std::string& nummer) const {
    const auto gefunden = namen_.find(nummer);
    return gefunden == namen_.end() ? std::string() : gefunden->second;
}

} // namespace stammdaten
