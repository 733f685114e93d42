#include "kern/Uebertragung.h"

#include <algorithm>
#include <concepts>
#include <cstring>
#include <type_traits>

namespace werkzeug {

namespace {

// Each structure names its fields once, for both directions.

template <class A, class T>
concept Fuer = std::same_as<std::remove_const_t<A>, T>;

void felder(auto& a, Fuer<ZeitraumFakt> auto& z) { a(z.typ, z.jahr, z.zeitraum, z.tag, z.quartal, z.text); }
void felder(auto& a, Fuer<UnterfallartFakt> auto& u) { a(u.nummer, u.name); }
void felder(auto& a, Fuer<ErweiterungFakt> auto& e) {
    a(e.typ, e.typName, e.factory, e.factoryExport, e.bedientUnterfallarten, e.uebergangen, e.angebot,
      e.flags, e.abhaengigkeiten, e.vorbedingungen, e.nachbedingungen);
}
void felder(auto& a, Fuer<LabelFakt> auto& l) {
    a(l.zahl1, l.text1, l.zeitraum, l.text2, l.zahl2, l.text3, l.text4);
}
void felder(auto& a, Fuer<PluginFakt> auto& p) {
    a(p.typ, p.status, p.produktVersion, p.fileVersion, p.resident, p.onLoad, p.onLoadExport, p.onUnload,
      p.onUnloadExport, p.labels, p.erweiterungen);
}
void felder(auto& a, Fuer<DateiFakt> auto& d) {
    a(d.verzeichnis, d.name, d.pfad, d.zustand, d.grund, d.ursache, d.meldung, d.zahl, d.ausgabe, d.plugin);
}
void felder(auto& a, Fuer<VerzeichnisFakt> auto& v) { a(v.pfad, v.fehler); }
void felder(auto& a, Fuer<ErweiterungsOrt> auto& o) { a(o.datei, o.erweiterung); }
void felder(auto& a, Fuer<SchluesselEreignis> auto& e) { a(e.art, e.wer, e.gegen, e.regel, e.zeitraum); }
void felder(auto& a, Fuer<SchluesselFakt> auto& s) {
    a(s.typ, s.typName, s.unterfallart, s.zeitraum, s.inhaber, s.ereignisse, s.zweiter);
}
void felder(auto& a, Fuer<AntwortFakt> auto& x) { a(x.treffer, x.schluessel, x.gefragt); }
void felder(auto& a, Fuer<SpanneFakt> auto& s) { a(s.von, s.bis, s.treffer, s.schluessel); }
void felder(auto& a, Fuer<ZeileFakt> auto& z) {
    a(z.typ, z.typName, z.unterfallart, z.spannen, z.ohneZeitraum);
}
void felder(auto& a, Fuer<Bestand> auto& b) {
    a(b.suchpfad, b.verzeichnisse, b.dateien, b.schluessel, b.antwort, b.antworten, b.zeilen);
}

void felder(auto& a, auto& paar) requires requires { paar.second; }
{ a(paar.first, paar.second); }

void verlange(bool bedingung) {
    if (!bedingung)
        throw UebertragungsFehler("the facts contradict themselves");
}

class Schreiber {
public:
    explicit Schreiber(const std::function<void()>& lebenszeichen) : lebenszeichen_(lebenszeichen) {}

    template <class... T>
    void operator()(const T&... werte) {
        (schreibe(werte), ...);
        if (++geschrieben_ % kJeLebenszeichen == 0 && lebenszeichen_)
            lebenszeichen_();
    }

    std::string bytes;

private:
    template <class T>
    void schreibe(const T& wert) {
        if constexpr (std::is_arithmetic_v<T> || std::is_enum_v<T>)
            bytes.append(reinterpret_cast<const char*>(&wert), sizeof wert);
        else
            felder(*this, wert);
    }
    void schreibe(const std::string& text) {
        schreibe(text.size());
        bytes += text;
    }
    template <class T>
    void schreibe(const std::vector<T>& liste) {
        schreibe(liste.size());
        for (const T& wert : liste)
            schreibe(wert);
    }
    template <class T>
    void schreibe(const std::optional<T>& wert) {
        schreibe(wert.has_value());
        if (wert)
            schreibe(*wert);
    }

    static constexpr std::size_t kJeLebenszeichen = 4096; // structures
    const std::function<void()>& lebenszeichen_;
    std::size_t geschrieben_ = 0;
};

class Leser {
public:
    explicit Leser(std::string_view bytes) : rest_(bytes) {}

    template <class... T>
    void operator()(T&... werte) {
        (lies(werte), ...);
    }

