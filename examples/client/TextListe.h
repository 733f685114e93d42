#pragma once

#include <orvoplugin/service/SteuerfallListe.h>

#include <string>
#include <vector>

/// Tax cases whose records lie in memory. An index beyond the last gives the empty record.
class TextListe : public orvo::data::SteuerfallListe {
public:
    explicit TextListe(std::vector<std::string> texte) : texte_(std::move(texte)) {}

    std::size_t getAnzahl() const override { return texte_.size(); }
    const std::string& getDatensatz(std::size_t index) const override {
        return index < texte_.size() ? texte_[index] : leer_;
    }

private:
    std::vector<std::string> texte_;
    std::string leer_;
};
