#pragma once

#include "ElfDatei.h"

#include <gmock/gmock.h>

#include <functional>
#include <ostream>
#include <string>

/// One change to a library that is in order, and what the check says then.
struct Fall {
    const char* name;
    std::function<void(ElfDatei&)> aendere;
    std::string grund; // a regular expression
};

inline void PrintTo(const Fall& fall, std::ostream* strom) { *strom << fall.name; }

inline std::string nameVon(const testing::TestParamInfo<Fall>& info) { return info.param.name; }

class ElfFall : public testing::TestWithParam<Fall> {
protected:
    void pruefe(const std::string& bibliothek) {
        ElfDatei datei(bibliothek);
        ASSERT_EQ(datei.pruefung(), "");
        GetParam().aendere(datei);
        EXPECT_THAT(datei.pruefung(), testing::ContainsRegex(GetParam().grund));
    }
};
