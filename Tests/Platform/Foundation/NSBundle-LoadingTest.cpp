// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <elf.h>
#include <sys/stat.h>
#include <unistd.h>

#include <future>

#include "BundleTestSupport.h"
#include "Foundation/NSBundle.h"
#include "Foundation/NSRuntimeNames.h"
#include "Prelude.h"
#include "Sanitizers.h"

namespace pelvor::testing {

namespace {

class NSBundleLoadingTest : public ::testing::Test {
  protected:
    NSBundleLoadingTest() { registerLibrary(foundationLibrary); }

    fs::path bundleWithCode(const fs::path& bundle, const std::string& code) {
        folder.write(bundle / "Contents/Linux/code.so", code);
        return folder.makeBundle(bundle, {{"CFBundleIdentifier", "test." + bundle.filename().string()},
                                          {"CFBundleExecutable", "code.so"}});
    }

    BundleFolder folder;
    LogLines log;
    Retained<Listener> listener = Listener::to(NSBundleDidLoadNotification);
};

TEST_F(NSBundleLoadingTest, APlugInIsLoadedAnnouncedAndItsClassesAreItsOwn) {
    auto* bundle = bundleAt(testPlugIn("Lamp"));
    EXPECT_EQ(NSClassFromString(u"Lamp"_ns), nullptr);
    EXPECT_FALSE(bundle->isLoaded());
    ASSERT_TRUE(bundle->load());
    EXPECT_TRUE(bundle->isLoaded());

    Class* lamp = NSClassFromString(u"Lamp"_ns);
    ASSERT_TRUE(lamp);
    EXPECT_EQ(send<int>(send<id>(lamp, "new"_sel), "watts"_sel), 60);
    EXPECT_EQ(send<int>(u"abc"_ns, "lampCount"_sel), 3);
    EXPECT_EQ(NSBundle::bundleForClass(lamp), bundle);
    EXPECT_EQ(bundle->principalClass(), lamp);
    EXPECT_EQ(bundle->classNamed(u"FloorLamp"_ns), NSClassFromString(u"FloorLamp"_ns));
    EXPECT_EQ(bundle->classNamed(u"NSString"_ns), nullptr);

    EXPECT_TRUE(bundle->load());  // no second time
    ASSERT_EQ(listener->heard.size(), 1u);
    EXPECT_EQ(listener->heard[0]->object(), bundle);
    EXPECT_EQ(listener->heard[0]->userInfo()->objectForKey(NSLoadedClasses)->description()->toUTF8(),
              NSArray::of({u"Lamp"_ns, u"FloorLamp"_ns})->description()->toUTF8());
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(NSBundleLoadingTest, WhatAnObserverRaisesDoesNotUndoALoad) {
    listener->reaction = [] { throw NSException("Bad", "mood"); };
    auto* bundle = bundleAt(folder.makeBundle("Data.bundle", {}));
    EXPECT_TRUE(bundle->load() && bundle->isLoaded());
    EXPECT_THAT(log.lines, ElementsAre(AllOf(HasSubstr("Data.bundle"), HasSubstr("mood"))));
}

TEST_F(NSBundleLoadingTest, AnObserverMayLoadAnotherBundle) {
    auto* inner = bundleAt(folder.makeBundle("Inner.bundle", {}));
    listener->reaction = [&] { EXPECT_TRUE(inner->load()); };
    EXPECT_TRUE(bundleAt(folder.makeBundle("Outer.bundle", {}))->load());
    EXPECT_EQ(listener->heard.size(), 2u);
}

TEST_F(NSBundleLoadingTest, ThreadsThatLoadOneBundleOfDataAnnounceItOnce) {
    auto* bundle = bundleAt(folder.makeBundle("Data.bundle", {{"CFBundleIdentifier", "test.data"}}));
    std::atomic<int> loaded{0};
    onThreads(4, [&](int) { loaded += bundle->load() && bundle->isLoaded(); });
    EXPECT_EQ(loaded, 4);
    ASSERT_EQ(listener->heard.size(), 1u);
    EXPECT_EQ(listener->heard[0]->object(), bundle);
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
    EXPECT_EQ(reason, nullptr);
    EXPECT_EQ(bundle->bundleIdentifier()->toUTF8(), "test.mended");
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
    using Fill = std::function<void(const fs::path& contents)>;

    // A bundle filled like that is refused with one line, twice, and leaves nothing behind; a sound one loads
    // after it.
    void expectRefused(const std::string& name, const std::string& stage, const std::string& reason,
                       const Fill& fill) {
        SCOPED_TRACE(name);
        fs::path path = folder.path() / (name + ".bundle");
        fs::create_directories(path / "Contents/Linux");
        fill(path / "Contents");
        listener->heard.clear();
        std::size_t classes = classList(nullptr, 0);
        auto* bundle = bundleAt(path);
        ASSERT_TRUE(bundle);
        for (int i = 0; i < 2; ++i) {
            log.lines.clear();
            EXPECT_FALSE(bundle->load());
            EXPECT_THAT(log.lines, ElementsAre(AllOf(HasSubstr(path.string() + ": " + stage + ": "),
                                                     HasSubstr(reason))));
        }
        EXPECT_FALSE(bundle->isLoaded());
        EXPECT_EQ(bundle->principalClass(), nullptr);
        EXPECT_EQ(classList(nullptr, 0), classes);
        EXPECT_THAT(listener->heard, IsEmpty());
        EXPECT_TRUE(bundleAt(folder.makeBundle("Sound-" + name + ".bundle", {}))->load());
    }
    void expectCodeRefused(const std::string& name, const std::string& stage, const std::string& reason,
                           const std::string& code) {
        expectRefused(name, stage, reason,
                      [&](const fs::path& contents) { bundleWithCode(contents.parent_path(), code); });
    }
    Fill information(const std::string& text) {
        return [=, this](const fs::path& contents) { folder.write(contents / "Info.plist", text); };
    }
};

std::string entry(const std::string& key, const std::string& value) {
    return propertyList("<dict><key>" + key + "</key>" + value + "</dict>");
}

std::string repeated(const std::string& text, int count) {
    std::string result;
    while (count-- > 0) result += text;
    return result;
}

TEST_F(BadBundleTest, PlacesWithoutAnInformationFileAreRefused) {
    const struct {
        const char* name;
        const char* reason;
        Fill fill;
    } rows[] = {
        {"nothing", "there is no Info.plist", [](auto&) {}},
        {"folder", "no plain file", [](auto& in) { fs::create_directories(in / "Info.plist"); }},
        {"pipe", "no plain file", [](auto& in) { mkfifo((in / "Info.plist").c_str(), 0600); }},
        {"dangling", "there is no Info.plist",
         [](auto& in) { fs::create_symlink("/no/where", in / "Info.plist"); }},
        {"circle", "Info.plist: ", [](auto& in) { fs::create_symlink("Info.plist", in / "Info.plist"); }},
        {"huge", "too large",
         [&](auto& in) { fs::resize_file(folder.write(in / "Info.plist", ""), 17u << 20); }},
        {"contents", "there is no Info.plist",
         [&](auto& in) {
             fs::remove_all(in);
             folder.write(in, "x");
         }},
    };
    for (const auto& [name, reason, fill] : rows) expectRefused(name, "information", reason, fill);
}

TEST_F(BadBundleTest, InformationThatCannotBeUsedIsRefused) {
    const std::pair<std::string, const char*> texts[] = {
        {"", "Info.plist: "},
        {std::string(1000, '\xA7'), "Info.plist: "},
        {entry("CFBundleName", "<string>x</string>").substr(0, 90), "Info.plist: "},
        {"bplist00\xD1", "Info.plist: "},
        {propertyList("<array/>"), "no dictionary"},
        {propertyList("<string>x</string>"), "no dictionary"},
        {propertyList(repeated("<array>", 100'000) + repeated("</array>", 100'000)), "Info.plist: "},
        {"<!DOCTYPE plist [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]>" +
             propertyList("<string>&b;</string>"),
         "Info.plist: "},
        {entry("CFBundleIdentifier", "<integer>7</integer>"), "CFBundleIdentifier"},
        {entry("CFBundleIdentifier", "<array><string>x</string></array>"), "CFBundleIdentifier"},
        {entry("CFBundleIdentifier", "<string></string>"), "CFBundleIdentifier"},
        {entry("CFBundleExecutable", "<true/>"), "CFBundleExecutable"},
        {entry("CFBundleExecutable", "<string></string>"), "CFBundleExecutable"},
        {entry("CFBundleExecutable", "<string>../code.so</string>"), "no file name"},
        {entry("CFBundleExecutable", "<string>/lib/code.so</string>"), "no file name"},
        {entry("CFBundleExecutable", "<string>..</string>"), "no file name"},
        {entry("CFBundleName", "<dict/>"), "CFBundleName"},
        {entry("CFBundlePackageType", "<real>1.5</real>"), "CFBundlePackageType"},
        {entry("CFBundleDevelopmentRegion", "<data>AAAA</data>"), "CFBundleDevelopmentRegion"},
        {entry("CFBundleVersion", "<integer>3</integer>"), "CFBundleVersion"},
        {entry("NSPrincipalClass", "<false/>"), "NSPrincipalClass"},
    };
    int number = 0;
    for (const auto& [text, reason] : texts)
        expectRefused("text" + std::to_string(number++), "information", reason, information(text));
}

TEST_F(BadBundleTest, FilesThatAreNoCodeAreRefused) {
    const std::string sound = contentOf(testPlugInCode("Lamp"));
    auto changed = [&](std::size_t offset, char value) {
        std::string content = sound;
        content[offset] = value;
        return content;
    };
    const struct {
        const char* name;
        const char* reason;
        std::string code;
    } rows[] = {
        {"empty", "no ELF file", ""},
        {"script", "no ELF file", "#!/bin/sh\necho " + std::string(100, '-')},
        {"machine", "another kind of machine", changed(offsetof(Elf64_Ehdr, e_machine), EM_SPARC)},
        {"width", "another kind of machine", changed(EI_CLASS, sizeof(void*) == 8 ? ELFCLASS32 : ELFCLASS64)},
        {"order", "another kind of machine", changed(EI_DATA, ELFDATA2MSB)},
        {"relocatable", "no shared object", changed(offsetof(Elf64_Ehdr, e_type), ET_REL)},
        {"header", "cut off", sound.substr(0, sizeof(Elf64_Ehdr))},
        {"page", "cut off", sound.substr(0, 4096)},
    };
    for (const auto& row : rows) expectCodeRefused(row.name, "executable", row.reason, row.code);
    const std::string information_ = entry("CFBundleExecutable", "<string>code.so</string>");
    expectRefused("missing", "executable", "No such file", information(information_));
    expectRefused("directory", "executable", "no plain file", [&](const fs::path& contents) {
        information(information_)(contents);
        fs::create_directories(contents / "Linux/code.so");
    });
}

TEST_F(BadBundleTest, FilesThatMayNotBeReadAreRefused) {
    if (geteuid() == 0) GTEST_SKIP() << "a superuser reads them whatever their mode";
    auto withheld = [this](const fs::path& file) {
        return [=, this](const fs::path& contents) {
            bundleWithCode(contents.parent_path(), "x");
            fs::permissions(contents / file, fs::perms::none);
        };
    };
    expectRefused("unreadable", "information", "Info.plist", withheld("Info.plist"));
    expectRefused("closed", "information", "Info.plist: ", withheld(""));
    expectRefused("withheld", "executable", "Permission denied", withheld("Linux/code.so"));
    fs::permissions(folder.path() / "closed.bundle/Contents", fs::perms::owner_all);
}

TEST_F(BadBundleTest, CodeThatFailsIsRefused) {
    const struct {
        const char* plugIn;
        const char* stage;
        const char* reason;
    } rows[] = {
        {"UndefinedSymbol", "code", "functionThatNobodyHas"},
        {"NoFunction", "registration", "pelvorPlugInLibrary"},
        {"RaisingFunction", "registration", "not at home"},
        {"NoLibrary", "registration", "answers none"},
        {"NameTaken", "registration", "NSBundle of Taken is already taken"},
        {"RaisingTable", "registration", "no methods today"},
        {"RaisingConstructor", "code", "no lamp oil"},
    };
    for (auto [plugIn, stage, reason] : rows)
        if (kConstructorsMayRaise || plugIn != std::string("RaisingConstructor"))
            expectCodeRefused(plugIn, stage, reason, contentOf(testPlugInCode(plugIn)));
    std::string unlinked = contentOf(testPlugInCode("Lamp")), needed = "libstdc++.so.6";
    for (std::size_t at = 0; (at = unlinked.find(needed, at)) != std::string::npos;)
        unlinked.replace(at, needed.size(), "libxxxx++.so.6");
    expectCodeRefused("unlinked", "code", "libxxxx++.so.6", unlinked);
}

TEST_F(BadBundleTest, WhatIsLoadedAlreadyIsRefusedUnderAnotherPath) {
    EXPECT_TRUE(bundleAt(folder.makeBundle("First.bundle", {{"CFBundleIdentifier", "test.twice"}}))->load());
    expectRefused("duplicate", "identifier", "First.bundle",
                  information(entry("CFBundleIdentifier", "<string>test.twice</string>")));
    EXPECT_TRUE(bundleAt(testPlugIn("Lamp"))->load());
    expectRefused("loaded", "registration", "is registered already", [&](const fs::path& contents) {
        information(entry("CFBundleExecutable", "<string>code.so</string>"))(contents);
        fs::create_symlink(testPlugInCode("Lamp"), contents / "Linux/code.so");
    });
}

}  // namespace
}  // namespace pelvor::testing
