#include <orvoplugin/domain/InvalidFormatException.h>

#include <gtest/gtest.h>

#include <string>

namespace {

using orvo::exception::InvalidFormatException;
using orvo::exception::OrvoException;

TEST(InvalidFormatException, IsCaughtAsTheUtilitysExceptionWithItsCodeAndText) {
    try {
        throw InvalidFormatException("Ung\xFCltig");
    } catch (const OrvoException& e) {
        EXPECT_EQ(e.getErrorCode(), 610001002);
        EXPECT_STREQ(e.what(), "Ung\xFCltig");
    }
}

TEST(InvalidFormatException, KeepsItsTextWhenCopied) {
    const InvalidFormatException eine("a text that is long enough to need room of its own");
    const InvalidFormatException kopie(eine);
    InvalidFormatException andere("");
    andere = eine;
    EXPECT_STREQ(kopie.what(), eine.what());
    EXPECT_STREQ(andere.what(), eine.what());
    EXPECT_EQ(kopie.getErrorCode(), InvalidFormatException::FEHLERCODE);
}

} // namespace
