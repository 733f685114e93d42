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
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>

using namespace orvo::orvoutil;

namespace {

constexpr Latin1Text kAndereAusgabe{u8"für eine andere Ausgabe"};
constexpr Latin1Text kBeschaedigt{u8"beschädigt"};
constexpr Latin1Text kIgnoriert{u8"Beschreibung in der Datei ignoriert: "};
constexpr Latin1Text kUebernommen{u8"Beschreibung aus der Datei übernommen: "};
constexpr Latin1Text kNichtZuBeschreiben{u8"Das Plugin lässt sich nicht beschreiben: "};
constexpr std::uint32_t kFormat = 1; // 0 in a room that is not filled

/// Why a description is refused, or cannot be written.
struct Mangel {
    std::string grund;
};

void verlange(bool erfuellt, std::string_view sonst = "widersinnig") {
    if (!erfuellt)
        throw Mangel{std::string(sonst)};
}

/// FNV-1a of 64 bits.
std::uint64_t pruefsumme(std::string_view inhalt) {
    std::uint64_t summe = 0xCBF29CE484222325u;
    for (const char byte : inhalt)
        summe = (summe ^ static_cast<unsigned char>(byte)) * 0x100000001B3u;
    return summe;
}

using Zeitraeume = std::list<Veranlagungszeitraum>;
} // namespace

