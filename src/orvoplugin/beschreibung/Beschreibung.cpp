#include <orvoplugin/beschreibung/Beschreibung.h>

#include <orvoplugin/beschreibung/Beschriebenes.h>
#include <orvoplugin/beschreibung/Notiz.h>
#include <orvoplugin/plugin/erweiterung/OrvoDatensatzReaderErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFADatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFTDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoFeldInfoDatenServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoValidierungsServiceErweiterung.h>
#include <orvoplugin/plugin/erweiterung/OrvoXPathMappingServiceErweiterung.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/SharedLib.h>

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <utility>

using namespace orvo::orvoutil;

namespace {

constexpr Latin1Text kAndereAusgabe{u8"für eine andere Ausgabe"};
constexpr Latin1Text kBeschaedigt{u8"beschädigt"};
constexpr char kAbgeschnitten[] = "abgeschnitten";
constexpr char kZuLang[] = "zu lang";
constexpr Latin1Text kIgnoriert{u8"Beschreibung in der Datei ignoriert: "};
constexpr Latin1Text kUebernommen{u8"Beschreibung aus der Datei übernommen: "};
constexpr Latin1Text kNichtZuBeschreiben{u8"Das Plugin lässt sich nicht beschreiben: "};

/// Why a description is refused, or cannot be written.
struct Mangel {
    std::string grund;
};

void verlange(bool erfuellt, std::string_view sonst = "widersinnig") {
    if (!erfuellt)
        throw Mangel{std::string(sonst)};
}

/// A number in groups of seven bits, the least significant one first. All bytes but the last one have their high bit set.
void fuegeZahlAn(std::string& bytes, std::uint32_t zahl) {
    for (; zahl >= 0x80; zahl >>= 7)
        bytes += static_cast<char>(zahl | 0x80);
    bytes += static_cast<char>(zahl);
}

std::uint32_t entnimmZahl(std::string_view& bytes) {
    std::uint64_t zahl = 0;
    unsigned char byte = 0x80;
    for (int stelle = 0; byte >= 0x80; stelle += 7, bytes.remove_prefix(1)) {
        verlange(!bytes.empty() && stelle < 35);
        byte = static_cast<unsigned char>(bytes.front());
        verlange(byte != 0 || stelle == 0); // each number has one form
        zahl |= std::uint64_t{byte & 0x7Fu} << stelle;
    }
    verlange(zahl <= UINT32_MAX);
    return static_cast<std::uint32_t>(zahl);
}

using Zeitraeume = std::list<Veranlagungszeitraum>;

/// Calls `tu` with the class of that kind of extension. Returns: whether there is one.
bool mitKlasse(std::int32_t typ, auto&& tu) {
    const auto versuche = [&]<class... E>(std::type_identity<E>... klassen) {
        std::int32_t art = 0;
        return ((++art == typ && (tu(klassen), true)) || ...);
    };
    return versuche(std::type_identity<OrvoValidierungsServiceErweiterung>(),
                    std::type_identity<OrvoFeldInfoDatenServiceErweiterung>(),
                    std::type_identity<OrvoFTDatenServiceErweiterung>(),
                    std::type_identity<OrvoFADatenServiceErweiterung>(),
                    std::type_identity<OrvoXPathMappingServiceErweiterung>(),
                    std::type_identity<OrvoDatensatzReaderErweiterung>());
}

} // namespace

/// The content of a description, written or read: one list of fields, in their order, for both. No count or length that is
/// read takes memory for which there are no bytes. Errors: `Mangel`.
template <bool kLiest>
class Beschreibungsstrom {
public:
    std::conditional_t<kLiest, std::string_view, std::string> bytes;

