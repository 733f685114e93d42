#include "Diagramm.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ostream>
#include <utility>

namespace {

constexpr int kBreite = 900, kHoehe = 400, kOben = 80, kUnten = 330;
constexpr char kGrau[] = "#6b7280", kBlau[] = "#1d4ed8", kHell[] = "#e5e7eb";
constexpr char kTitel[] = "font-size=\"15\" font-weight=\"bold\"";

std::string zahl(double wert, const char* format = "%.3g") {
    char text[32];
    std::snprintf(text, sizeof(text), format, wert);
    return text;
}
std::string zeit(double mikrosekunden) {
    return mikrosekunden < 1000 ? zahl(mikrosekunden) + " µs" : zahl(mikrosekunden / 1000) + " ms";
}

void text(std::ostream& svg, double x, double y, const std::string& inhalt, const char* anker = "start",
          const char* mehr = "") {
    svg << "<text x=\"" << x << "\" y=\"" << y << "\" text-anchor=\"" << anker << "\" " << mehr << ">"
        << inhalt << "</text>\n";
}
void linie(std::ostream& svg, double x1, double y1, double x2, double y2, const char* farbe) {
    svg << "<line x1=\"" << x1 << "\" y1=\"" << y1 << "\" x2=\"" << x2 << "\" y2=\"" << y2 << "\" stroke=\""
        << farbe << "\" stroke-width=\"2\"/>\n";
}
void balken(std::ostream& svg, double x, double y, double laenge, const char* farbe,
            const std::string& beschriftung) {
    svg << "<rect x=\"" << x << "\" y=\"" << y << "\" width=\"" << laenge << "\" height=\"12\" fill=\""
        << farbe << "\"/>\n";
    text(svg, x + laenge + 6, y + 11, beschriftung);
}
/// Cold starts are drawn hollow.
void punkt(std::ostream& svg, double x, double y, const char* farbe, bool kalt) {
    svg << "<circle cx=\"" << x << "\" cy=\"" << y << "\" r=\"5\" stroke-width=\"2\" stroke=\"" << farbe
        << "\" fill=\"" << (kalt ? "#ffffff" : farbe) << "\"/>\n";
}

void legende(std::ostream& svg) {
    const struct {
        const char *farbe, *name;
        bool kalt;
    } eintraege[] = {{kGrau, "floor, files in memory", false},
                     {kBlau, "product, files in memory", false},
                     {kGrau, "floor, files on disk", true},
                     {kBlau, "product, files on disk", true}};
    double x = 30;
    for (const auto& [farbe, name, kalt] : eintraege) {
        punkt(svg, x, kHoehe - 20, farbe, kalt);
        text(svg, x + 12, kHoehe - 16, name);
        x += 210;
    }
}

/// Left: 100 plugins of each size, the floor's bars all of one length.
void groessen(std::ostream& svg, const std::vector<Messpunkt>& punkte) {
    constexpr double kEins = 130;
    text(svg, 30, 30, "Start-up with 100 plugins", "start", kTitel);
    text(svg, 30, 50, "time per plugin; each floor is 1");
    double y = kOben;
    for (const auto& [groesse, plugins, kalt, v] : punkte) {
        if (plugins != 100)
            continue;
        text(svg, 30, y + 18, groesse + (kalt ? ", disk" : ", memory"));
        balken(svg, 150, y, kEins, kGrau, zeit(v.boden));
        balken(svg, 150, y + 14, kEins * v.verhaeltnis, kBlau,
               zeit(v.produkt) + " (" + zahl(v.verhaeltnis, "%.2f") + ")");
        y += 42;
    }
}

/// Right: the time per plugin of the first size against the number of plugins.
void wachstum(std::ostream& svg, const std::vector<Messpunkt>& punkte) {
    const auto istKlein = [&](const Messpunkt& p) { return p.groesse == punkte.front().groesse; };
    text(svg, 480, 30, "Growth with the number of plugins", "start", kTitel);
    text(svg, 480, 50, "time per plugin of " + punkte.front().groesse);
    double hoechste = 1;
    for (const Messpunkt& p : punkte)
        if (istKlein(p))
            hoechste = std::max({hoechste, p.zeit.boden, p.zeit.produkt});
    const auto senkrecht = [&](double wert) { return kUnten - wert / hoechste * (kUnten - kOben); };
    const double potenz = std::pow(10, std::floor(std::log10(hoechste)));
    for (double strich = 0; strich <= hoechste; strich += hoechste < 3 * potenz ? potenz / 2 : potenz) {
        linie(svg, 550, senkrecht(strich), 870, senkrecht(strich), kHell);
        text(svg, 540, senkrecht(strich) + 4, zeit(strich), "end");
    }
    text(svg, 540, kUnten + 18, "plugins", "end");
    for (const bool kalt : {false, true}) {
        double x = 570;
        const Messpunkt* vorher = nullptr;
        for (const Messpunkt& p : punkte) {
            if (!istKlein(p) || p.kalt != kalt)
                continue;
            if (!kalt)
                text(svg, x, kUnten + 18, zahl(p.plugins, "%.0f"), "middle");
            for (const auto& [wert, farbe] :
                 {std::pair(&Vergleich::boden, kGrau), std::pair(&Vergleich::produkt, kBlau)}) {
                if (vorher) {
                    linie(svg, x - 70, senkrecht(vorher->zeit.*wert), x, senkrecht(p.zeit.*wert), farbe);
                    punkt(svg, x - 70, senkrecht(vorher->zeit.*wert), farbe, kalt); // over the line's end
                }
                punkt(svg, x, senkrecht(p.zeit.*wert), farbe, kalt);
            }
            vorher = &p;
            x += 70;
        }
    }
}

} // namespace

void zeichne(std::ostream& svg, const std::vector<Messpunkt>& punkte) {
    // its own background, so that it is read on a dark page too
    svg << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << kBreite << " " << kHoehe
        << "\" font-family=\"sans-serif\" font-size=\"13\" fill=\"#1f2937\">\n"
           "<title>Start-up time per plugin, floor and product</title>\n"
           "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n";
    groessen(svg, punkte);
    wachstum(svg, punkte);
    legende(svg);
    svg << "</svg>\n";
}
