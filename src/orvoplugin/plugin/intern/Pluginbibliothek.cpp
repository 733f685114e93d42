#include <orvoplugin/plugin/intern/Pluginbibliothek.h>

#include <orvoutil/SharedLib.h>

#ifdef __ELF__
#include <link.h>
#else
#include <dlfcn.h>
#endif

#include <algorithm>

using namespace orvo::orvoutil;

namespace {

bool gibtEsAusnahme() noexcept { return std::uncaught_exceptions() > 0 || std::current_exception(); }

#ifdef __ELF__
extern "C" const ElfW(Ehdr) eigenerKopf __asm__("__ehdr_start") __attribute__((visibility("hidden")));
#endif

/// Whether an address lies in this library, which outlives every plugin. Linkers put a library's headers at its address 0.
bool istEigenerCode(const void* adresse) {
#ifdef __ELF__
    const auto basis = reinterpret_cast<ElfW(Addr)>(&eigenerKopf);
    const auto* segment = reinterpret_cast<const ElfW(Phdr)*>(basis + eigenerKopf.e_phoff);
    const auto hatDie = [stelle = reinterpret_cast<ElfW(Addr)>(adresse) - basis](const ElfW(Phdr) & s) {
        return s.p_type == PT_LOAD && stelle - s.p_vaddr < s.p_memsz;
    };
    return std::any_of(segment, segment + eigenerKopf.e_phnum, hatDie);
#else
    Dl_info dort, hier;
    return dladdr(adresse, &dort) && dladdr(reinterpret_cast<const void*>(&gibtEsAusnahme), &hier) &&
           dort.dli_fbase == hier.dli_fbase;
#endif
}

} // namespace

Pluginbibliothek::Zeiger Pluginbibliothek::fuer(SharedLib* bibliothek) {
    std::unique_ptr<SharedLib> uebernommen(bibliothek);
    return Zeiger(new Pluginbibliothek(std::move(uebernommen)));
}

Pluginbibliothek::Pluginbibliothek(std::unique_ptr<SharedLib> bibliothek) noexcept
    : bibliothek_(std::move(bibliothek)) {}

Pluginbibliothek::~Pluginbibliothek() {
    const Laufend laufend(Lauf::Lader); // its last code runs if it is open
    bibliothek_.reset();
}

void BibliotheksSchliesser::operator()(Pluginbibliothek* bibliothek) const noexcept {
    Pluginbibliothek::schliesseAufgeschobene();
    if (bibliothek->istOffen() && gibtEsAusnahme()) {
        bibliothek->schiebeAuf(bibliothek->log_);
        bibliothek->herrenlos_ = true;
    } else {
        bibliothek->nimmZurueck();
        delete bibliothek;
    }
}

bool Pluginbibliothek::istOffen() const { return bibliothek_ && bibliothek_->isLoaded(); }

bool Pluginbibliothek::oeffne() {
    schliesseAufgeschobene();
    nimmZurueck();
    schritt_ = ABLEHNUNG_OEFFNEN;
    if (!bibliothek_)
        return false;
    const Laufend laufend(Lauf::Lader);
    if (bibliothek_->isLoaded() || bibliothek_->load())
        return true;
    if (bibliothek_->scheiterteVorDemOeffnen())
        schritt_ = ABLEHNUNG_DATEIPRUEFUNG;
    return false;
}

std::string Pluginbibliothek::getGrund() const {
    return bibliothek_ ? bibliothek_->getLastError() : std::string();
}

void Pluginbibliothek::schliesse(Log log) noexcept {
    schliesseAufgeschobene();
    if (istOffen() && gibtEsAusnahme())
        schiebeAuf(log);
    else
        schliesseJetzt(log);
}

void Pluginbibliothek::schliesseJetzt(Log log) noexcept {
    const Laufend laufend(Lauf::Lader);
    bool geschlossen = false;
    rufe([&] { geschlossen = bibliothek_ && bibliothek_->unload(); }, [](const char*) {});
    // By contract without a blank behind the colon.
    if (!geschlossen)
        log.warn([&] { return "Konnte Plugin nicht entladen:" + getGrund(); });
}

void* Pluginbibliothek::symbol(const std::string& name) noexcept {
    void* adresse = nullptr;
    if (bibliothek_)
        rufe([&] { adresse = bibliothek_->getSymbol(name); }, [](const char*) {});
    return adresse;
}

bool Pluginbibliothek::enthaelt(const void* adresse) const {
    return bibliothek_ && !istEigenerCode(adresse) && bibliothek_->enthaelt(adresse);
}

void Pluginbibliothek::schiebeAuf(Log log) noexcept {
    log_ = log;
    if (aufgeschoben_)
        return;
    aufgeschoben_ = true;
    naechste_ = std::exchange(aufgeschobene_, this);
}

/// Removes the library from the list of deferred closes.
void Pluginbibliothek::nimmZurueck() noexcept {
    if (!aufgeschoben_)
        return;
    Pluginbibliothek** stelle = &aufgeschobene_;
    while (*stelle != this)
        stelle = &(*stelle)->naechste_;
    *stelle = naechste_;
    aufgeschoben_ = false;
}

void Pluginbibliothek::schliesseFaellige() noexcept {
    while (aufgeschobene_ && !gibtEsAusnahme()) {
        Pluginbibliothek* const faellige = std::exchange(aufgeschobene_, aufgeschobene_->naechste_);
        faellige->aufgeschoben_ = false;
        if (faellige->herrenlos_)
            delete faellige;
        else
            faellige->schliesseJetzt(faellige->log_);
    }
}
