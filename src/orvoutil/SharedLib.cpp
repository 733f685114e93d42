#include <orvoutil/SharedLib.h>

#include <orvoelf/Dateiblick.h>
#include <orvoutil/Latin1.h>

#include <dlfcn.h>
#ifdef __ELF__
#include <link.h>
#endif

#include <atomic>
#include <cstdint>
#include <span>
#include <string_view>

namespace orvo::orvoutil {

namespace {

constexpr Latin1Text kUngueltigerName{u8"Der Name ist ungültig."};
constexpr Latin1Text kNichtGeoeffnet{u8"Die Bibliothek ist nicht geöffnet."};
constexpr Latin1Text kKeinGrund{u8"Das System nennt keinen Grund."};

bool hatNullbyte(const std::string& text) { return text.find('\0') != std::string::npos; }

constexpr char kHier[] = "./";

/// Whether the system would search for that path elsewhere.
bool wirdGesucht(const std::string& pfad) { return pfad.find('/') == std::string::npos; }

bool istNamenszeichen(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

/// The first word in a path that the loader would replace; empty when there is none.
std::string_view platzhalter(std::string_view pfad) {
    for (std::size_t i = pfad.find('$'); i != std::string_view::npos; i = pfad.find('$', i + 1)) {
        const bool geklammert = pfad.substr(i + 1).starts_with('{');
        const std::string_view rest = pfad.substr(i + (geklammert ? 2 : 1));
        for (const std::string_view name : {"ORIGIN", "LIB", "PLATFORM"}) {
            if (!rest.starts_with(name))
                continue;
            const std::string_view danach = rest.substr(name.size());
            if (geklammert ? danach.starts_with('}') : danach.empty() || !istNamenszeichen(danach.front()))
                return pfad.substr(i, name.size() + (geklammert ? 3 : 1));
        }
    }
    return {};
}

/// Why the system's last call failed.
std::string grundDesSystems() {
    const char* const grund = dlerror();
    return grund ? std::string(grund) : std::string(kKeinGrund);
}

#ifdef __ELF__

/// A walk over the process's libraries, in the order of their loading, to the one at an address.
struct Suche {
    ElfW(Addr) eigeneBasis;
    ElfW(Addr) adresse;
    bool eigeneErreicht = false;
};

bool liegtIn(const dl_phdr_info& bibliothek, ElfW(Addr) adresse) {
    for (const auto& segment : std::span(bibliothek.dlpi_phdr, bibliothek.dlpi_phnum)) {
        const ElfW(Addr) abstand =
            adresse - (bibliothek.dlpi_addr + segment.p_vaddr); // wraps before the segment
        if (segment.p_type == PT_LOAD && abstand < segment.p_memsz)
            return true;
    }
    return false;
}

int pruefeBibliothek(dl_phdr_info* bibliothek, std::size_t, void* daten) {
    auto& suche = *static_cast<Suche*>(daten);
    suche.eigeneErreicht = suche.eigeneErreicht || bibliothek->dlpi_addr == suche.eigeneBasis;
    // A plugin may be the first to need this library, which is no part of it all the same.
    return suche.eigeneErreicht && liegtIn(*bibliothek, suche.adresse) &&
           !liegtIn(*bibliothek, reinterpret_cast<ElfW(Addr)>(&pruefeBibliothek));
}

bool liegtInOderDanach(void* griff, const void* adresse) {
    link_map* eigene = nullptr;
    if (dlinfo(griff, RTLD_DI_LINKMAP, &eigene) != 0)
        return false;
    Suche suche{eigene->l_addr, reinterpret_cast<ElfW(Addr)>(adresse)};
    return dl_iterate_phdr(pruefeBibliothek, &suche) != 0;
}

#else

bool liegtInOderDanach(void* griff, const void* adresse) {
    Dl_info bibliothek, eigene;
    if (!dladdr(adresse, &bibliothek) || !dladdr(reinterpret_cast<void*>(&liegtInOderDanach), &eigene) ||
        bibliothek.dli_fbase == eigene.dli_fbase)
        return false;
    void* const ihrGriff = dlopen(bibliothek.dli_fname, RTLD_NOW | RTLD_NOLOAD);
    if (ihrGriff)
        dlclose(ihrGriff);
    return ihrGriff == griff;
}

#endif

} // namespace

SharedLib::SharedLib(const std::string& pfad, bool sofortLaden) : name_(pfad) {
    if (sofortLaden)
        SharedLib::load();
}

SharedLib::~SharedLib() {
    if (griff_)
        dlclose(griff_);
}

const std::string& SharedLib::getName() const { return name_; }
bool SharedLib::isLoaded() const { return griff_ != nullptr; }

bool SharedLib::load() {
    fehler_.clear();
    scheiterteVorDemOeffnen_ = false;
    if (griff_)
        return true;
    const std::string hier = wirdGesucht(name_) ? kHier + name_ : std::string();
    const std::string& dateipfad = hier.empty() ? name_ : hier;
    if (const std::string grund = pruefeDatei(dateipfad); !grund.empty()) {
        scheiterteVorDemOeffnen_ = true;
        return schlageFehl(grund);
    }
    griff_ = dlopen(dateipfad.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!griff_)
        return schlageFehl(grundDesSystems());
    static constinit std::atomic<std::uintptr_t> letzteOeffnung = 0;
    oeffnung_ = ++letzteOeffnung;
    return true;
}

/// Returns: why the system must not open the file; empty when it may.
std::string SharedLib::pruefeDatei(const std::string& dateipfad) const {
    if (name_.empty() || hatNullbyte(name_))
        return kUngueltigerName;
    if (const std::string_view wort = platzhalter(name_); !wort.empty())
        return "Platzhalter im Namen: " + std::string(wort);
    return orvoelf::blickeAufDatei(dateipfad).grund;
}

bool SharedLib::unload() {
    fehler_.clear();
    if (!griff_)
        return schlageFehl(kNichtGeoeffnet);
    const bool geschlossen = dlclose(griff_) == 0;
    griff_ = nullptr;
    oeffnung_ = 0;
    return geschlossen || schlageFehl(grundDesSystems());
}

void* SharedLib::getSymbol(const std::string& name) {
    fehler_.clear();
    dlerror(); // clears older errors
    if (!griff_)
        schlageFehl(kNichtGeoeffnet);
    else if (hatNullbyte(name))
        schlageFehl(kUngueltigerName);
    else if (void* const adresse = dlsym(griff_, name.c_str()))
        return adresse;
    else
        schlageFehl("Symbol \"" + name + "\" nicht gefunden. " + grundDesSystems());
    return nullptr;
}

std::string SharedLib::getLastError() const { return fehler_; }

bool SharedLib::enthaelt(const void* adresse) const {
    Dl_info irgendeine; // of which nothing is needed: the question is quick for what lies in no library
    return griff_ && dladdr(adresse, &irgendeine) && liegtInOderDanach(griff_, adresse);
}

/// Names the file once, also when the system's reason begins with its name.
bool SharedLib::schlageFehl(const std::string& grund) {
    const std::string anfang = name_ + ": ";
    const bool genannt = grund.starts_with(wirdGesucht(name_) ? kHier + anfang : anfang);
    fehler_ = name_.empty() || genannt ? grund : anfang + grund;
    return false;
}

} // namespace orvo::orvoutil
