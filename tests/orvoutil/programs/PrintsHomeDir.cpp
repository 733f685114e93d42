#include <orvoutil/Einstellungen.h>

#include <unistd.h>

#include <iostream>

int main() {
    if (chdir("/") != 0)
        return 1;
    std::cout << orvo::orvoutil::Einstellungen().basisHomeDir();
}
