#include <orvoplugin/plugin/LibraryVersion.h>

#include "support/Mitschnitt.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <string>

namespace {

/// A buffer larger than the texts, filled with a byte that is in neither.
struct Puffer {
    std::array<char, 32> bytes;
    Puffer() { bytes.fill('#'); }

    std::string text() const { return bytes.data(); }
    /// How many bytes were written.
    long geschrieben() const {
        return std::find_if(bytes.rbegin(), bytes.rend(), [](char c) { return c != '#'; }).base() -
               bytes.begin();
    }
};

} // namespace

TEST(LibraryVersion, WritesTheProductVersionAndItsNulIntoSixteenBytes) {
    Puffer puffer;
    getOrvoSharedLibProductversion(puffer.bytes.data());
    EXPECT_EQ(puffer.text(), "17, 4, 6, 64001");
    EXPECT_EQ(puffer.geschrieben(), 16);
}

TEST(LibraryVersion, WritesTheFileVersionAndItsNulIntoFifteenBytes) {
    Puffer puffer;
    getOrvoSharedLibFileversion(puffer.bytes.data());
    EXPECT_EQ(puffer.text(), "2013, 3, 15, 0");
    EXPECT_EQ(puffer.geschrieben(), 15);
}

TEST(LibraryVersion, IsFoundByItsPlainNames) {
    for (const char* const name : {"getOrvoSharedLibProductversion", "getOrvoSharedLibFileversion"}) {
        const auto funktion = reinterpret_cast<void (*)(char*)>(dlsym(RTLD_DEFAULT, name));
        ASSERT_NE(funktion, nullptr) << name;
        Puffer puffer;
        funktion(puffer.bytes.data());
        EXPECT_NE(puffer.geschrieben(), 0) << name;
    }
}

TEST(LibraryVersion, LogsNothing) {
    const Mitschnitt log;
    Puffer puffer;
    getOrvoSharedLibProductversion(puffer.bytes.data());
    getOrvoSharedLibFileversion(puffer.bytes.data());
    EXPECT_EQ(log.zeilen(), std::vector<std::string>());
}
