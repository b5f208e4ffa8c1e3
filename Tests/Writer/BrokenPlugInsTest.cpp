// SPDX-License-Identifier: Apache-2.0
#include <fstream>

#include "Prelude.h"
#include "Sanitizers.h"
#include "WriterProgram.h"

namespace pelvor {
namespace {

using namespace std::string_literals;

// The program with broken plug-ins put beside its own.
class BrokenPlugIns : public testing::Test {
  protected:
    BrokenPlugIns() : folder(program.useCopy()) {}

    void add(const std::string& name, const std::string& file, const std::string& content) {
        const std::filesystem::path path = folder + name + ".bundle/Contents/" + file;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << content;
    }
    void addInformation(const std::string& name, const std::string& entries) {
        add(name, "Info.plist", "<plist version=\"1.0\"><dict>" + entries + "</dict></plist>");
    }
    static std::string entry(const std::string& key, const std::string& value) {
        return "<key>" + key + "</key><string>" + value + "</string>";
    }
    void addBuilt(const std::string& name) {
        std::filesystem::copy(BROKEN_PLUGINS "/" + name + ".bundle", folder + name + ".bundle",
                              std::filesystem::copy_options::recursive);
    }
    // A plug-in whose code is these bytes.
    void addCode(const std::string& name, const std::string& code) {
        addInformation(name,
                       entry("CFBundleIdentifier", "example." + name) + entry("CFBundleExecutable", "x.so"));
        add(name, "Linux/x.so", code);
    }
    std::string codeOf(const std::string& plugIn) {
        std::ifstream file(folder + plugIn + ".bundle/Contents/Linux/" + plugIn + ".so", std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // The one line of the log that names the bundle; "" unless there is exactly one.
    std::string lineAbout(const WriterRun& run, const std::string& name) {
        const std::size_t at = run.errors.find(name + ".bundle");
        if (at == std::string::npos) return "";
        const std::size_t start = run.errors.rfind('\n', at) + 1;
        const std::size_t end = run.errors.find('\n', at);
        return run.errors.find(name + ".bundle", end) == std::string::npos
                   ? run.errors.substr(start, end - start)
                   : "";
    }

    WriterProgram program;
    std::string folder;
};

TEST_F(BrokenPlugIns, AreToldOfInOneLineEachAndTheOthersAreLoaded) {
    add("NoInformation", "Resources/x.txt", "");
    add("BadInformation", "Info.plist", "<plist><dict><key>");
    addInformation("OddInformation", "<key>CFBundleExecutable</key><integer>7</integer>");
    addInformation("NoCode",
                   entry("CFBundleIdentifier", "example.none") + entry("CFBundleExecutable", "x.so"));
    addInformation("Twin", entry("CFBundleIdentifier", "pelvor.writer.plaintext"));
    addCode("Garbage", "This is no code.");
    addCode("EmptyCode", "");
    std::string foreign = codeOf("PlainText");
    foreign[18] = '\x28';  // the machine, here one that this program was not built for
    addCode("Foreign", foreign);
    // What is left out here has to be more than the debug information, with which a file may well be half
    // full.
    addCode("StartOfTheCode", codeOf("PlainText").substr(0, 4096));
    addBuilt("BrokenUndefined");
    // Bundles are loaded in the order of their names: the name of this one's class is taken.
    addBuilt("BrokenClassName");
    std::filesystem::rename(folder + "BrokenClassName.bundle", folder + "ZClassName.bundle");
    if (kConstructorsMayRaise) addBuilt("BrokenConstructor");

    const WriterRun run = program.run({});
    EXPECT_EQ(run.status, 0);
    EXPECT_TRUE(run.prints("Plug-ins (10): HexDump, LanguageFinder, Languages,")) << run.output;
    EXPECT_EQ(run.valueOf("Plug-ins that could not be loaded"),
              kConstructorsMayRaise ? "12; see the log" : "11; see the log");
    EXPECT_EQ(run.valueOf("Words"), "4545");
    const std::pair<const char*, const char*> lines[] = {
        {"NoInformation", "information"},
        {"BadInformation", "information"},
        {"OddInformation", "information"},
        {"Twin", "identifier"},
        {"NoCode", "bundle "},
        {"Garbage", "bundle "},
        {"EmptyCode", "bundle "},
        {"Foreign", "bundle "},
        {"StartOfTheCode", "bundle "},
        {"BrokenUndefined", "functionThatNobodyHas"},
        {"ZClassName", "WRPlainTextReader"},
    };
    for (const auto& [name, reason] : lines)
        EXPECT_THAT(lineAbout(run, name), HasSubstr(reason)) << name << run.errors;
    if (kConstructorsMayRaise) {
        EXPECT_THAT(lineAbout(run, "BrokenConstructor"), HasSubstr("no paper"));
    }
}

TEST_F(BrokenPlugIns, DoNotStopTheOthersWhereTheyThrowLater) {
    addBuilt("BrokenHook");
    const WriterRun run = program.run({});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.errors, "Exception raised by +[WRBrokenHook didLoad]: no ink\n");
    EXPECT_TRUE(run.prints("Plug-ins (11): "));
    EXPECT_TRUE(run.prints("\nBroken hook\n    The plug-in “Broken hook” failed: unknown exception\n"))
        << run.output;
    EXPECT_TRUE(run.prints("\nWord statistics\n    Sentences: "));
}

TEST_F(BrokenPlugIns, KeepTheirCodeWhereOnlyTheDeclarationsAreBroken) {
    add("PlainText", "Resources/Profiles.plist", "<plist version=\"1.0\"><dict><key>Profiles</key>");
    add("Typography", "Resources/Profiles.plist", "<plist version=\"1.0\"><array/></plist>");
    add("Markdown", "Resources/Profiles.plist",
        "<plist version=\"1.0\"><dict><key>Profiles</key><array/></dict></plist>");
    const WriterRun run = program.run({});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(lineAbout(run, "PlainText").find("declarations"), std::string::npos) << run.errors;
    EXPECT_NE(lineAbout(run, "Typography").find("declarations"), std::string::npos) << run.errors;
    EXPECT_NE(run.errors.find("Profiles Wrong kind of class! got: "), std::string::npos) << run.errors;
    EXPECT_EQ(run.valueOf("Reader").find("Bytes in hexadecimal"), 0u) << run.output;
}

TEST_F(BrokenPlugIns, CanAllBeMissing) {
    std::filesystem::remove_all(folder);
    const WriterRun run = program.run({});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.prints("Plug-ins (0): \n")) << run.output;
    EXPECT_TRUE(run.complains("there is no reader for it.")) << run.errors;
}

}  // namespace
}  // namespace pelvor