/// The content of a description, written or read: one list of fields, in their order, for both. What is read takes no
/// memory for which there are no bytes. Errors: `Mangel`.
template <bool kLiest>
class Beschreibungsstrom {
public:
    std::conditional_t<kLiest, std::string_view, std::string> bytes;
    /// The type records: the earlier plugins of the library, then the plugin itself.
    void schreibeAlle(const OrvoPluginV1& plugin) {
        anzahl(plugin.fruehere_.size() + 1);
        for (const auto& frueheres : plugin.fruehere_)
            beschreibe(*frueheres);
        beschreibe(plugin);
    }
    /// Takes the library over, unless it throws a `Mangel`.
    std::unique_ptr<OrvoPluginV1> liesAlle(Pluginbibliothek::Zeiger& bibliothek) {
        std::unique_ptr<OrvoPluginV1> plugin;
        try {
            for (std::uint32_t uebrige = anzahl(); uebrige > 0; --uebrige) {
                plugin.reset(plugin ? new OrvoPluginV1(std::move(plugin))
                                    : new OrvoPluginV1(std::move(bibliothek)));
                plugin->beschrieben_ = true;
                beschreibe(*plugin);
            }
            verlange(plugin && bytes.empty());
            return plugin;
        } catch (const Mangel&) {
            if (plugin)
                bibliothek = plugin->gibBibliothekAb();
            throw;
        }
    }
    void werte(auto&&... alle) { (wert(alle), ...); }

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
        liste(plugin, &OrvoPluginV1::listeErweiterungen, [](auto& p, auto& e) { p.nimmAuf(std::move(e)); });
    }
    template <class E>
    void beschreibe(Ziel<E> erweiterung, std::type_identity<E>) {
        for (auto flag = FLAG_SERVICE_LOESCHEN; flag <= FLAG_RESERVIERT_4;
             flag = orvo_erweiterung_flag_t(flag + 1))
            feld(
                erweiterung, [=](const E& e) { return e.istFlagGesetzt(flag); },
                [=](E& e, bool w) { e.setzeFlag(flag, w); });
        feld(erweiterung, &E::getServiceFactoryName, &E::setServiceFactoryName);
        if constexpr (std::is_base_of_v<OrvoUaVzServiceErweiterung, E>)
            liste(erweiterung, &E::getVeranlagungszeitraumUnterfallartMap, fuegeAn);
        liste(erweiterung, &E::getAbhaengigkeiten, &E::addAbhaengigkeit);
        if constexpr (requires { &E::getVorbedingungen; }) {
            liste(erweiterung, &E::getVorbedingungen, &E::addVorbedingung);
            feld(erweiterung, &E::getNachbedingungen, &E::setNachbedingungen);
        }
    }
    // A further field of these three classes does not compile.
    void wert(Ziel<OrvoPlugin::LabelEintrag> label) {
        auto& [zahl1, text1, zeitraum, text2, zahl2, text3, text4] = label;
        werte(zahl1, text1, zeitraum, text2, zahl2, text3, text4);
    }
    void wert(Ziel<Veranlagungszeitraum> vz) {
        auto& [typ, jahr, zeitraum, tag, quartal, text, reserviert] = vz;
        werte(typ, jahr, zeitraum, tag, quartal, text);
        verlange(istMoeglich(vz));
    }
    void wert(Ziel<Unterfallart> ua) {
        auto& [nummer, name] = ua;
        werte(nummer, name);
        const Unterfallart benannte(name.c_str()), bezifferte(nummer);
        verlange((benannte.nummer_ == nummer && benannte.name_ == name) || bezifferte.name_ == name);
    }
    void wert(Ziel<Bedingung> bedingung) { wert(bedingung.typ_); }
    void wert(Ziel<Abhaengigkeit> abhaengigkeit) { wert(abhaengigkeit.typ_); }
    /// An entry of an extension's map.
    void wert(auto& paar) requires requires { paar.second; }
    { werte(paar.first, paar.second); }
    /// An extension, by a pointer of either kind.
    void wert(auto& erweiterung) requires requires { erweiterung->getTyp(); }
    {
        std::int32_t typ = kLiest ? NONE : erweiterung->getTyp();
        wert(typ);
        std::int32_t art = 0; // of the next class
        const auto istVon = [&]<class E>(std::type_identity<E> klasse) {
            if (++art != typ)
                return false;
            if constexpr (kLiest) {
                auto neue = leer<E>();
                beschreibe(*neue, klasse);
                erweiterung = std::move(neue);
            } else {
                const char* const name = typeid(*erweiterung).name();
                verlange(typeid(*erweiterung) == typeid(E), std::string("Klasse der Erweiterung: ") + name);
                verlange(erweiterung->getAusgegeben() == 0, "Ein Service ist ausgegeben.");
                beschreibe(static_cast<const E&>(*erweiterung), klasse);
            }
            return true;
        };
        verlange(istVon(std::type_identity<OrvoValidierungsServiceErweiterung>()) ||
                 istVon(std::type_identity<OrvoFeldInfoDatenServiceErweiterung>()) ||
                 istVon(std::type_identity<OrvoFTDatenServiceErweiterung>()) ||
                 istVon(std::type_identity<OrvoFADatenServiceErweiterung>()) ||
                 istVon(std::type_identity<OrvoXPathMappingServiceErweiterung>()) ||
                 istVon(std::type_identity<OrvoDatensatzReaderErweiterung>()));
    }

    /// Whether reading a text can have made the period. The kinds that none makes may come with anything.
    static bool istMoeglich(const Veranlagungszeitraum& vz) {
        if (vz.typ_ == vz.UNGELESEN || vz.typ_ == vz.IMMER || vz.typ_ == vz.UNABHAENGIG)
            return true;
        if (vz.zeitraum_ < 0 || vz.tag_ < 0)
            return false;
        Veranlagungszeitraum gelesen = vz;
        gelesen.quartal_ = -1;
        gelesen.ordneEin();
        return gelesen == vz && gelesen.typ_ == vz.typ_;
    }
    static void fuegeAn(OrvoUaVzServiceErweiterung& e, const std::pair<Unterfallart, Zeitraeume>& eintrag) {
        const auto& map = e.getVeranlagungszeitraumUnterfallartMap();
        const auto letzter = map.empty() ? map.end() : std::prev(map.end());
        e.addUnterstuetzteUnterfallArt(eintrag.first, eintrag.second);
        verlange(std::prev(map.end()) != letzter, "Reihenfolge der Unterfallarten");
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
            const auto& zuSchreiben = std::invoke(hole, objekt);
            wert(zuSchreiben);
        }
    }
    template <class Objekt, class Hole>
    void liste(Objekt& objekt, Hole hole, auto nimm) {
        if constexpr (kLiest) {
            for (std::uint32_t uebrige = anzahl(); uebrige > 0; --uebrige) {
                auto element = leer<typename Gegeben<Objekt, Hole>::value_type>();
                wert(element);
                std::invoke(nimm, objekt, element);
            }
        } else {
            anzahl(std::invoke(hole, objekt).size());
            for (const auto& element : std::invoke(hole, objekt))
                wert(element);
        }
    }
    template <class Liste>
    requires std::is_same_v<std::remove_const_t<Liste>, std::list<typename Liste::value_type>>
    void wert(Liste& elemente) {
        liste(elemente, std::identity(), [](auto& l, const auto& element) { l.push_back(element); });
    }
    void wert(Ziel<std::string> text) {
        const std::uint32_t laenge = anzahl(text.size());
        verlange(laenge <= 1000,
                 "ein Text von mehr als 1.000 Bytes"); // each key of the registry copies names
        if constexpr (kLiest) {
            text = bytes.substr(0, laenge);
            bytes.remove_prefix(laenge);
        } else {
            bytes += text;
        }
    }
    /// Each element takes a byte at least.
    std::uint32_t anzahl(std::size_t zuSchreiben = 0) {
        auto zahl = static_cast<std::uint32_t>(zuSchreiben);
        wert(zahl);
        verlange(!kLiest || zahl <= bytes.size());
        return zahl;
    }
    /// 0, -1, 1, -2, ... become 0, 1, 2, 3, ...
    template <class T>
    requires std::is_enum_v<T> || std::is_signed_v<T> || std::is_same_v<const T, const bool>
    void wert(T& zahl) {
        const auto bitsVon = [](auto n) { return static_cast<std::uint32_t>(n) << 1 ^ (n < 0 ? ~0u : 0u); };
        auto bits = bitsVon(static_cast<std::int32_t>(zahl));
        wert(bits);
        if constexpr (kLiest)
            zahl = static_cast<T>(static_cast<std::int32_t>(bits >> 1 ^ (bits & 1 ? ~0u : 0u)));
        verlange(bitsVon(static_cast<std::int32_t>(zahl)) == bits); // a bool is 0 or 1
    }
    /// Groups of seven bits, the least significant one first. All bytes but the last one have their high bit set.
    void wert(Ziel<std::uint32_t> zahl) {
        if constexpr (kLiest) {
            std::uint64_t gelesen = 0;
            unsigned char byte = 0x80;
            for (int stelle = 0; byte >= 0x80; stelle += 7, bytes.remove_prefix(1)) {
                verlange(!bytes.empty() && stelle < 35);
                byte = static_cast<unsigned char>(bytes.front());
                verlange(byte != 0 || stelle == 0); // each number has one form
                gelesen |= std::uint64_t{byte & 0x7Fu} << stelle;
            }
            verlange(gelesen <= UINT32_MAX);
            zahl = static_cast<std::uint32_t>(gelesen);
        } else {
            std::uint32_t rest = zahl;
            for (; rest >= 0x80; rest >>= 7)
                bytes += static_cast<char>(rest | 0x80);
            bytes += static_cast<char>(rest);
        }
    }
};

