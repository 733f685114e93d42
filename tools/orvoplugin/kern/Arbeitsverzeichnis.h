#pragma once

#include "kern/Sprache.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

namespace werkzeug {

/// A temporary directory, removed at the end.
class Arbeitsverzeichnis {
public:
    /// Makes one. Errors: `std::system_error`.
    Arbeitsverzeichnis() : pfad_((std::filesystem::temp_directory_path() / "orvoplugin-XXXXXX").string()) {
        if (!mkdtemp(pfad_.data()))
            throw std::system_error(errno, std::generic_category(),
                                    satz("cannot make a directory for temporary files"));
    }
    /// Takes over one that is there.
    explicit Arbeitsverzeichnis(std::string pfad) : pfad_(std::move(pfad)) {}
    Arbeitsverzeichnis(const Arbeitsverzeichnis&) = delete;
    Arbeitsverzeichnis& operator=(const Arbeitsverzeichnis&) = delete;
    ~Arbeitsverzeichnis() {
        std::error_code gleich;
        std::filesystem::remove_all(pfad_, gleich);
    }

    const std::string& pfad() const { return pfad_; }

private:
    std::string pfad_;
};

} // namespace werkzeug
