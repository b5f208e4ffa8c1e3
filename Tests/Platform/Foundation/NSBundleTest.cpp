// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSBundle.h"

#include "BundleTestSupport.h"
#include "Foundation/NSPathStore2.h"
#include "Foundation/NSThread.h"

namespace {

// Paths relative to the folder.
std::string names(NSArray* paths, const fs::path& folder) {
    std::vector<std::string> names;
    for (id path : paths) names.push_back(fs::path(shown(path)).lexically_relative(folder));
    return joined(names);
}

class NSBundleTest : public ::testing::Test {
  protected:
    BundleFolder folder;
};

TEST_F(NSBundleTest, APlainProgramHasItsFolderAsTheMainBundleAndItsClassesAreIn) {
    auto* main = NSBundle::mainBundle();
    fs::path program = fs::canonical("/proc/self/exe");
    EXPECT_EQ(shown(main->bundlePath()), program.parent_path());
    EXPECT_EQ(shown(main->executablePath()), program);
    EXPECT_EQ(shown(main->infoDictionary()->count(), main->bundleIdentifier()), "0 (null)");
    EXPECT_TRUE(main->isLoaded() && main->load());
    EXPECT_EQ(NSBundle::allBundles()->objectAtIndex(0), main);
    EXPECT_EQ(bundleAt(program.parent_path()), main);
    Class* made = Class::createSubclass("MadeForBundles", NSObject::classObject());
    for (Class* cls : {NSBundle::classObject(), made}) EXPECT_EQ(NSBundle::bundleForClass(cls), main);
    EXPECT_EQ(NSBundle::bundleForClass(nullptr), nullptr);
    EXPECT_EQ(main->classNamed(u"NSBundle"_ns), NSBundle::classObject());
    EXPECT_EQ(main->classNamed(u"NoSuchClass"_ns), nullptr);
}

TEST_F(NSBundleTest, AFolderHasOneBundleWhateverItIsCalled) {
    fs::path path = folder.makeBundle("A.bundle");
    auto* bundle = bundleAt(path);
    fs::create_symlink(path, folder.path() / "Link.bundle");
    for (fs::path alias : {folder.path() / "Link.bundle", path / "", path / "Contents/.."})
        EXPECT_EQ(bundleAt(alias), bundle) << alias;
    EXPECT_EQ(NSBundle::initWithPath(stringOf(path)).get(), bundle);
    EXPECT_EQ(shown(bundle ? bundle->bundlePath() : nullptr), path);
    for (fs::path none : {folder.path() / "None.bundle", path / "Contents/Info.plist", fs::path()})
        EXPECT_EQ(bundleAt(none), nullptr) << none;
    EXPECT_EQ(NSBundle::bundleWithPath(nullptr), nullptr);
    // A folder without Contents is a bundle as well.
    folder.write("Flat/Info.plist", "{ CFBundleIdentifier = flat; }");
    const std::string picture = folder.write("Flat/picture.png", "");
    bundle = bundleAt(folder.path() / "Flat");
    EXPECT_EQ(shown(bundle->bundleIdentifier(), bundle->pathForResource_ofType(u"picture"_ns, u"png"_ns)),
              "flat " + picture);
}

TEST_F(NSBundleTest, BundlesAreListedInTheOrderInWhichTheyWereAskedFor) {
    const NSUInteger bundlesBefore = NSBundle::allBundles()->count(),
                     frameworksBefore = NSBundle::allFrameworks()->count();
    auto added = [](NSArray* list, NSUInteger before) {
        return list->subarrayWithRange({before, list->count() - before});
    };
    auto made = [this](const char* name, const char* identifier) {
        return bundleAt(folder.makeBundle(name, {{"CFBundleIdentifier", identifier}}));
    };
    auto *b = made("B.bundle", "test.list.b"), *f = made("F.framework", "test.list.f"),
         *a = made("A.bundle", "test.list.a");
    fs::create_directories(folder.path() / "Plain");
    auto* registered = NSBundle::registerFramework(stringOf(folder.path() / "Plain"));
    EXPECT_TRUE(added(NSBundle::allBundles(), bundlesBefore)->isEqual(NSArray::of({b, a})));
    EXPECT_TRUE(added(NSBundle::allFrameworks(), frameworksBefore)->isEqual(NSArray::of({f, registered})));
    EXPECT_EQ(NSBundle::bundleWithIdentifier(u"test.list.a"_ns), a);
    EXPECT_EQ(NSBundle::bundleWithIdentifier(u"test.list.f"_ns), f);
    EXPECT_EQ(NSBundle::bundleWithIdentifier(u"x"_ns), nullptr);
    EXPECT_EQ(NSBundle::registerFramework(u"/no/such/folder"_ns), nullptr);
}

TEST_F(NSBundleTest, AFolderOfBundlesIsReadInTheOrderOfNames) {
    for (const char* name : {"b.bundle", "a.bundle", "C.bundle", "other.folder"}) folder.makeBundle(name, {});
    folder.write("file.bundle", "");
    LogLines log;
    std::vector<std::string> found;
    for (id bundle : NSBundle::bundlesInDirectory(stringOf(folder.path())))
        found.push_back(fs::path(shown(static_cast<NSBundle*>(bundle)->bundlePath())).filename());
    EXPECT_EQ(joined(found), "C.bundle, a.bundle, b.bundle");
    for (NSString* none : {u"/no/such/folder"_ns, static_cast<NSString*>(nullptr)})
        EXPECT_EQ(NSBundle::bundlesInDirectory(none)->count(), 0u);
    EXPECT_THAT(log.lines, IsEmpty());
    EXPECT_EQ(NSBundle::bundlesInDirectory(stringOf(folder.path() / "file.bundle"))->count(), 0u);
    EXPECT_EQ(log.lines.size(), 1u);
}

TEST_F(NSBundleTest, InformationIsReadFromTheFolder) {
    fs::path path = folder.makeBundle(
        "A.bundle", {{"CFBundleIdentifier", "test.A"}, {"CFBundleExecutable", "A.so"}, {"Colour", "red"}});
    folder.write("A.bundle/Contents/Resources/en.lproj/InfoPlist.strings", "Colour = crimson;");
    auto* bundle = bundleAt(path);
    NSArray* paths =
        NSArray::of({bundle->executablePath(), bundle->resourcePath(), bundle->builtInPlugInsPath()});
    EXPECT_EQ(names(paths, path / "Contents"), "Linux/A.so, Resources, PlugIns");
    auto information = [&](NSString* key) { return bundle->objectForInfoDictionaryKey(key); };
    EXPECT_EQ(
        shown(bundle->bundleIdentifier(), bundle->infoDictionary()->objectForKey(u"Colour"_ns),
              information(u"Colour"_ns), information(u"CFBundleIdentifier"_ns), information(u"Shape"_ns)),
        "test.A red crimson test.A (null)");
    auto* bare = bundleAt(folder.makeBundle("Bare.bundle"));
    EXPECT_EQ(shown(bare->localizedInfoDictionary(), bare->executablePath()), "(null) (null)");
}

TEST_F(NSBundleTest, ResourcesAreFoundByNameTypeFolderAndLanguage) {
    fs::path path = folder.makeBundle("A.bundle"), resources = path / "Contents/Resources";
    for (const char* file :
         {"Pages.plist", "b.png", "a.png", "Sub/c.png", "Sub/a.tar.gz", "de.lproj/Pages.plist",
          "de.lproj/d.png", "de.lproj/b.png", "fr.lproj/f.png", "en.lproj/Sub/e.png"})
        folder.write(resources / file, "");
    auto* bundle = bundleAt(path);
    LanguageScope languages("de:en");
    // Name, type and folder; "-" is null.
    expectAll({"Pages|plist|- -> Pages.plist", "Pages.plist|-|- -> Pages.plist",
               "Pages.plist|| -> Pages.plist", "Pages|.plist|- -> Pages.plist", "d|png|- -> de.lproj/d.png",
               "e|png|Sub -> en.lproj/Sub/e.png", "a|tar.gz|Sub -> Sub/a.tar.gz", "-|png|- -> a.png",
               "f|png|- -> ", "/etc/passwd|-|- -> ", "-|-|- -> "},
              [&](const std::string& row) {
                  std::istringstream parts(row + "|");
                  NSString* values[3];
                  for (NSString*& value : values) {
                      std::string text;
                      std::getline(parts, text, '|');
                      value = text == "-" ? nullptr : NSString::ofUTF8(text);
                  }
                  id found = bundle->pathForResource_ofType_inDirectory(values[0], values[1], values[2]);
                  return found ? names(NSArray::of({found}), resources) : "";
              });
    NSString* french =
        bundle->pathForResource_ofType_inDirectory_forLocalization(u"f"_ns, u"png"_ns, nullptr, u"fr"_ns);
    EXPECT_EQ(shown(french), resources / "fr.lproj/f.png");
    EXPECT_EQ(names(bundle->pathsForResourcesOfType_inDirectory(u"png"_ns, nullptr), resources),
              "a.png, b.png, de.lproj/d.png");
    EXPECT_EQ(names(bundle->pathsForResourcesOfType_inDirectory(nullptr, u"Sub"_ns), resources),
              "Sub/a.tar.gz, Sub/c.png, en.lproj/Sub/e.png");
}

// MARK: Classes

extern Library frameworkLibrary;
class Frame : public NSObject {
    PELVOR_CLASS(Frame, NSObject);
};
PELVOR_DEFINE_CLASS(Frame, frameworkLibrary) {}
constinit Library frameworkLibrary{"FrameworkTest", {}, kClassesOf<Frame>, {}};

TEST_F(NSBundleTest, ClassesOfAFrameworksLibraryAreTheFrameworks) {
    registerLibrary(frameworkLibrary);
    fs::path path = folder.makeBundle("Frames.framework", {{"CFBundleIdentifier", "test.frames"}});
    auto* framework = NSBundle::registerFramework_library(stringOf(path), frameworkLibrary);
    EXPECT_TRUE(framework->isLoaded());
    Class* made = Class::createSubclass("RuntimeFrame", Frame::classObject());
    for (Class* cls : {Frame::classObject(), made}) EXPECT_EQ(NSBundle::bundleForClass(cls), framework);
    EXPECT_EQ(framework->principalClass(), Frame::classObject());
    EXPECT_EQ(framework->classNamed(u"NSBundle"_ns), nullptr);
}

// With static libraries, the framework would have a platform of its own.
#ifdef PELVOR_TEST_HOST_FOLDER
TEST_F(NSBundleTest, AHostInABundleSeesItselfAndItsFrameworks) {
    LanguageScope languages("en");
    fs::path root = fs::canonical(PELVOR_TEST_HOST_FOLDER);
    fs::path program = root / "TestHost/Contents/Linux/TestHost";
    std::unique_ptr<FILE, int (*)(FILE*)> output(popen(program.c_str(), "r"), pclose);
    std::string text(4096, '\0');
    text.resize(fread(text.data(), 1, text.size(), output.get()));
    std::string framework = (root / "Frame.framework").string();
    EXPECT_EQ(text, (root / "TestHost").string() + "\n" + program.string() +
                        "\npelvor.test.host\nGood evening\n" + framework + "\n" + framework + "\n1\n1\n");
}
#endif

// MARK: Set-up

// Each in a process of its own, where bundles have not been set up.

int resolvings = 0;
NSString* leaveAsItIs(NSPathStore2* path) {
    ++resolvings;
    return path;
}

TEST(NSBundleDeathTest, SetUpResolvesPathsByTheMethodOfTheMoment) {
    auto setUp = [] {
        registerLibrary(*NSBundle::classObject()->library());
        SEL selector = "stringByResolvingSymlinksInPath"_sel;
        auto* cls = NSPathStore2::classObject();
        auto replacement = implementation<"stringByResolvingSymlinksInPath", &leaveAsItIs>();
        auto previous = cls->replaceImplementation(selector, replacement);
        send(NSBundle::classObject(), "initialize"_sel);
        cls->replaceImplementation(selector, previous);
        int before = resolvings;
        send(NSBundle::classObject(), "initialize"_sel);  // does nothing more
        std::exit(before > 0 && resolvings == before && NSBundle::mainBundle() ? 0 : 1);
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(setUp(), ::testing::ExitedWithCode(0), "");
}

void touchedTooEarly(Class*) { std::exit(3); }

TEST(NSBundleDeathTest, EveryUseOfBundlesProvokesTheirSetUp) {
    void (*const uses[])() = {
        [] { NSBundle::mainBundle(); },
        [] { NSBundle::bundleWithPath(u"/tmp"_ns); },
        [] { NSBundle::bundleForClass(NSString::classObject()); },
        [] { NSBundle::bundleWithIdentifier(u"any"_ns); },
        [] { NSBundle::allBundles(); },
        [] { NSBundle::allFrameworks(); },
        [] { send<NSBundle*>(NSBundle::classObject(), "mainBundle"_sel); },
    };
    auto provoke = [](auto use) {
        registerLibrary(*NSBundle::classObject()->library());
        NSBundle::classObject()->metaclass()->replaceImplementation(
            "initialize"_sel, classImplementation<"initialize", &touchedTooEarly>());
        use();
        std::exit(0);
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (auto use : uses) EXPECT_EXIT(provoke(use), ::testing::ExitedWithCode(3), "");
}

}  // namespace
