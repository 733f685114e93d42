#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <stdexcept>
#include <string>

/// Makes a directory the current one for as long as it lives.
class CurrentDirectory {
public:
    explicit CurrentDirectory(const std::string& pfad)
        : vorher_(open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        if (vorher_ < 0 || chdir(pfad.c_str()) != 0)
            throw std::runtime_error("cannot change to " + pfad);
    }
    CurrentDirectory(const CurrentDirectory&) = delete;
    CurrentDirectory& operator=(const CurrentDirectory&) = delete;
    ~CurrentDirectory() {
        [[maybe_unused]] const int ergebnis = fchdir(vorher_);
        close(vorher_);
    }

private:
    int vorher_;
};
