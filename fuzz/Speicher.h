#pragma once

#include "Eingabe.h"

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <string_view>

/// A file in memory.
class Speicher {
public:
    explicit Speicher(std::string_view inhalt) : deskriptor_(memfd_create("eingabe", MFD_CLOEXEC)) {
        verlange(write(deskriptor_, inhalt.data(), inhalt.size()) == static_cast<ssize_t>(inhalt.size()),
                 "there is room in memory");
    }
    Speicher(const Speicher&) = delete;
    Speicher& operator=(const Speicher&) = delete;
    ~Speicher() { close(deskriptor_); }

    std::string pfad() const { return "/proc/self/fd/" + std::to_string(deskriptor_); }

private:
    int deskriptor_;
};
