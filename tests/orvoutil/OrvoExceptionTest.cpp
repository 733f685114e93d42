#include <orvoutil/OrvoException.h>

#include <gtest/gtest.h>

#include <type_traits>

using orvo::exception::OrvoException;

TEST(OrvoException, CarriesCodeAndText) {
    const OrvoException ausnahme(610001002, "Ung\xFCltig");
    EXPECT_EQ(ausnahme.getErrorCode(), 610001002);
    EXPECT_STREQ(ausnahme.what(), "Ung\xFCltig");
}

TEST(OrvoException, CarriesTheEmptyTextAndNegativeCodes) {
    const OrvoException ausnahme(-1, "");
    EXPECT_EQ(ausnahme.getErrorCode(), -1);
    EXPECT_STREQ(ausnahme.what(), "");
}

TEST(OrvoException, IsCaughtAsAStandardException) {
    try {
        throw OrvoException(7, "text");
    } catch (const std::exception& ausnahme) {
        EXPECT_STREQ(ausnahme.what(), "text");
    }
}

TEST(OrvoException, CopiesWithoutThrowing) {
    static_assert(std::is_nothrow_copy_constructible_v<OrvoException>);
    static_assert(std::is_nothrow_copy_assignable_v<OrvoException>);
    OrvoException kopie(1, "kurz");
    {
        const OrvoException lang(2, std::string(1000, 'x'));
        kopie = lang;
    }
    EXPECT_EQ(kopie.getErrorCode(), 2);
    EXPECT_EQ(std::string(kopie.what()), std::string(1000, 'x'));
}
