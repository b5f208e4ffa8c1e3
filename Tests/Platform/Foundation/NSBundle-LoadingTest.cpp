// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <elf.h>
#include <sys/stat.h>
#include <unistd.h>

#include <future>

#include "BundleTestSupport.h"
#include "Foundation/NSRuntimeNames.h"
#include "Platform/Foundation/PropertyListSamples.h"
#include "Sanitizers.h"

namespace {

class NSBundleLoadingTest : public ::testing::Test {
  protected:
    NSBundleLoadingTest() { registerLibrary(foundationLibrary); }

    fs::path bundleWithCode(const fs::path& bundle, const std::string& code) {
        folder.write(bundle / "Contents/Linux/code.so", code);
        return folder.makeBundle(bundle, {{"CFBundleIdentifier", "test." + bundle.filename().string()},
                                          {"CFBundleExecutable", "code.so"},
                                          {"PelvorInterfaceVersion", std::to_string(kInterfaceVersion)}});
    }
    NSBundle* dataBundle(const std::string& name) { return bundleAt(folder.makeBundle(name + ".bundle")); }
    void expectHeardOnce(NSBundle* bundle) {
        ASSERT_EQ(listener->heard.size(), 1u);
        EXPECT_EQ(listener->heard[0]->object(), bundle);
    }

    BundleFolder folder;
    LogLines log;
    Retained<Listener> listener = Listener::to(NSBundleDidLoadNotification);
};

TEST_F(NSBundleLoadingTest, APlugInIsLoadedAnnouncedAndItsClassesAreItsOwn) {
    auto* bundle = bundleAt(testPlugIn("Lamp"));
    EXPECT_TRUE(!NSClassFromString(u"Lamp"_ns) && !bundle->isLoaded());
    ASSERT_TRUE(bundle->load() && bundle->isLoaded());
    Class* lamp = NSClassFromString(u"Lamp"_ns);
    ASSERT_TRUE(lamp);
    EXPECT_EQ(send<int>(send<id>(lamp, "new"_sel), "watts"_sel), 60);
    EXPECT_EQ(send<int>(u"abc"_ns, "lampCount"_sel), 3);
    EXPECT_EQ(NSBundle::bundleForClass(lamp), bundle);
    EXPECT_EQ(shown(bundle->principalClass(), bundle->classNamed(u"FloorLamp"_ns),
                    bundle->classNamed(u"NSString"_ns)),
              "Lamp FloorLamp (null)");
    EXPECT_TRUE(bundle->load());  // no second time
    expectHeardOnce(bundle);
    EXPECT_EQ(shown(listener->heard[0]->userInfo()->objectForKey(NSLoadedClasses)),
              shown(NSArray::of({u"Lamp"_ns, u"FloorLamp"_ns})));
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(NSBundleLoadingTest, AnObserverMayLoadAnotherBundleAndUndoesNothingByRaising) {
    auto* inner = dataBundle("Inner");
    listener->reaction = [&] { EXPECT_TRUE(inner->load()); };
    EXPECT_TRUE(dataBundle("Outer")->load());
    EXPECT_EQ(listener->heard.size(), 2u);
    listener->reaction = [] { throw NSException("Bad", "mood"); };
    auto* bundle = dataBundle("Data");
    EXPECT_TRUE(bundle->load() && bundle->isLoaded());
    EXPECT_THAT(log.lines, ElementsAre(AllOf(HasSubstr("Data.bundle"), HasSubstr("mood"))));
}

TEST_F(NSBundleLoadingTest, ThreadsThatLoadOneBundleOfDataAnnounceItOnce) {
    auto* bundle = dataBundle("Data");
    std::atomic<int> loaded{0};
    onThreads(4, [&](int) { loaded += bundle->load() && bundle->isLoaded(); });
    EXPECT_EQ(loaded, 4);
    expectHeardOnce(bundle);
    EXPECT_EQ(bundle->principalClass(), nullptr);
}

TEST_F(NSBundleLoadingTest, AMendedBundleLoads) {
    auto* bundle = bundleAt(folder.write("Mended.bundle/Contents/Info.plist", "nonsense") + "/../..");
    NSString* reason = nullptr;
    EXPECT_FALSE(bundle->loadAndReturnError(&reason));
    EXPECT_THAT(reason->toUTF8(), HasSubstr("information: "));
    EXPECT_THAT(log.lines, IsEmpty());
    folder.makeBundle("Mended.bundle", {{"CFBundleIdentifier", "test.mended"}});
    EXPECT_TRUE(bundle->loadAndReturnError(&reason));
    EXPECT_EQ(shown(reason, bundle->bundleIdentifier()), "(null) test.mended");
}

TEST_F(NSBundleLoadingTest, ARaisingConstructorLeavesTheLoaderUsableOnAllThreads) {
    if (!kConstructorsMayRaise) GTEST_SKIP();
    EXPECT_FALSE(bundleAt(bundleWithCode("Raising.bundle", folder.read(testPlugInCode("RaisingConstructor"))))
                     ->load());
    std::promise<bool> found;
    auto result = found.get_future();
    // Detached: where the loader hangs, so would a join.
    std::thread([found = std::move(found), path = testPlugInCode("NoFunction").string()]() mutable {
        found.set_value(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL) != nullptr);
    }).detach();
    ASSERT_EQ(result.wait_for(std::chrono::seconds(30)), std::future_status::ready);
    EXPECT_TRUE(result.get());
}

// MARK: Bad bundles

class BadBundleTest : public NSBundleLoadingTest {
  protected:
    using Fill = std::function<void(const fs::path& plist)>;