    bool istLeer() const { return rest_.empty(); }

private:
    std::string_view nimm(std::size_t anzahl) {
        verlange(anzahl <= rest_.size());
        const std::string_view anfang = rest_.substr(0, anzahl);
        rest_.remove_prefix(anzahl);
        return anfang;
    }
    std::size_t liesAnzahl() {
        std::size_t anzahl = 0;
        lies(anzahl);
        verlange(anzahl <= rest_.size()); // every element takes at least one byte
        return anzahl;
    }

    template <class T>
    void lies(T& wert) {
        if constexpr (std::is_same_v<T, bool>)
            wert = nimm(1)[0] != 0;
        else if constexpr (std::is_arithmetic_v<T> || std::is_enum_v<T>)
            std::memcpy(&wert, nimm(sizeof wert).data(), sizeof wert);
        else
            felder(*this, wert);
    }
    void lies(std::string& text) { text = nimm(liesAnzahl()); }
    template <class T>
    void lies(std::vector<T>& liste) {
        for (std::size_t anzahl = liesAnzahl(); anzahl > 0; --anzahl)
            lies(liste.emplace_back());
    }
    template <class T>
    void lies(std::optional<T>& wert) {
        bool da = false;
        lies(da);
        if (da)
            lies(wert.emplace());
    }

    std::string_view rest_;
};

template <class T>
void verlangeBereich(T wert, T kleinster, T groesster) {
    verlange(wert >= kleinster && wert <= groesster);
}

void pruefe(const Bestand& bestand, const ErweiterungsOrt& ort) {
    verlange(ort.datei < bestand.dateien.size());
    const std::optional<PluginFakt>& plugin = bestand.dateien[ort.datei].plugin;
    verlange(plugin && ort.erweiterung < plugin->erweiterungen.size());
}

void pruefe(const PluginFakt& plugin) {
    verlangeBereich(plugin.onLoadExport, Export::UNGEPRUEFT, Export::NEIN);
    verlangeBereich(plugin.onUnloadExport, Export::UNGEPRUEFT, Export::NEIN);
    for (const ErweiterungFakt& erweiterung : plugin.erweiterungen)
        verlangeBereich(erweiterung.factoryExport, Export::UNGEPRUEFT, Export::NEIN);
}

void pruefe(const Bestand& bestand) {
    for (const DateiFakt& datei : bestand.dateien) {
        verlange(datei.verzeichnis < bestand.verzeichnisse.size());
        verlangeBereich(datei.zustand, Zustand::GELADEN, Zustand::ZEIT);
        verlangeBereich(datei.grund, Grund::KEINER, Grund::NICHT_BESCHRIEBEN);
        verlangeBereich(datei.ursache, Ursache::KEINE, Ursache::BESCHAEDIGTE_HILFE);
        verlange(datei.zustand != Zustand::GELADEN || datei.plugin);
        if (datei.plugin)
            pruefe(*datei.plugin);
    }
    for (const SchluesselFakt& schluessel : bestand.schluessel) {
        pruefe(bestand, schluessel.inhaber);
        for (const SchluesselEreignis& ereignis : schluessel.ereignisse) {
            verlangeBereich(ereignis.art, SchluesselEreignis::Art::EINGETRAGEN,
                            SchluesselEreignis::Art::ABGEWIESEN);
            pruefe(bestand, ereignis.wer);
            pruefe(bestand, ereignis.gegen);
        }
        if (schluessel.zweiter)
            pruefe(bestand, *schluessel.zweiter);
    }
    const auto pruefeTreffer = [&](const auto& antwort) {
        verlangeBereich(antwort.treffer, std::int32_t{RegisterAuskunft::KEINER},
                        std::int32_t{RegisterAuskunft::UNABHAENGIG});
        verlange(antwort.treffer == RegisterAuskunft::KEINER ||
                 antwort.schluessel < bestand.schluessel.size());
    };
    if (bestand.antwort)
        pruefeTreffer(*bestand.antwort);
    std::ranges::for_each(bestand.antworten, pruefeTreffer);
    for (const ZeileFakt& zeile : bestand.zeilen) {
        std::ranges::for_each(zeile.spannen, pruefeTreffer);
        verlange(!zeile.ohneZeitraum || *zeile.ohneZeitraum < bestand.schluessel.size());
    }
}

} // namespace

std::string schreibe(const Bestand& bestand, const std::function<void()>& lebenszeichen) {
    Schreiber schreiber(lebenszeichen);
    schreiber(bestand);
    return std::move(schreiber.bytes);
}

Bestand liesBestand(std::string_view bytes) {
    Bestand bestand;
    Leser leser(bytes);
    leser(bestand);
    verlange(leser.istLeer());
    pruefe(bestand);
    return bestand;
}

} // namespace werkzeug
