// A C function as static libraries have them that know nothing of plugins.

extern "C" int ausStatischerBibliothek();
extern "C" int ausStatischerBibliothek() { return 1; }