using Leser = Beschreibungsstrom<true>;

/// Makes the plugin that the note describes. Takes the library over if it returns one.
/// Parameters: `fund` becomes what was found, without its bytes.
static std::unique_ptr<OrvoPluginV1> lies(Notiz& notiz, Pluginbibliothek::Zeiger& bibliothek,
                                          Beschreibungsfund& fund) try {
    fund.stelle = notiz.stelle;
    fund.platz = notiz.platz;
    if (notiz.platz == 0)
        return nullptr;
    const auto hole = [&](std::size_t anzahl) {
        const char* const bytes = notiz.bytes(anzahl);
        verlange(bytes, kBeschaedigt);
        return std::string_view(bytes, anzahl);
    };
    const std::string_view anfang = hole(std::min(notiz.platz, 25u)); // the longest head
    Leser kopf{anfang};
    std::uint32_t format, ausgabe, laenge, summe, hohe;
    kopf.werte(format);
    const bool istLeer = format == 0 && kopf.bytes.find_first_not_of('\0') == kopf.bytes.npos;
    fund.stand = istLeer ? fund.LEER : fund.GEFUNDEN;
    if (istLeer)
        return nullptr;
    verlange(format == kFormat, kAndereAusgabe);
    kopf.werte(ausgabe, laenge, summe, hohe);
    verlange(ausgabe == ORVO_AUSGABE, kAndereAusgabe);
    verlange(laenge <= kHoechstlaengeEinerBeschreibung, "zu lang");
    const std::size_t kopflaenge = anfang.size() - kopf.bytes.size();
    Leser inhalt{hole(kopflaenge + laenge).substr(kopflaenge)};
    verlange(pruefsumme(inhalt.bytes) == (std::uint64_t{hohe} << 32 | summe), kBeschaedigt);
    return inhalt.liesAlle(bibliothek);
} catch (const Mangel& mangel) {
    fund.stand = fund.ABGELEHNT;
    fund.grund = mangel.grund;
    return nullptr;
}