    void werte(auto&&... alle) { (wert(alle), ...); }
    /// The type records: the earlier plugins of the library, then the plugin itself.
    void schreibeAlle(const OrvoPluginV1& plugin) {
        fuegeZahlAn(bytes, static_cast<std::uint32_t>(plugin.fruehere_.size() + 1));
        for (const auto& frueheres : plugin.fruehere_)
            beschreibe(*frueheres);
        beschreibe(plugin);
    }
    /// Takes the library over, unless it throws a `Mangel`.
    std::unique_ptr<OrvoPluginV1> liesAlle(Pluginbibliothek::Zeiger& bibliothek) {
        std::unique_ptr<OrvoPluginV1> plugin;
        try {
            std::uint32_t uebrige = entnimmZahl(bytes);
            verlange(uebrige > 0);
            for (; uebrige > 0; --uebrige) {
                plugin.reset(plugin ? new OrvoPluginV1(std::move(plugin))
                                    : new OrvoPluginV1(std::move(bibliothek)));
                plugin->beschrieben_ = true;
                beschreibe(*plugin);
            }
            verlange(bytes.empty());
            return plugin;
        } catch (const Mangel&) {
            if (plugin)
                bibliothek = plugin->gibBibliothekAb();
            throw;
        }
    }

private:
    template <class T>
    using Ziel = std::conditional_t<kLiest, T&, const T&>;
    template <class Objekt, class Hole>
    using Gegeben = std::remove_cvref_t<std::invoke_result_t<Hole, const Objekt&>>;

    void beschreibe(Ziel<OrvoPluginV1> plugin) {
        std::int32_t typ = plugin.getTyp();
        wert(typ);
        verlange(typ == plugin.getTyp());
        verlange(plugin.getUseCount() == 0, "Es ist in Gebrauch.");
        feld(plugin, &OrvoPlugin::getProduktVersion, &OrvoPlugin::setProduktVersion);
        feld(plugin, &OrvoPlugin::getFileVersion, &OrvoPlugin::setFileVersion);
        liste(plugin, &OrvoPlugin::getLabels, &OrvoPlugin::addLabelInformation);
        feld(plugin, &OrvoPlugin::getOnLoadFuncName, &OrvoPlugin::setOnLoadFuncName);
        feld(plugin, &OrvoPlugin::getOnUnloadFuncName, &OrvoPlugin::setOnUnloadFuncName);
        feld(plugin, &OrvoPlugin::getStatus, &OrvoPlugin::setStatus);
        feld(plugin, &OrvoPlugin::isResident, &OrvoPlugin::setResident);
        liste(plugin, &OrvoPluginV1::listeErweiterungen,
              [](OrvoPluginV1& p, const auto& e) { p.addErweiterung(*e); });
    }
    template <class E>
    void beschreibe(Ziel<E> erweiterung, std::type_identity<E>) {
        for (const auto flag : {FLAG_SERVICE_LOESCHEN, FLAG_RESERVIERT_1, FLAG_RESERVIERT_2,
                                FLAG_RESERVIERT_3, FLAG_RESERVIERT_4})
            feld(
                erweiterung, [=](auto& e) { return e.istFlagGesetzt(flag); },
                [=](auto& e, bool wert) { e.setzeFlag(flag, wert); });
        feld(erweiterung, &E::getServiceFactoryName, &E::setServiceFactoryName);
        if constexpr (std::is_base_of_v<OrvoUaVzServiceErweiterung, E>)
            liste(erweiterung, &E::getVeranlagungszeitraumUnterfallartMap, fuegeAn);
        liste(erweiterung, &E::getAbhaengigkeiten, &E::addAbhaengigkeit);
        if constexpr (requires { &E::getVorbedingungen; }) {
            liste(erweiterung, &E::getVorbedingungen, &E::addVorbedingung);
            feld(erweiterung, &E::getNachbedingungen, &E::setNachbedingungen);
        }
    }
    void wert(Ziel<OrvoPlugin::LabelEintrag> label) {
        auto& [zahl1, text1, zeitraum, text2, zahl2, text3, text4] =
            label; // a further field does not compile
        werte(zahl1, text1, zeitraum, text2, zahl2, text3, text4);
    }
    void wert(Ziel<Veranlagungszeitraum> vz) {
        auto& [typ, jahr, zeitraum, tag, quartal, text, reserviert] = vz; // a further field does not compile
        werte(typ, jahr, zeitraum, tag, quartal, text);
        if constexpr (kLiest)
            verlange(istMoeglich(vz));
    }

