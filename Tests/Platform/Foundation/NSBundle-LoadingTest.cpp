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
    NSBundle* dataBundle(const std::string& name) {
        return bundleAt(folder.makeBundle(name + ".bundle", {}));
    }
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
    auto* bundle = bundleAt(folder.write("Mended.bundle/Contents/Info.plist", "nonsense") / "../..");
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
    EXPECT_FALSE(
        bundleAt(bundleWithCode("Raising.bundle", contentOf(testPlugInCode("RaisingConstructor"))))->load());
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
    Fill information(const std::string& text) {
        return [=, this](const fs::path& plist) { folder.write(plist, text); };
    }
};

std::string entry(const std::string& key, const std::string& value) {
    return propertyList("<dict><key>" + key + "</key>" + value + "</dict>");
}

TEST_F(BadBundleTest, PlacesWithoutAnInformationFileAreRefused) {
    expectRefused("nothing", "information: there is no Info.plist", [](auto&) {});
    expectRefused("folder", "information: no plain file", [](auto& plist) { fs::create_directories(plist); });
    expectRefused("pipe", "information: no plain file", [](auto& plist) { mkfifo(plist.c_str(), 0600); });
    expectRefused("dangling", "information: there is no Info.plist",
                  [](auto& plist) { fs::create_symlink("/no/where", plist); });
    expectRefused("circle",
                  "information: Info.plist: ", [](auto& plist) { fs::create_symlink("Info.plist", plist); });
    expectRefused("huge", "information: too large",
                  [&](auto& plist) { fs::resize_file(folder.write(plist, ""), 17u << 20); });
    expectRefused("contents", "information: there is no Info.plist", [&](auto& plist) {
        fs::remove_all(plist.parent_path());
        folder.write(plist.parent_path(), "x");
    });
}

TEST_F(BadBundleTest, InformationThatCannotBeUsedIsRefused) {
    int number = 0;
    auto expectTextsRefused = [&](const std::string& reason, std::initializer_list<std::string> texts) {
        for (const std::string& text : texts)
            expectRefused("text" + std::to_string(number++), "information: " + reason, information(text));
    };
    auto expectValuesRefused = [&](const std::string& key, const std::string& reason,
                                   std::initializer_list<const char*> values) {
        for (const char* value : values) expectTextsRefused(reason, {entry(key, value)});
    };
    const std::string entities = "<!DOCTYPE plist [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]>";
    expectTextsRefused(
        "Info.plist: ",
        {"", std::string(1000, '\xA7'), entry("CFBundleName", "<string>x</string>").substr(0, 90),
         "bplist00\xD1", propertyList(repeated("<array>", 100'000) + repeated("</array>", 100'000)),
         entities + propertyList("<string>&b;</string>")});
    expectTextsRefused("no dictionary", {propertyList("<array/>"), propertyList("<string>x</string>")});
    expectValuesRefused("CFBundleIdentifier", "CFBundleIdentifier",
                        {"<integer>7</integer>", "<array><string>x</string></array>", "<string></string>"});
    expectValuesRefused("CFBundleExecutable", "CFBundleExecutable", {"<true/>", "<string></string>"});
    expectValuesRefused(
        "CFBundleExecutable", "no file name",
        {"<string>../code.so</string>", "<string>/lib/code.so</string>", "<string>..</string>"});
    expectValuesRefused("CFBundleName", "CFBundleName", {"<dict/>"});
    expectValuesRefused("CFBundlePackageType", "CFBundlePackageType", {"<real>1.5</real>"});
    expectValuesRefused("CFBundleDevelopmentRegion", "CFBundleDevelopmentRegion", {"<data>AAAA</data>"});
    expectValuesRefused("CFBundleVersion", "CFBundleVersion", {"<integer>3</integer>"});
    expectValuesRefused("NSPrincipalClass", "NSPrincipalClass", {"<false/>"});
}

