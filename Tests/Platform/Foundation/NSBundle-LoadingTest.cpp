// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>
#include <elf.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <future>
#include <map>
#include <thread>

#include "BundleTestSupport.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSBundle.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSRuntimeNames.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Runtime/Registry.h"
#include "Sanitizers.h"

namespace pelvor::testing {

extern Library bundleLoadingTestLibrary;

/// Hears of loaded bundles.
class LoadWatcher : public NSObject {
    PELVOR_CLASS(LoadWatcher, NSObject);

  public:
    std::vector<Retained<NSNotification>> heard;
    std::function<void()> reaction;

    void bundleDidLoad(NSNotification* notification) {
        heard.push_back(Retained<NSNotification>::retaining(notification));
        if (reaction) reaction();
    }

  protected:
    LoadWatcher() {
        NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
            this, "bundleDidLoad:"_sel, NSBundleDidLoadNotification, nullptr);
    }
    ~LoadWatcher() { NSNotificationCenter::defaultCenter()->removeObserver(this); }
};

namespace {

constexpr Library* kDependencies[] = {&foundationLibrary};
constexpr Class* kClasses[] = {&LoadWatcher::classRecord};

}  // namespace

constinit Library bundleLoadingTestLibrary{"BundleLoadingTest", kDependencies, kClasses, {}};

PELVOR_DEFINE_CLASS(LoadWatcher, bundleLoadingTestLibrary) {
    methods.instance<"bundleDidLoad:", &LoadWatcher::bundleDidLoad>();
}

namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class NSBundleLoadingTest : public ::testing::Test {
  protected:
    /// A bundle whose code is a copy of that plug-in's.
    fs::path copyOf(const std::string& plugIn, const fs::path& name) {
        return bundleWithCode(name, contentOf(testPlugInCode(plugIn)));
    }
    fs::path bundleWithCode(const fs::path& name, const std::string& code) {
        fs::path path = bundle(name);
        folder.write(path / "Contents/Linux/code.so", code);
        return path;
    }
    fs::path bundle(const fs::path& name) {
        return folder.makeBundle(
            name, {{"CFBundleIdentifier", "test." + name.string()}, {"CFBundleExecutable", "code.so"}});
    }
    fs::path bundleWithInformation(const fs::path& name, const std::string& information) {
        folder.write(name / "Contents/Info.plist", information);
        return folder.path() / name;
    }

    AutoreleasePool pool;
    BundleFolder folder;
    LogLines log;
};

