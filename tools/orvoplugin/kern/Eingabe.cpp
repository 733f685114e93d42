#include "kern/Eingabe.h"

#include "kern/Anzeige.h"
#include "kern/Naehe.h"

#include <orvoplugin/domain/InvalidFormatException.h>
#include <orvoplugin/domain/Konstanten.h>
#include <orvoplugin/domain/Veranlagungszeitraum.h>
#include <orvoplugin/plugin/erweiterung/OrvoErweiterung.h>
#include <orvoutil/Latin1.h>
#include <orvoutil/StringUtil.h>

#include <chrono>
#include <string_view>
#include <vector>

using namespace orvo::orvoutil;

namespace werkzeug {

namespace {

const Unterfallart* const kVordefiniert[] = {&UFA_10,
                                             &UFA_12,
                                             &UFA_13,
                                             &UFA_20,
                                             &UFA_21,
                                             &UFA_30,
                                             &UFA_31,
                                             &UFA_32,
                                             &UFA_33,
                                             &UFA_50,
                                             &UFA_57,
                                             &UFA_58,
                                             &UFA_64,
                                             &UFA_77,
                                             &UFA_90,
                                             &UFA_95,
                                             &UFA_LSTB,
                                             &UFA_PROTOKOLL_ANFORDERUNG,
                                             &UFA_KONTOABFRAGE,
                                             &UFA_REGISTRIERUNG,
                                             &UFA_ANTRAEGE_UND_RECHTE,
                                             &UFA_ANTRAEGE_RECHTE_LOESCHEN,
                                             &UFA_KAPESTA,
                                             &UFA_KAPESTINVSTG,
                                             &UFA_BILANZ_5_0,
                                             &UFA_BILANZ_5_1,
                                             &UFA_ZMDO,
                                             &UFA_TALVOR_ERKLAERUNG_DATEN,
                                             &UFA_TALVOR_FT_DATEN,
                                             &UFA_TALVOR_LOHN2_DATEN,
                                             &UFA_DUE_ANMELDEN,
                                             &UFA_DUE_ABMELDEN,
                                             &UFA_DUE_UMMELDEN,
                                             &UFA_VV,
                                             &UFA_ZD,
                                             &UFA_LOHNERSATZLEISTUNG,
                                             &UFA_ZUWENDUNGSBESTAETIGUNG,
                                             &UFA_TALVOR_KMV_DATEN};

constexpr std::string_view kVorne = "ORVO_";
constexpr std::string_view kHinten[] = {"_ERWEITERUNG", "_SERVICE"};

std::string ohneVorne(const std::string& name) {
    return name.starts_with(kVorne) ? name.substr(kVorne.size()) : name;
}

/// Whether the text begins the name, or is one of its words.
bool istAnfangOderWort(const std::string& name, const std::string& text) {
    return name.starts_with(text) || ("_" + name + "_").find("_" + text + "_") != std::string::npos;
}

bool gleichtDemMuster(const std::string& text, const std::string& muster) {
    if (text.size() != muster.size())
        return false;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (muster[i] == '9' ? text[i] < '0' || text[i] > '9' : text[i] != muster[i])
            return false;
    return true;
}

std::string typName(int typ) { return erweiterungTypName(static_cast<tag_erweiterung_typ>(typ)); }

std::string aufgezaehlt(const std::vector<int>& typen) {
    std::string text;
    for (const int typ : typen)
        text += "\n  " + std::to_string(typ) + "  " + kurzerTypName(typName(typ));
    return text;
}

/// The name of a kind, or a word of one, that was probably meant.
std::string naechsterTyp(const std::vector<int>& typen, const std::string& text) {
    std::vector<std::string> worte;
    for (const int typ : typen) {
        const std::string name = kurzerTypName(typName(typ));
        worte.insert(worte.end(), {ohneVorne(typName(typ)), name});
        for (std::size_t i = 0, ende = 0; ende != std::string::npos; i = ende + 1) {
            ende = name.find('_', i);
            worte.push_back(name.substr(i, ende - i));
        }
    }
    return naechstes(text, worte);
}

/// Whether the month exists, or the code of a quarter or of the whole year. The library accepts any number there, so
/// that plugins can use their own; on the command line another number is a mistake.
bool gibtEs(const Veranlagungszeitraum& vz, bool mitTag) {
    const auto zwischen = [](int wert, int von, int bis) { return wert >= von && wert <= bis; };
    const int monat = vz.getZeitraum();
    if (!mitTag)
        return vz.getTyp() != Veranlagungszeitraum::MONAT || zwischen(monat, 1, 12);
    return zwischen(monat, 1, 12) && zwischen(vz.getTag(), 1, 31) &&
           std::chrono::year_month_day(std::chrono::year(vz.getJahr()),
                                       std::chrono::month(static_cast<unsigned>(monat)),
                                       std::chrono::day(static_cast<unsigned>(vz.getTag())))
               .ok();
}

} // namespace

std::string kurzerTypName(const std::string& name) {
    std::string kurz = ohneVorne(name);
    for (const std::string_view ende : kHinten)
        if (kurz.ends_with(ende))
            kurz.resize(kurz.size() - ende.size());
    return kurz;
}

std::int32_t liesTyp(const std::string& text) {
    if (isNumeric(text))
        return string2Int(text);
    std::string gesucht = orvo::orvoutil::tolower(text);
    if (gesucht.starts_with(orvo::orvoutil::tolower(kVorne)))
        gesucht.erase(0, kVorne.size());
    std::vector<int> alle;
    std::vector<int> anfang;
    std::vector<int> teil;
    for (int typ = ORVO_CHECK_SERVICE_ERWEITERUNG; typ <= ORVO_DATENSATZ_READER_SERVICE_ERWEITERUNG; ++typ) {
        const std::string name = orvo::orvoutil::tolower(ohneVorne(typName(typ)));
        alle.push_back(typ);
        if (istAnfangOderWort(name, gesucht))
            anfang.push_back(typ);
        if (name.find(gesucht) != std::string::npos)
            teil.push_back(typ);
    }
    const std::vector<int>& passende = anfang.empty() ? teil : anfang;
    if (passende.empty())
        throw AufrufFehler(satz("there is no kind of extension \"{1}\"", einzeilig(text)) +
                           rueckfrage(naechsterTyp(alle, gesucht)) + "\n" + satz("The kinds are") +
                           aufgezaehlt(alle));
    if (passende.size() > 1)
        throw AufrufFehler(satz("several kinds of extension are meant by \"{1}\":", einzeilig(text)) +
                           aufgezaehlt(passende));
    return passende.front();
}

Zeitraumtext liesZeitraum(const std::string& text) {
    if (compareIgnoreCase(text, VZ_UNABHAENGIG) == 0)
        return {};
    Zeitraumtext gelesen{text, {}};
    if (text.size() == 6 && (text[4] == 'Q' || text[4] == 'q') && text[5] >= '1' && text[5] <= '4') {
        gelesen.text = text.substr(0, 4) + "-4" + text[5]; // the library's code of the quarter
        gelesen.format = "YYYY-MM";
    } else if (gleichtDemMuster(text, "9999-99-99")) {
        gelesen.format = "YYYY-MM-TT";
    } else if (gleichtDemMuster(text, "9999-99")) {
        gelesen.format = "YYYY-MM";
    } else if (gleichtDemMuster(text, "9999")) {
        gelesen.format = "YYYY";
    } else {
        throw AufrufFehler(
            satz("\"{1}\" is no period; write 2009, 2009-05, 2009Q2, 2009-05-31 or VZ_UNABHAENGIG",
                 einzeilig(text)));
    }
    try {
        const Veranlagungszeitraum vz = Veranlagungszeitraum::parse(gelesen.text, gelesen.format.c_str());
        if (const bool mitTag = gelesen.format.ends_with("TT"); !gibtEs(vz, mitTag))
            throw AufrufFehler(mitTag ? satz("\"{1}\" is no period: there is no such day", text)
                                      : satz("\"{1}\" is no period: there is no such month", text));
    } catch (const orvo::exception::InvalidFormatException& fehler) {
        throw AufrufFehler(satz("\"{1}\" is no period: {2}", einzeilig(text), toUtf8(fehler.what())));
    }
    return gelesen;
}

std::string liesUnterfallart(const std::string& text) {
    std::string latin1;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto erstes = static_cast<unsigned char>(text[i]);
        if (erstes < 0x80) {
            latin1 += text[i];
        } else if ((erstes == 0xC2 || erstes == 0xC3) && i + 1 < text.size() &&
                   (static_cast<unsigned char>(text[i + 1]) & 0xC0) == 0x80) {
            latin1 +=
                static_cast<char>((erstes & 0x03) << 6 | (static_cast<unsigned char>(text[++i]) & 0x3F));
        } else {
            return text;
        }
    }
    return latin1;
}

std::vector<std::string> vordefinierteUnterfallarten() {
    std::vector<std::string> namen;
    for (const Unterfallart* const unterfallart : kVordefiniert)
        namen.push_back(unterfallart->getName());
    return namen;
}

std::string gemeinteUnterfallart(const std::string& unterfallart, std::vector<std::string> bediente) {
    for (std::string& name : vordefinierteUnterfallarten())
        bediente.push_back(std::move(name));
    return naechstes(unterfallart, bediente);
}

} // namespace werkzeug
