// A library that is not a plugin: it exports no entry point.

extern "C" __attribute__((visibility("default"))) int keinEinsprungpunkt() { return 0; }