    static bool istGleich(const Unterfallart& a, const Unterfallart& b) {
        return a.nummer_ == b.nummer_ && a.name_ == b.name_;
    }
    /// Whether reading a text can have made the period. The kinds that none makes may come with anything.
    static bool istMoeglich(const Veranlagungszeitraum& vz) {
        if (vz.typ_ == vz.UNGELESEN || vz.typ_ == vz.IMMER || vz.typ_ == vz.UNABHAENGIG)
            return true;
        Veranlagungszeitraum gelesen = vz;
        gelesen.quartal_ = -1;
        gelesen.ordneEin();
        return vz.zeitraum_ >= 0 && vz.tag_ >= 0 && gelesen == vz && gelesen.typ_ == vz.typ_;
    }
    static void fuegeAn(OrvoUaVzServiceErweiterung& erweiterung,
                        const std::pair<Unterfallart, Zeitraeume>& eintrag) {
        const auto& map = erweiterung.getVeranlagungszeitraumUnterfallartMap();
        const std::size_t vorher = map.size();
        erweiterung.addUnterstuetzteUnterfallArt(eintrag.first, eintrag.second);
        verlange(map.size() > vorher);
    }

    /// A value to read into.
    template <class T>
    static auto leer() {
        if constexpr (std::is_same_v<T, std::pair<const Unterfallart, Zeitraeume>>)
            return std::pair<Unterfallart, Zeitraeume>(0, {});
        else if constexpr (std::is_same_v<T, OrvoErweiterung*>)
            return std::unique_ptr<OrvoErweiterung>();
        else if constexpr (std::is_same_v<T, Bedingung> || std::is_same_v<T, Abhaengigkeit>)
            return T(0);
        else if constexpr (std::is_base_of_v<OrvoUaVzServiceErweiterung, T>)
            return std::make_unique<T>(OrvoUaVzServiceErweiterung::VzMap());
        else if constexpr (std::is_base_of_v<OrvoErweiterung, T>)
            return std::make_unique<T>();
        else
            return T();
    }
    template <class Objekt, class Hole>
    void feld(Objekt& objekt, Hole hole, auto setze) {
        if constexpr (kLiest) {
            auto gelesen = leer<Gegeben<Objekt, Hole>>();
            wert(gelesen);
            std::invoke(setze, objekt, gelesen);
        } else {
            wert(std::invoke(hole, objekt));
        }
    }
    template <class Objekt, class Hole>
    void liste(Objekt& objekt, Hole hole, auto nimm) {
        if constexpr (kLiest) {
            for (std::uint32_t uebrige = liesAnzahl(); uebrige > 0; --uebrige) {
                auto element = leer<typename Gegeben<Objekt, Hole>::value_type>();
                wert(element);
                std::invoke(nimm, objekt, element);
            }
        } else {
            const auto& elemente = std::invoke(hole, objekt);
            fuegeZahlAn(bytes, static_cast<std::uint32_t>(elemente.size()));
            for (const auto& element : elemente)
                wert(element);
        }
    }
    /// Each element takes a byte at least.
    std::uint32_t liesAnzahl() {
        const std::uint32_t anzahl = entnimmZahl(bytes);
        verlange(anzahl <= bytes.size());
        return anzahl;
    }

