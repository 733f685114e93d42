#include "bestandsliste/Inhalt.h"

#include "kern/Sammler.h"
#include "kern/Sprache.h"

#include <fcntl.h>
#include <nettle/base16.h>
#include <nettle/sha2.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <vector>

namespace werkzeug {

namespace {

constexpr std::size_t kStueck = 1 << 18; // a large file is read in pieces

[[noreturn]] void scheitere(const std::string& pfad) {
    throw Unlesbar(einzeilig(pfad) + ": " + systemtext(errno));
}

} // namespace

std::optional<Inhalt> inhaltVon(const std::string& pfad) {
    struct stat s {};
    if (stat(pfad.c_str(), &s) != 0 || !S_ISREG(s.st_mode))
        return {};
    // Does not wait if somebody puts a pipe there meanwhile.
    const int deskriptor = open(pfad.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (deskriptor < 0)
        scheitere(pfad);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> datei(fdopen(deskriptor, "rb"), std::fclose);
    sha256_ctx summe;
    sha256_init(&summe);
    Inhalt inhalt;
    std::vector<std::uint8_t> stueck(kStueck);
    while (const std::size_t gelesen = std::fread(stueck.data(), 1, stueck.size(), datei.get())) {
        sha256_update(&summe, gelesen, stueck.data());
        inhalt.groesse += gelesen;
    }
    if (std::ferror(datei.get()))
        scheitere(pfad);
    std::uint8_t bytes[SHA256_DIGEST_SIZE];
    sha256_digest(&summe, sizeof bytes, bytes);
    inhalt.sha256.resize(BASE16_ENCODE_LENGTH(sizeof bytes));
    base16_encode_update(inhalt.sha256.data(), sizeof bytes, bytes);
    return inhalt;
}

Json inhaltAlsJson(const std::optional<Inhalt>& inhalt, const std::optional<PluginFakt>& plugin) {
    return {{"size", inhalt ? Json(inhalt->groesse) : Json(nullptr)},
            {"sha256", inhalt ? Json(inhalt->sha256) : Json(nullptr)},
            {"product_version", plugin ? jsonText(plugin->produktVersion) : Json(nullptr)},
            {"file_version", plugin ? jsonText(plugin->fileVersion) : Json(nullptr)}};
}

void liesInhalte(Bestand& bestand, bool fortschritt) {
    Fortschritt zeile(fortschritt);
    for (DateiFakt& datei : bestand.dateien) {
        zeile.zeige(satz("reading {1}", einzeilig(datei.name)));
        try {
            datei.inhalt = inhaltVon(bestand.fundort(datei));
        } catch (const Unlesbar&) { // the callers say so
        }
    }
}

} // namespace werkzeug
