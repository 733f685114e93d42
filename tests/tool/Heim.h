#pragma once

#include "Aufruf.h"

#include "support/Verzeichnis.h"

#include <string>
#include <vector>

/// A home directory for one test of the tool.
class Heim {
public:
    Heim() { verzeichnis.legeAn("plugins"); }

    /// Copies a test plugin into "plugins", with its text file of orders, if any. Returns: its path.
    std::string lege(const char* bibliothek, const std::string& name, const std::string& text = "") const {
        if (!text.empty())
            verzeichnis.schreibe("plugins/" + name + ".txt", text);
        return verzeichnis.kopiere(bibliothek, "plugins/" + name);
    }
    std::string plugins() const { return verzeichnis.pfad("plugins"); }

    /// Runs the tool on the directory. In its output "@HOME@" replaces the path.
    Ergebnis rufe(std::vector<std::string> argumente, const std::vector<std::string>& umgebung = {}) const;

    const Verzeichnis verzeichnis;
};

/// Replaces each occurrence in the text.
std::string ersetze(std::string text, const std::string& was, const std::string& womit);

/// Compares with the file of that name in tests/tool/golden. With ORVO_GOLDEN=write set, writes the file instead.
/// Returns: an empty text when they are equal, else what to do.
std::string vergleicheMitMuster(const std::string& name, const std::string& text);
