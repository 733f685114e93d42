#include <orvoutil/SharedLib.h>

#include <orvoutil/Latin1.h>
#include <orvoutil/ladepruefung/Ladepruefung.h>

#include <dlfcn.h>
#ifdef __ELF__
#include <link.h>
#endif

#include <cstdint>
#include <new>
#include <string_view>

namespace orvo::orvoutil {

namespace {

constexpr Latin1Text kUngueltigerName{u8"Der Name ist ungültig."};
constexpr Latin1Text kNichtGeoeffnet{u8"Die Bibliothek ist nicht geöffnet."};
constexpr Latin1Text kKeinGrund{u8"Das System nennt keinen Grund."};

bool hatNullbyte(const std::string& text) { return text.find('\0') != std::string::npos; }

/// Whether the system would search for that path elsewhere.
bool wirdGesucht(const std::string& pfad) { return pfad.find('/') == std::string::npos; }

/// Why the system's last call failed.
std::string grundDesSystems() {
    const char* const grund = dlerror();
    return grund ? std::string(grund) : std::string(kKeinGrund);
}

#ifdef __ELF__

/// Walks the process's libraries, in the order in which they were loaded, for the one at an address.
struct Suche {
    ElfW(Addr) eigeneBasis;
    ElfW(Addr) adresse;
    bool eigeneErreicht = false;
    bool gefunden = false;
};

bool liegtIn(const dl_phdr_info& bibliothek, ElfW(Addr) adresse) {
    for (int i = 0; i < bibliothek.dlpi_phnum; ++i) {
        const auto& segment = bibliothek.dlpi_phdr[i];
        const ElfW(Addr) anfang = bibliothek.dlpi_addr + segment.p_vaddr;
        if (segment.p_type == PT_LOAD && adresse >= anfang && adresse - anfang < segment.p_memsz)
            return true;
    }
    return false;
}

int pruefeBibliothek(dl_phdr_info* bibliothek, std::size_t, void* daten) {
    auto& suche = *static_cast<Suche*>(daten);
    suche.eigeneErreicht = suche.eigeneErreicht || bibliothek->dlpi_addr == suche.eigeneBasis;
    suche.gefunden = suche.eigeneErreicht && liegtIn(*bibliothek, suche.adresse);
    return suche.gefunden;
}

bool liegtInOderDanach(void* griff, const void* adresse) {
    link_map* eigene = nullptr;
    if (dlinfo(griff, RTLD_DI_LINKMAP, &eigene) != 0)
        return false;
    Suche suche{eigene->l_addr, reinterpret_cast<ElfW(Addr)>(adresse)};
    dl_iterate_phdr(pruefeBibliothek, &suche);
    return suche.gefunden;
}

#else

bool liegtInOderDanach(void* griff, const void* adresse) {
    Dl_info bibliothek;
    if (!dladdr(adresse, &bibliothek))
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
    const std::string hier = wirdGesucht(name_) ? "./" + name_ : std::string();
    const std::string& dateipfad = hier.empty() ? name_ : hier;
    if (const std::string grund = hindernis(dateipfad); !grund.empty()) {
        scheiterteVorDemOeffnen_ = true;
        return schlageFehl(grund);
    }
    griff_ = dlopen(dateipfad.c_str(), RTLD_NOW | RTLD_LOCAL);
    return griff_ || schlageFehl(grundDesSystems());
}

/// Looks at the file before the system opens it. Returns: why it must not; empty when it may.
std::string SharedLib::hindernis(const std::string& dateipfad) {
    if (name_.empty() || hatNullbyte(name_))
        return kUngueltigerName;
    return grundGegenLaden(dateipfad, vorwissen_);
}

bool SharedLib::unload() {
    fehler_.clear();
    if (!griff_)
        return schlageFehl(kNichtGeoeffnet);
    const bool geschlossen = dlclose(griff_) == 0;
    griff_ = nullptr;
    gefundene_.clear();
    return geschlossen || schlageFehl(grundDesSystems());
}

void* SharedLib::getSymbol(const std::string& name) {
    fehler_.clear();
    for (const Symbol& symbol : gefundene_)
        if (symbol.name == name)
            return symbol.adresse;
    dlerror(); // forgets older errors: a symbol without an address is none
    if (!griff_)
        schlageFehl(kNichtGeoeffnet);
    else if (hatNullbyte(name))
        schlageFehl(kUngueltigerName);
    else if (void* const adresse = dlsym(griff_, name.c_str()))
        return merke(name, adresse);
    else
        schlageFehl("Symbol \"" + name + "\" nicht gefunden. " + grundDesSystems());
    return nullptr;
}

/// Keeps the address while the library is open. The first few are enough: a plugin has about as many factories and
/// hooks, and who asks for ever new names gets no slower.
void* SharedLib::merke(const std::string& name, void* adresse) noexcept {
    constexpr std::size_t kHoechstens = 8;
    try {
        if (gefundene_.empty())
            gefundene_.reserve(kHoechstens / 2);
        if (gefundene_.size() < kHoechstens)
            gefundene_.push_back({name, adresse});
    } catch (const std::bad_alloc&) { // then it is looked up again
    }
    return adresse;
}

std::string SharedLib::getLastError() const { return fehler_; }

bool SharedLib::enthaelt(const void* adresse) const { return griff_ && liegtInOderDanach(griff_, adresse); }

/// Says the file's name once, also when the system's reason begins with it.
bool SharedLib::schlageFehl(const std::string& grund) {
    const std::string anfang = name_ + ": ";
    const bool genannt = grund.starts_with(wirdGesucht(name_) ? "./" + anfang : anfang);
    fehler_ = name_.empty() || genannt ? grund : anfang + grund;
    return false;
}

} // namespace orvo::orvoutil
