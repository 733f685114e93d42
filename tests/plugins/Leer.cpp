// A library that is no plugin: it exports none of the entry points.

extern "C" __attribute__((visibility("default"))) int keinEinsprungpunkt() { return 0; }
