#pragma once

#include <string>

/// Whether a library of that path is in the process's memory map.
bool istEingeblendet(const std::string& pfad);

/// Number of open file descriptors of this process.
int offeneDeskriptoren();
