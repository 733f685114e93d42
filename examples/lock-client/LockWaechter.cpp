#include "LockWaechter.h"

#include <nettle/base16.h>
#include <nettle/sha2.h>
#include <nlohmann/json.hpp>

#include <array>
#include <exception>
#include <fstream>
#include <stdexcept>

namespace {

std::string sha256(const std::string& pfad) {
    std::ifstream datei(pfad, std::ios::binary);
    sha256_ctx summe;
    sha256_init(&summe);
    std::array<char, 65536> stueck;
    do {
        datei.read(stueck.data(), stueck.size());
        sha256_update(&summe, static_cast<std::size_t>(datei.gcount()),
                      reinterpret_cast<const std::uint8_t*>(stueck.data()));
    } while (datei);
    if (!datei.eof())
        throw std::runtime_error("cannot be read");
    std::uint8_t bytes[SHA256_DIGEST_SIZE];
    sha256_digest(&summe, sizeof bytes, bytes);
    std::string text(BASE16_ENCODE_LENGTH(sizeof bytes), '\0');
    base16_encode_update(text.data(), sizeof bytes, bytes);
    return text;
}

} // namespace

LockWaechter::LockWaechter(const std::string& lockdatei, const std::string& pluginverzeichnis)
    : anfang_(pluginverzeichnis + "/") {
    std::ifstream datei(lockdatei);
    const nlohmann::json liste = nlohmann::json::parse(datei);
    if (liste.at("format") != "orvoplugin-lock" || liste.at("format_version") != 1)
        throw std::runtime_error(lockdatei + " is no lock file of version 1");
    for (const nlohmann::json& eintrag : liste.at("files"))
        if (eintrag.at("state") == "loaded") // what was refused then is not tried now
            summen_[eintrag.at("path")] = eintrag.at("sha256");
}

bool LockWaechter::ladeDatei(const std::string& pfad) noexcept {
    std::string grund;
    try {
        grund = warumNicht(pfad);
    } catch (const std::exception& ausnahme) {
        grund = ausnahme.what();
    }
    if (!grund.empty())
        abgewiesene_.push_back(pfad + ": " + grund);
    return grund.empty();
}

std::string LockWaechter::warumNicht(const std::string& pfad) const {
    if (!pfad.starts_with(anfang_))
        return "is not in the plugin directory";
    const auto eintrag = summen_.find(pfad.substr(anfang_.size()));
    if (eintrag == summen_.end())
        return "is not in the lock file";
    return sha256(pfad) == eintrag->second ? "" : "is not as locked";
}