    void wert(Ziel<std::uint32_t> zahl) {
        if constexpr (kLiest)
            zahl = entnimmZahl(bytes);
        else
            fuegeZahlAn(bytes, zahl);
    }
    /// 0, -1, 1, -2, ... become 0, 1, 2, 3, ...
    void wert(Ziel<std::int32_t> zahl) {
        auto bits = static_cast<std::uint32_t>(zahl) << 1 ^ (zahl < 0 ? ~0u : 0u);
        wert(bits);
        if constexpr (kLiest)
            zahl = static_cast<std::int32_t>(bits >> 1 ^ (bits & 1 ? ~0u : 0u));
    }
    template <class T>
    requires std::is_enum_v<T> || std::is_same_v<T, bool>
    void wert(T& zahl) {
        auto gelesen = static_cast<std::int32_t>(zahl);
        wert(gelesen);
        if constexpr (kLiest)
            zahl = static_cast<T>(gelesen);
        verlange(static_cast<std::int32_t>(zahl) == gelesen);
    }
    void wert(Ziel<std::string> text) {
        if constexpr (kLiest) {
            text = bytes.substr(0, liesAnzahl());
            bytes.remove_prefix(text.size());
        } else {
            fuegeZahlAn(bytes, static_cast<std::uint32_t>(text.size()));
            bytes += text;
        }
    }
    void wert(Ziel<Unterfallart> ua) {
        auto& [nummer, name] = ua;
        werte(nummer, name);
        if constexpr (kLiest)
            verlange(istGleich(ua, name.c_str()) || istGleich(ua, nummer));
    }
    void wert(Ziel<Bedingung> bedingung) { wert(bedingung.typ_); }
    void wert(Ziel<Abhaengigkeit> abhaengigkeit) { wert(abhaengigkeit.typ_); }
    void wert(auto& eintrag) requires requires { eintrag.second; }
    { werte(eintrag.first, eintrag.second); }
    template <class T>
    void wert(std::list<T>& elemente) {
        liste(elemente, std::identity(), [](auto& l, const T& e) { l.push_back(e); });
    }
    template <class T>
    void wert(const std::list<T>& elemente) {
        liste(elemente, std::identity(), nullptr);
    }
    /// An extension: a pointer of either kind.
    template <class Zeiger>
    requires requires(Zeiger& e) { e->getTyp(); }
    void wert(Zeiger& erweiterung) {
        std::int32_t typ = kLiest ? NONE : erweiterung->getTyp();
        wert(typ);
        const bool istBekannt = mitKlasse(typ, [&]<class E>(std::type_identity<E> klasse) {
            if constexpr (kLiest) {
                auto neue = leer<E>();
                beschreibe(*neue, klasse);
                erweiterung = std::move(neue);
            } else {
                verlange(typeid(*erweiterung) == typeid(E),
                         std::string("Klasse der Erweiterung: ") + typeid(*erweiterung).name());
                verlange(erweiterung->getAusgegeben() == 0, "Ein Service ist ausgegeben.");
                beschreibe(static_cast<const E&>(*erweiterung), klasse);
            }
        });
        verlange(istBekannt);
    }
};

