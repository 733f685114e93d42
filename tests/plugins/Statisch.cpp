// A C function as in a static library that was not written for plugins.

extern "C" int ausStatischerBibliothek();
extern "C" int ausStatischerBibliothek() { return 1; }
