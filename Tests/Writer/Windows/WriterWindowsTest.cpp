// SPDX-License-Identifier: Apache-2.0
// Tests of Writer as somebody with keys and a mouse finds it on an X server.
#include <sys/wait.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include "EnvironmentScope.h"
#include "Prelude.h"
#include "ProgramOutput.h"
#include "TemporaryFolder.h"
#include "XServerScope.h"

namespace {

class WriterWindowsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!XServerScope::isPossible()) GTEST_SKIP() << "there is no Xvfb";
        if (outputOf("command -v xdotool xclip").status != 0)
            GTEST_SKIP() << "there is no xdotool or no xclip";
        server.emplace(XServerScope::Manager::openbox);
    }
    // Asks again and again, for some seconds.
    template <class Condition>
    [[nodiscard]] static bool until(Condition condition) {
        for (int i = 0; i < 300; ++i) {
            if (condition()) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        return false;
    }

    static bool isShown(const std::string& name) {
        return outputOf("xdotool search --onlyvisible --name '" + name + "'").status == 0;
    }
    // Brings the window to the front whose name has the words, and copies all that is in it.
    static std::string copyAllOf(const std::string& name) {
        outputOf("xdotool search --onlyvisible --name " + name +
                 " windowactivate --sync key ctrl+a ctrl+c 2>/dev/null");
        return outputOf("timeout 2 xclip -o -selection clipboard 2>/dev/null").text;
    }
    // Waits until the program has ended; -1 for one that was killed.
    static int exitStatusOf(const ProgramScope& program) {
        int status = -1;
        EXPECT_TRUE(until([&] { return waitpid(program.pid(), &status, WNOHANG) == program.pid(); }));
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    // Settings and what a crash has left are the test's own.
    const TemporaryFolder folder;
    const EnvironmentScope state{"XDG_STATE_HOME", folder.path("state").c_str()};
    const EnvironmentScope config{"XDG_CONFIG_HOME", folder.path("config").c_str()};
    std::optional<XServerScope> server;
};

// Somebody writes in two languages, with a key that puts accents on letters, and goes on the next day.
TEST_F(WriterWindowsTest, TakesALetterInTwoLanguages) {
    const std::string path =
        folder.write("Letter.rtf", "{\\rtf1\\ansi{\\fonttbl{\\f0 Noto Serif;}}\\f0 Dear Anna,\\par}");
    XServerScope::run({"setxkbmap", "us", "intl"});
    {
        ProgramScope writer({WRITER_PROGRAM, path});
        ASSERT_TRUE(until([&] { return copyAllOf("Letter.rtf").starts_with("Dear Anna,"); }));
        for (const char* keys : {"key ctrl+End", "type --delay 3 'How are you? '", "key ctrl+i",
                                 "type --delay 3 'Das Caf'", "key dead_acute e ctrl+i s ctrl+s"})
            outputOf(std::string("xdotool ") + keys);
        EXPECT_TRUE(
            until([&] { return folder.read("Letter.rtf").find("How are you?") != std::string::npos; }));
    }
    ProgramScope writer({WRITER_PROGRAM, path});
    EXPECT_TRUE(until([&] { return copyAllOf("Letter.rtf") == "Dear Anna,\nHow are you? Das Caf\u00E9s"; }))
        << copyAllOf("Letter.rtf");
    EXPECT_THAT(folder.read("Letter.rtf"),
                testing::ContainsRegex("i.lang[0-9]+ Das Caf.*plain.lang[0-9]+ s"));
    outputOf("xdotool key ctrl+q");
    EXPECT_EQ(exitStatusOf(writer), 0);
}

TEST_F(WriterWindowsTest, BeginsTheFileThatItIsCalledWith) {
    ProgramScope writer({WRITER_PROGRAM, folder.path("New.txt")});
    ASSERT_TRUE(until([] { return isShown("^New.txt"); }));
    EXPECT_TRUE(until([&] {
        outputOf("xdotool key a ctrl+s");
        return std::filesystem::exists(folder.path("New.txt"));
    }));
}

class WriterLossTest : public WriterWindowsTest, public ::testing::WithParamInterface<bool> {};
INSTANTIATE_TEST_SUITE_P(ItselfOrItsDisplay, WriterLossTest, ::testing::Bool());

TEST_P(WriterLossTest, BringsBackWhatWasTypedBeforeItWasKilled) {
    const std::string path = folder.write("Letter.txt", "Anna");
    const std::filesystem::path journals = folder.path("state/pelvor-writer/recovery");
    const auto hasJournal = [&] {
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(journals, error))
            if (entry.path().extension() == ".recovery") return true;
        return false;
    };
    {
        ProgramScope writer(
            {"sh", "-c", "exec \"$0\" \"$1\" 2> \"$2\"", WRITER_PROGRAM, path, folder.path("errors")});
        ASSERT_TRUE(until([] { return isShown("Letter.txt"); }));
        ASSERT_TRUE(until([&] {
            outputOf("xdotool key a");
            return hasJournal();
        }));
        if (GetParam()) {
            writer.end(SIGKILL);
        } else {
            server->server().end(SIGKILL);
            EXPECT_EQ(exitStatusOf(writer), 1);
            EXPECT_THAT(folder.read("errors"), testing::MatchesRegex("[^\n]*The display is lost[^\n]*\n"));
            server.emplace(XServerScope::Manager::openbox);
        }
    }
    ProgramScope writer({WRITER_PROGRAM});
    ASSERT_TRUE(until([] { return isShown("^.Letter.txt"); }));
    EXPECT_TRUE(until([&] {
        const std::string text = copyAllOf("Letter.txt");
        return text.starts_with("a") && text.ends_with("aAnna");
    }));
    EXPECT_EQ(folder.read("Letter.txt"), "Anna");
}

TEST_F(WriterWindowsTest, WorksWithoutWindowsWhereItIsTold) {
    const ProgramOutput output = outputOf(std::string(WRITER_PROGRAM) + " --screenless " + WRITER_SAMPLE);
    EXPECT_EQ(output.status, 0);
    EXPECT_NE(output.text.find("The Compositor"), output.text.npos);
}

}  // namespace
