#include <orvoplugin/plugin/LibraryVersion.h>

#include <cstring>

constexpr char kProduktVersion[] = "17, 4, 6, 64001";
constexpr char kFileVersion[] = "2013, 3, 15, 0";

void getOrvoSharedLibProductversion(char* puffer) {
    std::memcpy(puffer, kProduktVersion, sizeof kProduktVersion);
}

void getOrvoSharedLibFileversion(char* puffer) { std::memcpy(puffer, kFileVersion, sizeof kFileVersion); }