std::unique_ptr<OrvoPluginV1> beschriebenesPlugin(Pluginbibliothek::Zeiger& tuer, Log log) {
    if (!tuer->get() || tuer->istOffen())
        return nullptr;
    const std::string& pfad = tuer->get()->getName();
    Notiz notiz(pfad);
    Beschreibungsfund fund;
    auto plugin = lies(notiz, tuer, fund);
    if (plugin)
        log.info([&] { return kUebernommen.c_str() + pfad; });
    else if (fund.stand == fund.ABGELEHNT)
        log.warn([&] { return kIgnoriert.c_str() + pfad + ". Grund: " + fund.grund; });
    return plugin;
}

Beschreibungsfund liesBeschreibung(const std::string& pfad) {
    Notiz notiz(pfad);
    Beschreibungsfund fund;
    auto ohneBibliothek = Pluginbibliothek::fuer(nullptr);
    if (const auto plugin = lies(notiz, ohneBibliothek, fund))
        fund.bytes = schreibeBeschreibung(*plugin); // each description has one form
    return fund;
}

std::string schreibeBeschreibung(const OrvoPlugin& plugin) try {
    const auto* const v1 = dynamic_cast<const OrvoPluginV1*>(&plugin);
    verlange(v1, "Es hat nicht die Schnittstelle 1.");
    Beschreibungsstrom<false> kopf, inhalt;
    inhalt.schreibeAlle(*v1);
    verlange(inhalt.bytes.size() <= kHoechstlaengeEinerBeschreibung, "zu lang");
    auto ohneBibliothek = Pluginbibliothek::fuer(nullptr);
    Leser{inhalt.bytes}.liesAlle(ohneBibliothek); // refuses what no reader would take
    const std::uint64_t summe = pruefsumme(inhalt.bytes);
    const auto laenge = static_cast<std::uint32_t>(inhalt.bytes.size());
    const auto tiefe = static_cast<std::uint32_t>(summe), hohe = static_cast<std::uint32_t>(summe >> 32);
    kopf.werte(kFormat, std::uint32_t{ORVO_AUSGABE}, laenge, tiefe, hohe);
    return kopf.bytes + inhalt.bytes;
} catch (const Mangel& mangel) {
    throw std::runtime_error(kNichtZuBeschreiben.c_str() + mangel.grund);
}
