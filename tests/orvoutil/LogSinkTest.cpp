#include <orvoutil/LogSink.h>

#include <gtest/gtest.h>

#include <type_traits>

using namespace orvo::orvoutil;

TEST(LogEntry, IsAnEmptyMessageAtFirst) {
    const LogEntry eintrag;
    EXPECT_EQ(eintrag.kind, LogKind::Message);
    EXPECT_EQ(eintrag.level, LogLevel::Info);
    EXPECT_EQ(eintrag.category + eintrag.text + eintrag.tag, "");
    EXPECT_EQ(eintrag.code1, 0);
    EXPECT_EQ(eintrag.code2, 0);
}

TEST(LogSink, IsAnInterface) {
    static_assert(std::is_abstract_v<LogSink>);
    static_assert(std::has_virtual_destructor_v<LogSink>);
}
