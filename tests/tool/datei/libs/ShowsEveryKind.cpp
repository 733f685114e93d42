// A library with a symbol of every kind. It is only looked at, never opened.

#include <string>

#define SICHTBAR __attribute__((visibility("default")))
#define VERSTECKT __attribute__((visibility("hidden")))

extern "C" {

int gibtEsNirgends();
SICHTBAR int funktion();
SICHTBAR __attribute__((weak)) int schwacheFunktion();
VERSTECKT int versteckteFunktion();
int wirdVielleichtGebraucht() __attribute__((weak));
void mitgebracht(); // by NeededByAnother

SICHTBAR extern int daten;
int daten = 1;
SICHTBAR extern thread_local int jeThread;
thread_local int jeThread = 2;

/// One for the whole process. Clang makes none by itself, and GCC none when it is told so.
__asm__(".pushsection .data\n"
        ".globl einmalig\n"
        ".type einmalig,@gnu_unique_object\n"
        ".size einmalig,4\n"
        "einmalig: .long 3\n"
        ".popsection\n");

int versteckteFunktion() { return daten; }
int schwacheFunktion() { return wirdVielleichtGebraucht ? wirdVielleichtGebraucht() : jeThread; }
}

namespace {

thread_local std::string mitDestruktor = "a text that is too long to be kept within the object itself";

#ifndef OHNE_ANFANG
struct Anfang {
    Anfang() { daten = 4; }
} anfang;
#endif

} // namespace

int funktion() {
    mitgebracht();
    return gibtEsNirgends() + versteckteFunktion() + static_cast<int>(mitDestruktor.size());
}
