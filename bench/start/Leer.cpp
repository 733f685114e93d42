// The floor of a process without plugins: lists an empty directory, and is linked to nothing of ours.

#include "Messung.h"

int main(int anzahl, char** argumente) {
    return anzahl == 3 && dateien(std::string(argumente[1]) + "/plugins").empty() ? 0 : 1;
}