namespace {

using Schreiber = Beschreibungsstrom<false>;
using Leser = Beschreibungsstrom<true>;

constexpr std::uint32_t kFormat = 1; // 0 in a room that is not filled
constexpr std::size_t kHoechsteKopflaenge = 25;

/// FNV-1a over numbers of eight bytes each, the least significant one first and missing ones zero. It begins with the
/// length. After each number the high half is folded into the low one, which multiplying does not do.
std::uint64_t pruefsumme(std::string_view inhalt) {
    std::uint64_t summe = 0xCBF29CE484222325u ^ inhalt.size();
    for (; !inhalt.empty(); inhalt.remove_prefix(std::min<std::size_t>(inhalt.size(), 8))) {
        std::uint64_t zahl = 0;
        for (std::size_t i = 0; i < std::min<std::size_t>(inhalt.size(), 8); ++i)
            zahl |= std::uint64_t{static_cast<unsigned char>(inhalt[i])} << 8 * i;
        summe = (summe ^ zahl) * 0x100000001B3u;
        summe ^= summe >> 32;
    }
    return summe;
}

std::string mitKopf(const std::string& inhalt) {
    const std::uint64_t summe = pruefsumme(inhalt);
    Schreiber kopf;
    for (const std::uint64_t zahl : {std::uint64_t{kFormat}, std::uint64_t{ORVO_AUSGABE},
                                     std::uint64_t{inhalt.size()}, summe, summe >> 32})
        kopf.werte(static_cast<std::uint32_t>(zahl));
    return kopf.bytes + inhalt;
}

/// Makes the plugin that the note describes. Takes the library over if it returns one.
/// Parameters: `fund` says what was found, but for the bytes.
std::unique_ptr<OrvoPluginV1> lies(Notiz& notiz, Pluginbibliothek::Zeiger& bibliothek,
                                   Beschreibungsfund& fund) try {
    fund.stelle = notiz.stelle;
    fund.platz = notiz.platz;
    const std::size_t anzahl = std::min<std::size_t>(notiz.platz, kHoechsteKopflaenge);
    if (anzahl == 0)
        return nullptr;
    const auto hole = [&](std::size_t wieviele) {
        const auto* const bytes = reinterpret_cast<const char*>(notiz.bytes(wieviele));
        verlange(bytes, kAbgeschnitten);
        return std::string_view(bytes, wieviele);
    };
    Leser kopf{hole(anzahl)};
    std::uint32_t format, ausgabe, laenge, summe, hohe;
    kopf.werte(format);
    fund.stand = format == 0 ? fund.LEER : fund.GEFUNDEN;
    if (format == 0)
        return nullptr;
    verlange(format == kFormat, "unbekanntes Format");
    kopf.werte(ausgabe);
    verlange(ausgabe == ORVO_AUSGABE, kAndereAusgabe);
    kopf.werte(laenge, summe, hohe);
    const std::size_t kopflaenge = anzahl - kopf.bytes.size();
    verlange(laenge <= kHoechstlaengeEinerBeschreibung, kZuLang);
    Leser inhalt{hole(kopflaenge + laenge).substr(kopflaenge)};
    verlange(pruefsumme(inhalt.bytes) == (std::uint64_t{hohe} << 32 | summe), kBeschaedigt);
    return inhalt.liesAlle(bibliothek);
} catch (const Mangel& mangel) {
    fund.stand = fund.ABGELEHNT;
    fund.grund = mangel.grund;
    return nullptr;
}

} // namespace

std::unique_ptr<OrvoPluginV1> beschriebenesPlugin(Pluginbibliothek::Zeiger& bibliothek, Log log) {
    const SharedLib* const datei = bibliothek->get();
    if (!datei || bibliothek->istOffen())
        return nullptr;
    Notiz notiz(datei->getName());
    Beschreibungsfund fund;
    auto plugin = lies(notiz, bibliothek, fund);
    if (plugin)
        log.info([&] { return kUebernommen.c_str() + datei->getName(); });
    else if (fund.stand == fund.ABGELEHNT)
        log.warn([&] { return kIgnoriert.c_str() + datei->getName() + ". Grund: " + fund.grund; });
    return plugin;
}

Beschreibungsfund liesBeschreibung(const std::string& pfad) {
    Notiz notiz(pfad);
    Beschreibungsfund fund;
    auto ohneBibliothek = Pluginbibliothek::fuer(nullptr);
    if (const auto plugin = lies(notiz, ohneBibliothek, fund))
        fund.bytes = schreibeBeschreibung(*plugin);
    return fund;
}

std::string schreibeBeschreibung(const OrvoPlugin& plugin) try {
    const auto* const v1 = dynamic_cast<const OrvoPluginV1*>(&plugin);
    verlange(v1, "Es hat nicht die Schnittstelle 1.");
    Schreiber inhalt, nochmals;
    inhalt.schreibeAlle(*v1);
    verlange(inhalt.bytes.size() <= kHoechstlaengeEinerBeschreibung, kZuLang);
    auto ohneBibliothek = Pluginbibliothek::fuer(nullptr);
    nochmals.schreibeAlle(
        *Leser{inhalt.bytes}.liesAlle(ohneBibliothek)); // refuses what is read as something else
    verlange(nochmals.bytes == inhalt.bytes);
    return mitKopf(inhalt.bytes);
} catch (const Mangel& mangel) {
    throw std::runtime_error(kNichtZuBeschreiben.c_str() + mangel.grund);
}