TEST_F(BadBundleTest, FilesThatAreNoCodeAreRefused) {
    const std::string sound = contentOf(testPlugInCode("Lamp")),
                      otherMachine = "executable: another kind of machine";
    auto changed = [&](std::size_t offset, char value) {
        return std::string(sound).replace(offset, 1, 1, value);
    };
    expectCodeRefused("empty", "executable: no ELF file", "");
    expectCodeRefused("script", "executable: no ELF file", "#!/bin/sh\necho " + std::string(100, '-'));
    expectCodeRefused("machine", otherMachine, changed(offsetof(Elf64_Ehdr, e_machine), EM_SPARC));
    expectCodeRefused("width", otherMachine, changed(EI_CLASS, sizeof(void*) == 8 ? ELFCLASS32 : ELFCLASS64));
    expectCodeRefused("order", otherMachine, changed(EI_DATA, ELFDATA2MSB));
    expectCodeRefused("relocatable", "executable: no shared object",
                      changed(offsetof(Elf64_Ehdr, e_type), ET_REL));
    expectCodeRefused("header", "executable: cut off", sound.substr(0, sizeof(Elf64_Ehdr)));
    expectCodeRefused("page", "executable: cut off", sound.substr(0, 4096));
    Fill named = information(entry("CFBundleExecutable", "<string>code.so</string>"));
    expectRefused("missing", "executable: No such file", named);
    expectRefused("directory", "executable: no plain file", [&](const fs::path& plist) {
        named(plist);
        fs::create_directories(plist.parent_path() / "Linux/code.so");
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
    auto expectPlugInRefused = [this](const char* name, const std::string& reason) {
        expectCodeRefused(name, reason, contentOf(testPlugInCode(name)));
    };
    expectPlugInRefused("UndefinedSymbol", "code: functionThatNobodyHas");
    expectPlugInRefused("NoFunction", "registration: pelvorPlugInLibrary");
    expectPlugInRefused("RaisingFunction", "registration: not at home");
    expectPlugInRefused("NoLibrary", "registration: returns null");
    expectPlugInRefused("NameTaken",
                        "registration: the class NSBundle of the library Taken is refused: the library "
                        "Foundation has a class of that name");
    expectPlugInRefused("RaisingTable", "registration: no methods today");
    expectPlugInRefused("ZeroedRecord", "interface: no library record of this platform");
    expectPlugInRefused("ForeignRecord", "interface: no library record of this platform");
    expectPlugInRefused("OtherInterface",
                        "interface: the code was built with interface version 4711, this process has "
                        "interface version " +
                            std::to_string(kInterfaceVersion));
    if (kConstructorsMayRaise) expectPlugInRefused("RaisingConstructor", "code: no lamp oil");
    std::string unlinked = contentOf(testPlugInCode("Lamp")), needed = "libstdc++.so.6";
    for (std::size_t at = 0; (at = unlinked.find(needed, at)) != std::string::npos;)
        unlinked.replace(at, needed.size(), "libxxxx++.so.6");
    expectCodeRefused("unlinked", "code: libxxxx++.so.6", unlinked);
}

TEST_F(BadBundleTest, CodeOfAnotherInterfaceIsRefusedBeforeItsConstructorsRun) {
    // Its constructor would raise, which is a fault of the stage "code".
    auto refuse = [this](const std::string& name, const std::string& version, const std::string& reason) {
        const std::string entries = "<key>CFBundleExecutable</key><string>code.so</string>" + version;
        expectRefused(name, "interface: " + reason, [&](const fs::path& plist) {
            folder.write(plist.parent_path() / "Linux/code.so",
                         contentOf(testPlugInCode("RaisingConstructor")));
            folder.write(plist, propertyList("<dict>" + entries + "</dict>"));
        });
    };
    const std::string key = "<key>PelvorInterfaceVersion</key>", own = std::to_string(kInterfaceVersion);
    refuse("silent", "", "PelvorInterfaceVersion is missing in Info.plist");
    refuse("newer", key + "<string>4711</string>",
           "the code was built with interface version 4711, this process has interface version " + own);
    refuse("number", key + "<integer>4711</integer>", "interface version 4711");
    refuse("odd", key + "<array/>", "this process has interface version " + own);
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
