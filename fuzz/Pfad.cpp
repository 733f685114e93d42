// Helpers for paths: two paths, one per line.

#include <orvoutil/PathUtil.h>

#include "Eingabe.h"

using namespace orvo::orvoutil;

namespace {

bool istAufgeloest(const std::string& pfad) {
    const std::string mitEnde = pfad + "/";
    return pfad.starts_with('/') && (pfad == "/" || !pfad.ends_with('/')) &&
           pfad.find("//") == std::string::npos && mitEnde.find("/./") == std::string::npos &&
           mitEnde.find("/../") == std::string::npos;
}

void pruefeTeile(const std::string& voll) {
    std::string pfad = "p", name = "n", endung = "e";
    if (!extractPathFilenameExtension(voll, pfad, name, endung)) {
        verlange(pfad == "p" && name == "n" && endung == "e", "what has no parts gives none");
        verlange(getOnlyFilenameOfFullFilename(voll).find('.') == std::string::npos,
                 "what has a dot has parts");
        return;
    }
    verlange(endung.find('.') == std::string::npos && endung.find('/') == std::string::npos,
             "the last dot counts");
    verlange(name.find('/') == std::string::npos, "the last slash counts");
    verlange(pfad == "/" || !pfad.ends_with('/'), "a directory ends without a slash");
    const std::string wieder = getFullFilename(pfad, name + "." + endung);
    verlange(getAbsolutePath(wieder) == getAbsolutePath(voll), "the parts give the file back");
    verlange(getOnlyFilenameOfFullFilename(wieder) == getOnlyFilenameOfFullFilename(voll), "and its name");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* daten, std::size_t laenge) {
    Zeilen zeilen(daten, laenge);
    const std::string a = zeilen.naechste(), b = zeilen.naechste();
    pruefeTeile(a);
    const std::string absolut = getAbsolutePath(a);
    verlange(istAufgeloest(absolut), "an absolute path is resolved");
    verlange(getAbsolutePath(absolut) == absolut, "and stays as it is");
    const std::string verbunden = concatPath(a, b);
    if (a.empty() || b.empty())
        verlange(verbunden == a + b, "an empty part adds nothing");
    else
        verlange(verbunden.size() <= a.size() + 1 + b.size() && verbunden.find('/') != std::string::npos,
                 "two parts have one separator");
    verlange(getOnlyFilenameOfFullFilename(a).find('/') == std::string::npos, "a name has no slash");
    return 0;
}
