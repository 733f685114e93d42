// Writes the source of a plugin's table of error texts: two pointers a row, and so two relocations.
//
//     orvo_bench_texts <rows> <file>

#include <cstdlib>
#include <fstream>

int main(int anzahl, char** argumente) {
    if (anzahl != 3)
        return 2;
    std::ofstream quelle(argumente[2]);
    quelle << "struct Fehlertext {\n    const char *nummer, *text;\n};\n"
              "extern const Fehlertext fehlertexte[];\nconst Fehlertext fehlertexte[] = {\n";
    const int zeilen = std::atoi(argumente[1]);
    for (int i = 100'000; i < 100'000 + zeilen; ++i)
        quelle << "    {\"F" << i << "\", \"Die Angabe in Zeile " << i
               << " passt nicht zu den anderen Angaben.\"},\n";
    quelle << "};\n";
    return quelle.flush() ? 0 : 1;
}
