#pragma once

#include <string>

/// Whether a library of that path is mapped into the process.
bool istEingeblendet(const std::string& pfad);

/// Number of open file descriptors of this process.
int offeneDeskriptoren();
