// SPDX-License-Identifier: Apache-2.0
#include "Prelude.h"
#include "Sanitizers.h"
#include "WriterProgram.h"

namespace {

// The program with broken plug-ins put beside its own.
struct BrokenPlugIns : ::testing::Test {
    static std::string contents(const std::string& plugIn) {
        return "PelvorWriter/Contents/PlugIns/" + plugIn + ".bundle/Contents/";
    }
    void add(const std::string& name, const std::string& file, const std::string& content) {
        program.folder.write(contents(name) + file, content);
    }
    void addBuilt(const std::string& name, const std::string& newName) {
        std::filesystem::copy(BROKEN_PLUGINS "/" + name + ".bundle", folder + newName + ".bundle",
                              std::filesystem::copy_options::recursive);
    }
    // A plug-in whose code is these bytes.
    void addCode(const std::string& name, const std::string& code) {
        add(name, "Info.plist", "{CFBundleIdentifier = example." + name + "; CFBundleExecutable = x.so;}");
        add(name, "Linux/x.so", code);
    }
    WriterRun run(int status = 0) {
        const WriterRun run = program.run({});
        EXPECT_EQ(run.status, status);
        return run;
    }
    // The one line of the log that names the bundle; "" unless there is exactly one.
    static std::string lineAbout(const WriterRun& run, const std::string& name) {
        std::istringstream lines(run.errors);
        std::string found;
        for (std::string line; std::getline(lines, line);)
            if (line.find(name + ".bundle") != line.npos) found = found.empty() ? line : "more than one line";
        return found;
    }

    WriterProgram program;
    std::string folder = program.useCopy();
};

TEST_F(BrokenPlugIns, AreToldOfInOneLineEachAndTheOthersAreLoaded) {
    add("NoInformation", "Resources/x.txt", "");
    add("BadInformation", "Info.plist", "<plist><dict><key>");
    add("OddInformation", "Info.plist", "{CFBundleExecutable = (7);}");
    add("NoCode", "Info.plist", "{CFBundleIdentifier = example.none; CFBundleExecutable = x.so;}");
    add("Twin", "Info.plist", "{CFBundleIdentifier = pelvor.writer.plaintext;}");
    addCode("Garbage", "This is no code.");
    addCode("EmptyCode", "");
    std::string foreign = program.folder.read(contents("PlainText") + "Linux/PlainText.so");
    // What is left out here has to be more than the debug information, with which a file may well be half
    // full.
    addCode("StartOfTheCode", foreign.substr(0, 4096));
    foreign[18] = '\x28';  // the machine, here one that this program was not built for
    addCode("Foreign", foreign);
    addBuilt("BrokenUndefined", "Undefined");
    // Bundles are loaded in the order of their names: the name of this one's class is taken.
    addBuilt("BrokenClassName", "ZClassName");
    if (kConstructorsMayRaise) addBuilt("BrokenConstructor", "Constructor");

    const WriterRun told = run();
    EXPECT_TRUE(told.prints("Plug-ins (10): HexDump, LanguageFinder, Languages,")) << told.output;
    EXPECT_EQ(told.valueOf("Plug-ins that could not be loaded"),
              kConstructorsMayRaise ? "12; see the log" : "11; see the log");
    EXPECT_EQ(told.valueOf("Words"), "4545");
    auto expectLine = [&](const char* reason, std::initializer_list<const char*> names) {
        for (const char* name : names) EXPECT_THAT(lineAbout(told, name), HasSubstr(reason)) << name;
    };
    expectLine("information", {"NoInformation", "BadInformation", "OddInformation"});
    expectLine("identifier", {"Twin"});
    expectLine("bundle ", {"NoCode", "Garbage", "EmptyCode", "Foreign", "StartOfTheCode"});
    expectLine("functionThatNobodyHas", {"Undefined"});
    expectLine("WRPlainTextReader", {"ZClassName"});
    if (kConstructorsMayRaise) expectLine("no paper", {"Constructor"});
}

TEST_F(BrokenPlugIns, DoNotStopTheOthersWhereTheyThrowLater) {
    addBuilt("BrokenHook", "BrokenHook");
    const WriterRun told = run();
    EXPECT_EQ(told.errors, "Exception raised by +[WRBrokenHook didLoad]: no ink\n");
    for (const char* line :
         {"Plug-ins (11): ", "\nBroken hook\n    The plug-in “Broken hook” failed: unknown exception\n",
          "\nWord statistics\n    Sentences: "})
        EXPECT_THAT(told.output, HasSubstr(line));
}

TEST_F(BrokenPlugIns, KeepTheirCodeWhereOnlyTheDeclarationsAreBroken) {
    add("PlainText", "Resources/Profiles.plist", "<plist version=\"1.0\"><dict><key>Profiles</key>");
    add("Typography", "Resources/Profiles.plist", "()");
    add("Markdown", "Resources/Profiles.plist", "{Profiles = ();}");
    const WriterRun told = run();
    for (const char* name : {"PlainText", "Typography"})
        EXPECT_THAT(lineAbout(told, name), HasSubstr("declarations")) << told.errors;
    EXPECT_THAT(told.errors, HasSubstr("Profiles Wrong kind of class! got: "));
    EXPECT_THAT(told.valueOf("Reader"), StartsWith("Bytes in hexadecimal"));
}

TEST_F(BrokenPlugIns, CanAllBeMissing) {
    std::filesystem::remove_all(folder);
    const WriterRun told = run(1);
    EXPECT_THAT(told.output, HasSubstr("Plug-ins (0): \n"));
    EXPECT_THAT(told.errors, HasSubstr("there is no reader for it."));
}

}  // namespace
