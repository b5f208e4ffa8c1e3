// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSLog.h"

#include <unistd.h>
#include <regex>

#include "Foundation/NSProcessInfo.h"
#include "Prelude.h"

namespace {

TEST(NSLogTest, ALineHasTimeProgramProcessAndText) {
    ::testing::internal::CaptureStderr();
    NSLog(u"%@ is %d %s"_ns, u"Grüße"_ns, 42, "times");
    std::string line = ::testing::internal::GetCapturedStderr();
    std::string place =
        NSProcessInfo::processInfo()->processName()->toUTF8() + "\\[" + std::to_string(getpid()) + "\\]";
    std::regex form("\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d{3} " + place + " Grüße is 42 times\n");
    EXPECT_TRUE(std::regex_match(line, form)) << line;
}

TEST(NSLogTest, ASinkHearsEverythingForAScope) {
    LogLines outer;
    std::string inner;
    {
        LogSinkScope innerScope([&](const LogEntry& entry) { inner += entry.line; });
        NSLog(u"within"_ns);
    }
    logText("outside");
    EXPECT_THAT(inner, HasSubstr("] within"));
    EXPECT_THAT(outer.lines, ElementsAre("outside"));
}

TEST(NSLogTest, ASinkMayLogThrowAndReplaceItself) {
    std::vector<std::string> heard;
    ::testing::internal::CaptureStderr();
    LogSinkScope scope([&](const LogEntry& entry) {
        heard.emplace_back(entry.text);
        NSLog(u"from the sink"_ns);
        if (heard.size() == 2) setLogSink(nullptr);
        throw 1;
    });
    for (const char* text : {"one", "two", "three"}) logText(text);
    EXPECT_THAT(heard, ElementsAre("one", "two"));
    std::string rest = ::testing::internal::GetCapturedStderr();
    EXPECT_THAT(rest, HasSubstr("from the sink\n"));
    EXPECT_THAT(rest, HasSubstr("three\n"));
}

TEST(NSLogTest, LinesOfManyThreadsStayWhole) {
    const std::string text(200, 'x');
    ::testing::internal::CaptureStderr();
    onThreads(4, [&](int) {
        for (int i = 0; i < 50; ++i) logText(text);
    });
    std::istringstream lines(::testing::internal::GetCapturedStderr());
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count)
        EXPECT_EQ(line.find("] " + text), line.size() - text.size() - 2);
    EXPECT_EQ(count, 200);
}

}  // namespace
