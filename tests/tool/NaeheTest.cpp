#include "kern/Naehe.h"

#include <gtest/gtest.h>

using namespace werkzeug;

TEST(Abstand, CountsLettersPutInTakenOutReplacedAndSwapped) {
    EXPECT_EQ(abstand("", ""), 0U);
    EXPECT_EQ(abstand("abc", "abc"), 0U);
    EXPECT_EQ(abstand("abc", "ABC"), 0U);
    EXPECT_EQ(abstand("", "abc"), 3U);
    EXPECT_EQ(abstand("abc", ""), 3U);
    EXPECT_EQ(abstand("abc", "abxc"), 1U);
    EXPECT_EQ(abstand("abc", "ac"), 1U);
    EXPECT_EQ(abstand("abc", "axc"), 1U);
    EXPECT_EQ(abstand("abc", "acb"), 1U);
    EXPECT_EQ(abstand("kitten", "sitting"), 3U);
}

TEST(Naehe, FindsTheWordThatWasMeant) {
    EXPECT_EQ(naechstes("lsit", {"list", "show"}), "list");
    EXPECT_EQ(naechstes("LTSB", {"ZMDO", "LSTB"}), "LSTB");
    EXPECT_EQ(naechstes("kontabfrag", {"Kontoabfrage"}), "Kontoabfrage");
}

TEST(Naehe, FindsNoneForAWordOfItsOwnKindOrForANumber) {
    EXPECT_EQ(naechstes("paint", {"list", "find", "diff"}), "");
    EXPECT_EQ(naechstes("lstb", {"LSTC", "LSTB"}), ""); // is one of them
    EXPECT_EQ(naechstes("11", {"10", "12"}), "");
    EXPECT_EQ(naechstes("x", {"V", ""}), ""); // not one letter in common
}
