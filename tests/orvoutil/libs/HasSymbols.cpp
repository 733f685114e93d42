extern "C" __attribute__((visibility("default"))) int zweiundvierzig() { return 42; }

// A symbol whose address is null.
asm(".globl ohne_adresse\n.set ohne_adresse, 0\n");