TEST_F(NSBundleLoadingTest, APlugInIsLoadedAnnouncedAndItsClassesAreItsOwn) {
    auto watcher = make<LoadWatcher>();
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
    ASSERT_EQ(watcher->heard.size(), 1u);
    EXPECT_EQ(watcher->heard[0]->object(), bundle);
    EXPECT_EQ(watcher->heard[0]->userInfo()->objectForKey(NSLoadedClasses)->description()->toUTF8(),
              NSArray::of({u"Lamp"_ns, u"FloorLamp"_ns})->description()->toUTF8());
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(NSBundleLoadingTest, ABundleOfDataAloneIsAnnouncedToo) {
    auto watcher = make<LoadWatcher>();
    auto* bundle = bundleAt(folder.makeBundle("Data.bundle", {{"CFBundleIdentifier", "test.data"}}));
    EXPECT_TRUE(bundle->load() && bundle->isLoaded());
    ASSERT_EQ(watcher->heard.size(), 1u);
    EXPECT_EQ(watcher->heard[0]->object(), bundle);
    EXPECT_EQ(bundle->principalClass(), nullptr);
}

TEST_F(NSBundleLoadingTest, WhatAnObserverRaisesDoesNotUndoALoad) {
    auto watcher = make<LoadWatcher>();
    watcher->reaction = [] { throw NSException("Bad", "mood"); };
    auto* bundle = bundleAt(folder.makeBundle("Data.bundle", {}));
    EXPECT_TRUE(bundle->load() && bundle->isLoaded());
    EXPECT_THAT(log.lines, ElementsAre(AllOf(HasSubstr("Data.bundle"), HasSubstr("mood"))));
}

TEST_F(NSBundleLoadingTest, AnObserverMayLoadAnotherBundle) {
    auto watcher = make<LoadWatcher>();
    auto* inner = bundleAt(folder.makeBundle("Inner.bundle", {}));
    watcher->reaction = [&] { EXPECT_TRUE(inner->load()); };
    EXPECT_TRUE(bundleAt(folder.makeBundle("Outer.bundle", {}))->load());
    EXPECT_EQ(watcher->heard.size(), 2u);
}

TEST_F(NSBundleLoadingTest, ThreadsThatLoadOneBundleLoadItOnce) {
    auto watcher = make<LoadWatcher>();
    auto* bundle = bundleAt(folder.makeBundle("Shared.bundle", {}));
    std::vector<std::thread> threads;
    std::atomic<int> loaded{0};
    for (int t = 0; t < 4; ++t) threads.emplace_back([&] { loaded += bundle->load(); });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(loaded, 4);
    EXPECT_EQ(watcher->heard.size(), 1u);
}

TEST_F(NSBundleLoadingTest, AMendedBundleLoads) {
    auto* bundle = bundleAt(bundleWithInformation("Mended.bundle", "nonsense"));
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
    EXPECT_FALSE(bundleAt(copyOf("RaisingConstructor", "Raising.bundle"))->load());
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

// One way in which a bundle is bad, and what the log has to say about it.
struct BadBundle {
    const char* name;
    std::function<fs::path(const fs::path& name)> make;
    const char* stage;
    const char* reason;
};

std::string entry(const std::string& key, const std::string& value) {
    return propertyList("<dict><key>" + key + "</key>" + value + "</dict>");
}

std::string nested(int depth) {
    std::string text;
    for (int i = 0; i < depth; ++i) text += "<array>";
    for (int i = 0; i < depth; ++i) text += "</array>";
    return text;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size())
        text.replace(at, from.size(), to);
    return text;
}

class BadBundleTest : public NSBundleLoadingTest {
  protected:
    std::vector<BadBundle> informationRows();
    std::vector<BadBundle> executableRows();
    std::vector<BadBundle> codeRows();
    void expectRefused(const std::vector<BadBundle>& rows);

    BadBundle text(const char* name, const std::string& information, const char* reason) {
        return {name, [=, this](const fs::path& file) { return bundleWithInformation(file, information); },
                "information", reason};
    }
    BadBundle code(const char* name, const std::string& content, const char* reason) {
        return {name, [=, this](const fs::path& file) { return bundleWithCode(file, content); }, "executable",
                reason};
    }
    // The file, which a superuser could read whatever its mode, is left out for one.
    static void withhold(const fs::path& file) { fs::permissions(file, fs::perms::none); }
};

std::vector<BadBundle> BadBundleTest::informationRows() {
    auto information = [this](const fs::path& file) { return folder.path() / file / "Contents/Info.plist"; };
    auto prepared = [=, this](auto prepare) {
        return [=, this](const fs::path& file) {
            fs::create_directories(information(file).parent_path());
            prepare(information(file));
            return folder.path() / file;
        };
    };
    std::vector<BadBundle> rows = {
        {"nothing", prepared([](const fs::path&) {}), "information", "there is no Info.plist"},
        {"folder", prepared([](const fs::path& file) { fs::create_directories(file); }), "information",
         "no plain file"},
        {"pipe", prepared([](const fs::path& file) { mkfifo(file.c_str(), 0600); }), "information",
         "no plain file"},
        {"dangling", prepared([](const fs::path& file) { fs::create_symlink("/no/where", file); }),
         "information", "there is no Info.plist"},
        {"circle", prepared([](const fs::path& file) { fs::create_symlink("Info.plist", file); }),
         "information", "Info.plist: "},
        {"huge",
         prepared([this](const fs::path& file) { fs::resize_file(folder.write(file, ""), 17u << 20); }),
         "information", "too large"},
        {"contents",
         [this](const fs::path& file) { return folder.write(file / "Contents", "x").parent_path(); },
         "information", "there is no Info.plist"},
        text("empty", "", "Info.plist: "),
        text("noise", std::string(1000, '\xA7'), "Info.plist: "),
        text("cutoff", entry("CFBundleName", "<string>x</string>").substr(0, 90), "Info.plist: "),
        text("cutbinary", "bplist00\xD1", "Info.plist: "),
        text("array", propertyList("<array/>"), "no dictionary"),
        text("text", propertyList("<string>x</string>"), "no dictionary"),
        text("deep", propertyList(nested(100'000)), "Info.plist: "),
        text("entities",
             "<!DOCTYPE plist [<!ENTITY a \"aaaa\"><!ENTITY b \"&a;&a;\">]>" +
                 propertyList("<string>&b;</string>"),
             "Info.plist: "),
        text("identifier", entry("CFBundleIdentifier", "<integer>7</integer>"), "CFBundleIdentifier"),
        text("identifiers", entry("CFBundleIdentifier", "<array><string>x</string></array>"),
             "CFBundleIdentifier"),
        text("noidentifier", entry("CFBundleIdentifier", "<string></string>"), "CFBundleIdentifier"),
        text("executable", entry("CFBundleExecutable", "<true/>"), "CFBundleExecutable"),
        text("noexecutable", entry("CFBundleExecutable", "<string></string>"), "CFBundleExecutable"),
        text("upwards", entry("CFBundleExecutable", "<string>../code.so</string>"), "no file name"),
        text("absolute", entry("CFBundleExecutable", "<string>/lib/code.so</string>"), "no file name"),
        text("parent", entry("CFBundleExecutable", "<string>..</string>"), "no file name"),
        text("name", entry("CFBundleName", "<dict/>"), "CFBundleName"),
        text("type", entry("CFBundlePackageType", "<real>1.5</real>"), "CFBundlePackageType"),
        text("region", entry("CFBundleDevelopmentRegion", "<data>AAAA</data>"), "CFBundleDevelopmentRegion"),
        text("version", entry("CFBundleVersion", "<integer>3</integer>"), "CFBundleVersion"),
        text("principal", entry("NSPrincipalClass", "<false/>"), "NSPrincipalClass"),
    };
    if (geteuid() != 0) {
        rows.push_back({"unreadable",
                        prepared([this](const fs::path& file) { withhold(folder.write(file, "x")); }),
                        "information", "Info.plist"});
        rows.push_back({"closed", prepared([](const fs::path& file) { withhold(file.parent_path()); }),
                        "information", "Info.plist: "});
    }
    return rows;
}

std::vector<BadBundle> BadBundleTest::executableRows() {
    const std::string sound = contentOf(testPlugInCode("Lamp"));
    auto changed = [&](std::size_t offset, char value) {
        std::string content = sound;
        content[offset] = value;
        return content;
    };
    std::vector<BadBundle> rows = {
        {"missing", [this](const fs::path& file) { return bundle(file); }, "executable", "No such file"},
        {"folder",
         [this](const fs::path& file) {
             fs::create_directories(bundle(file) / "Contents/Linux/code.so");
             return folder.path() / file;
         },
         "executable", "no plain file"},
        code("empty", "", "no ELF file"),
        code("script", "#!/bin/sh\necho hello, hello, hello, hello, hello, hello, hello, hello\n",
             "no ELF file"),
        code("machine", changed(offsetof(Elf64_Ehdr, e_machine), EM_SPARC), "another kind of machine"),
        code("width", changed(EI_CLASS, sizeof(void*) == 8 ? ELFCLASS32 : ELFCLASS64),
             "another kind of machine"),
        code("order", changed(EI_DATA, ELFDATA2MSB), "another kind of machine"),
        code("relocatable", changed(offsetof(Elf64_Ehdr, e_type), ET_REL), "no shared object"),
        code("header", sound.substr(0, sizeof(Elf64_Ehdr)), "cut off"),
        code("half", sound.substr(0, sound.size() / 2), "cut off"),
    };
    if (geteuid() != 0)
        rows.push_back({"unreadable",
                        [=, this](const fs::path& file) {
                            fs::path path = bundleWithCode(file, sound);
                            withhold(path / "Contents/Linux/code.so");
                            return path;
                        },
                        "executable", "Permission denied"});
    return rows;
}

std::vector<BadBundle> BadBundleTest::codeRows() {
    auto copied = [this](const char* plugIn) {
        return [=, this](const fs::path& file) { return copyOf(plugIn, file); };
    };
    std::vector<BadBundle> rows = {
        {"undefined", copied("UndefinedSymbol"), "code", "functionThatNobodyHas"},
        {"unlinked",
         [this](const fs::path& file) {
             return bundleWithCode(
                 file, replaced(contentOf(testPlugInCode("Lamp")), "libstdc++.so.6", "libxxxx++.so.6"));
         },
         "code", "libxxxx++.so.6"},
        {"nofunction", copied("NoFunction"), "registration", "pelvorPlugInLibrary"},
        {"raising", copied("RaisingFunction"), "registration", "not at home"},
        {"nolibrary", copied("NoLibrary"), "registration", "answers none"},
        {"nametaken", copied("NameTaken"), "registration", "NSBundle of Taken is already taken"},
        {"table", copied("RaisingTable"), "registration", "no methods today"},
        {"duplicate",
         [this](const fs::path& file) {
             EXPECT_TRUE(
                 bundleAt(folder.makeBundle("First.bundle", {{"CFBundleIdentifier", "test.twice"}}))->load());
             return folder.makeBundle(file, {{"CFBundleIdentifier", "test.twice"}});
         },
         "identifier", "First.bundle"},
        {"loaded",
         [this](const fs::path& file) {
             EXPECT_TRUE(bundleAt(testPlugIn("Lamp"))->load());
             fs::path path = bundle(file);
             fs::create_directories(path / "Contents/Linux");
             fs::create_symlink(testPlugInCode("Lamp"), path / "Contents/Linux/code.so");
             return path;
         },
         "registration", "is registered already"},
    };
    if (kConstructorsMayRaise)
        rows.push_back({"constructor", copied("RaisingConstructor"), "code", "no lamp oil"});
    return rows;
}

// Every bundle is refused with one line, twice, and leaves nothing behind; a sound one loads after each.
void BadBundleTest::expectRefused(const std::vector<BadBundle>& rows) {
    registerLibrary(foundationLibrary);
    for (const BadBundle& row : rows) {
        SCOPED_TRACE(row.name);
        std::string file = std::string(row.name) + ".bundle";
        fs::path path = row.make(file);
        auto watcher = make<LoadWatcher>();
        std::size_t classes = classList(nullptr, 0);
        auto* bundle = bundleAt(path);
        ASSERT_TRUE(bundle);
        for (int i = 0; i < 2; ++i) {
            log.lines.clear();
            EXPECT_FALSE(bundle->load());
            EXPECT_THAT(log.lines, ElementsAre(AllOf(HasSubstr(path.string() + ": " + row.stage + ": "),
                                                     HasSubstr(row.reason))));
        }
        EXPECT_FALSE(bundle->isLoaded());
        EXPECT_EQ(bundle->principalClass(), nullptr);
        EXPECT_EQ(classList(nullptr, 0), classes);
        EXPECT_THAT(watcher->heard, IsEmpty());
        EXPECT_TRUE(bundleAt(folder.makeBundle("Sound-" + file, {}))->load());
        std::error_code error;
        fs::permissions(path / "Contents", fs::perms::owner_all, error);
    }
}

TEST_F(BadBundleTest, InformationThatCannotBeUsedIsRefused) { expectRefused(informationRows()); }

TEST_F(BadBundleTest, FilesThatAreNoCodeAreRefused) { expectRefused(executableRows()); }

TEST_F(BadBundleTest, CodeThatFailsIsRefused) { expectRefused(codeRows()); }

}  // namespace
}  // namespace pelvor::testing