    // A bundle filled like that is refused with one line of that stage and reason, twice, and leaves nothing
    // behind; a sound one loads after it.
    void expectRefused(const std::string& name, const std::string& reason, const Fill& fill) {
        SCOPED_TRACE(name);
        const fs::path path = folder.path() / (name + ".bundle");
        fs::create_directories(path / "Contents/Linux");
        fill(path / "Contents/Info.plist");
        listener->heard.clear();
        const std::size_t classes = classList(nullptr, 0), colon = reason.find(": ") + 2;
        auto* bundle = bundleAt(path);
        ASSERT_TRUE(bundle);
        for (int i = 0; i < 2; ++i) {
            log.lines.clear();
            EXPECT_FALSE(bundle->load());
            EXPECT_THAT(log.lines,
                        ElementsAre(AllOf(HasSubstr(path.string() + ": " + reason.substr(0, colon)),
                                          HasSubstr(reason.substr(colon)))));
        }
        EXPECT_TRUE(!bundle->isLoaded() && !bundle->principalClass() && listener->heard.empty());
        EXPECT_EQ(classList(nullptr, 0), classes);
        EXPECT_TRUE(dataBundle("Sound-" + name)->load());
    }
    void expectCodeRefused(const std::string& name, const std::string& reason, const std::string& code) {
        expectRefused(name, reason, [&](const fs::path& plist) {
            bundleWithCode(plist.parent_path().parent_path(), code);
        });
    }
    const std::string own = "interface version " + std::to_string(kInterfaceVersion);
    Fill information(const std::string& text) {
        return [=, this](const fs::path& plist) { folder.write(plist, text); };
    }
};

std::string entry(const std::string& key, const std::string& value) {
    return propertyList("<dict><key>" + key + "</key>" + value + "</dict>");
}

TEST_F(BadBundleTest, PlacesWithoutAnInformationFileAreRefused) {
    const std::string missing = "there is no Info.plist", notPlain = "Info.plist is no plain file";
    auto refuse = [this](const char* name, const std::string& reason, const Fill& fill) {
        expectRefused(name, "information: " + reason, fill);
    };
    refuse("nothing", missing, [](auto&) {});
    refuse("folder", notPlain, [](auto& plist) { fs::create_directories(plist); });
    refuse("pipe", notPlain, [](auto& plist) { mkfifo(plist.c_str(), 0600); });
    refuse("dangling", missing, [](auto& plist) { fs::create_symlink("/no/where", plist); });
    refuse("circle", "Info.plist: ", [](auto& plist) { fs::create_symlink("Info.plist", plist); });
    refuse("huge", "too large", [&](auto& plist) { fs::resize_file(folder.write(plist, ""), 17u << 20); });
    refuse("contents", missing, [&](auto& plist) {
        fs::remove_all(plist.parent_path());
        folder.write(plist.parent_path(), "x");
    });
}

TEST_F(BadBundleTest, InformationThatCannotBeUsedIsRefused) {
    int number = 0;
    auto expectTextRefused = [&](const std::string& text, const std::string& reason) {
        expectRefused("text" + std::to_string(number++), "information: " + reason, information(text));
    };
    expectTextRefused("bplist00\xD1", "Info.plist: at byte 9: ");
    expectTextRefused(propertyList("<dict>"), "Info.plist: line 2, column ");
    for (const char* list : {"<array/>", "<string>x</string>"})
        expectTextRefused(propertyList(list), "no dictionary");
    for (const std::string row :
         {"CFBundleIdentifier <integer>7</integer> is no text",
          "CFBundleIdentifier <string></string> is empty", "CFBundleExecutable <true/> is no text",
          "CFBundleExecutable <string></string> is empty",
          "CFBundleExecutable <string>../code.so</string> is no file name",
          "CFBundleExecutable <string>..</string> is no file name", "CFBundleName <dict/> is no text",
          "CFBundlePackageType <real>1.5</real> is no text", "NSPrincipalClass <false/> is no text",
          "CFBundleDevelopmentRegion <data>AAAA</data> is no text", "CFBundleVersion <array/> is no text"}) {
        const std::size_t value = row.find(' '), reason = row.find(" is ");
        const std::string key = row.substr(0, value);
        expectTextRefused(entry(key, row.substr(value, reason - value)),
                          key + " in Info.plist" + row.substr(reason));
    }
}

TEST_F(BadBundleTest, FilesThatAreNoCodeAreRefused) {
    const std::string sound = folder.read(testPlugInCode("Lamp"));
    auto changed = [&](std::size_t offset, char value) {
        return std::string(sound).replace(offset, 1, 1, value);
    };
    const std::string rows[][3] = {
        {"empty", "no ELF file", ""},
        {"script", "no ELF file", "#!/bin/sh\necho " + std::string(100, '-')},
        {"machine", "another kind of machine", changed(offsetof(Elf64_Ehdr, e_machine), EM_SPARC)},
        {"width", "another kind of machine", changed(EI_CLASS, sizeof(void*) == 8 ? ELFCLASS32 : ELFCLASS64)},
        {"order", "another kind of machine", changed(EI_DATA, ELFDATA2MSB)},
        {"relocatable", "no shared object", changed(offsetof(Elf64_Ehdr, e_type), ET_REL)},
        {"header", "cut off", sound.substr(0, sizeof(Elf64_Ehdr))},
        {"page", "cut off", sound.substr(0, 4096)},
    };
    for (const auto& [name, reason, code] : rows) expectCodeRefused(name, "executable: " + reason, code);
    Fill named = information(entry("CFBundleExecutable", "<string>code.so</string>"));
    expectRefused("missing", "executable: No such file", named);
    expectRefused("directory", "executable: no plain file", [&](const fs::path& plist) {
        named(plist);
        fs::create_directories(plist.parent_path() / "Linux/code.so");
    });
    // A file that counts as regular, and whose first bytes nobody can read.
    expectRefused("unreadable", "executable: cannot be read: Input/output error", [&](const fs::path& plist) {
        named(plist);
        fs::create_directories(plist.parent_path() / "Linux");
        fs::create_symlink("/proc/self/mem", plist.parent_path() / "Linux/code.so");
    });
}

TEST_F(BadBundleTest, FilesThatMayNotBeReadAreRefused) {
    if (geteuid() == 0) GTEST_SKIP() << "a superuser reads them whatever their mode";
    auto withheld = [this](const fs::path& file) {
        return [=, this](const fs::path& plist) {
            bundleWithCode(plist.parent_path().parent_path(), "x");
            fs::permissions(plist.parent_path() / file, fs::perms::none);
        };
    };
    expectRefused("unreadable", "information: Info.plist", withheld("Info.plist"));
    expectRefused("closed", "information: Info.plist: ", withheld(""));
    expectRefused("withheld", "executable: Permission denied", withheld("Linux/code.so"));
    fs::permissions(folder.path() / "closed.bundle/Contents", fs::perms::owner_all);
}

TEST_F(BadBundleTest, CodeThatFailsIsRefused) {
    const std::pair<std::string, std::string> rows[] = {
        {"UndefinedSymbol", "code: functionThatNobodyHas"},
        {"NoFunction", "registration: pelvorPlugInLibrary"},
        {"RaisingFunction", "registration: not at home"},
        {"NoLibrary", "registration: returns null"},
        {"RaisingTable", "registration: no methods today"},
        {"ZeroedRecord", "interface: no library record of this platform"},
        {"ForeignRecord", "interface: no library record of this platform"},
        {"OtherInterface",
         "interface: the code was built with interface version 4711, this process has " + own},
        {kConstructorsMayRaise ? "RaisingConstructor" : "", "code: no lamp oil"},
    };
    for (const auto& [name, reason] : rows)
        if (!name.empty()) expectCodeRefused(name, reason, folder.read(testPlugInCode(name)));
    std::string unlinked = folder.read(testPlugInCode("Lamp")), needed = "libstdc++.so.6";
    for (std::size_t at = 0; (at = unlinked.find(needed, at)) != std::string::npos;)
        unlinked.replace(at, needed.size(), "libxxxx++.so.6");
    expectCodeRefused("unlinked", "code: libxxxx++.so.6", unlinked);
}

TEST_F(BadBundleTest, CodeOfAnotherInterfaceIsRefusedBeforeItsConstructorsRun) {
    // Its constructor would raise, which is a fault of the stage "code".
    const std::pair<std::string, std::string> rows[] = {
        {"", "PelvorInterfaceVersion is missing in Info.plist; this process has " + own},
        {"= 4711;", "the code was built with interface version 4711, this process has " + own},
        {"= ();", "this process has " + own},
    };
    for (const auto& [version, reason] : rows)
        expectRefused(
            "version" + version, "interface: " + reason, [&, version = version](const fs::path& plist) {
                folder.write(plist.parent_path() / "Linux/code.so",
                             folder.read(testPlugInCode("RaisingConstructor")));
                folder.write(plist, "CFBundleExecutable = code.so;" +
                                        (version.empty() ? "" : "PelvorInterfaceVersion" + version));
            });
}

TEST_F(BadBundleTest, WhatIsLoadedAlreadyIsRefusedUnderAnotherPath) {
    EXPECT_TRUE(bundleAt(folder.makeBundle("First.bundle", {{"CFBundleIdentifier", "test.twice"}}))->load());
    expectRefused("duplicate", "identifier: First.bundle",
                  information(entry("CFBundleIdentifier", "<string>test.twice</string>")));
    EXPECT_TRUE(bundleAt(testPlugIn("Lamp"))->load());
    expectRefused("loaded", "registration: is registered already", [&](const fs::path& plist) {
        const fs::path bundle = plist.parent_path().parent_path();
        fs::remove(bundleWithCode(bundle, "") / "Contents/Linux/code.so");
        fs::create_symlink(testPlugInCode("Lamp"), bundle / "Contents/Linux/code.so");
    });
}

}  // namespace
