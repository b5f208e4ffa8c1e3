// SPDX-License-Identifier: Apache-2.0
// Tests of loading interface files by name, which are kept by identifier.
#include "NSBundle-PelvorAdditions.h"

#include "BaseLibrary.h"
#include "Foundation/PlatformVersion.h"
#include "Prelude.h"
#include "TemporaryFolder.h"

namespace {

// The class of a framework.
extern Library ownerLibrary;
class NibsOwner : public NSObject {
    PELVOR_CLASS(NibsOwner, NSObject);
};
PELVOR_DEFINE_CLASS(NibsOwner, ownerLibrary) {}
constinit Library ownerLibrary{"NibsOwner", {}, kClassesOf<NibsOwner>, {}};

struct Nibs : ::testing::Test {
    Nibs() { registerLibrary(baseLibrary); }
    ~Nibs() {
        setPlatformVersion(1000);
        EXPECT_THAT(log.lines, IsEmpty());
    }

    // Writes a file of one object, which is of that class.
    std::string writeFile(const std::string& path, const std::string& cls) {
        return folder.write(path, "{Objects = ({Identifier = a; Class = " + cls + "; Create = new;});}");
    }
    // The class of what the bundle, or the class of bundles, loads; "" if nothing.
    std::string load(id from, const std::string& name, id identifier, id owner = nullptr) {
        NSString* text = NSString::ofUTF8(name);
        NSArray* objects = nullptr;
        const bool isLoaded = send<bool>(from, "loadNibNamed:owner:identifier:topLevelObjects:"_sel, text,
                                         owner, identifier, &objects);
        EXPECT_EQ(isLoaded, send<bool>(from, "loadNibNamed:owner:identifier:"_sel, text, owner, identifier));
        EXPECT_EQ(isLoaded, objects && objects->count() == 1);
        last = isLoaded ? objects->lastObject() : nullptr;
        return last ? last->isa()->publicName() : "";
    }

    id last = nullptr;
    TemporaryFolder folder;
    LogLines log;
    AutoreleasePool pool;
};

TEST_F(Nibs, AreReadOnceForEachIdentifierAndAlwaysByOlderPlatforms) {
    folder.write("A.bundle/Contents/Info.plist", "{}");
    NSBundle* bundle = NSBundle::bundleWithPath(NSString::ofUTF8(folder.path("A.bundle")));
    for (double version : {1000.0, 743.0, 742.9}) {
        setPlatformVersion(version);
        const bool isKept = version >= 743;
        id identifier = NSNumber::numberWithDouble(version);
        writeFile("A.bundle/Contents/Resources/One.nib", "NSMutableArray");
        EXPECT_EQ(load(bundle, "Missing", identifier), "");
        EXPECT_EQ(load(bundle, "One", identifier), "NSMutableArray");
        const id first = last;
        writeFile("A.bundle/Contents/Resources/One.nib", "NSMutableSet");
        EXPECT_EQ(load(bundle, "One", identifier), isKept ? "NSMutableArray" : "NSMutableSet") << version;
        EXPECT_NE(last, first);
        EXPECT_EQ(load(bundle, "Missing", identifier), isKept ? "NSMutableArray" : "") << "as it was read";
        EXPECT_EQ(load(bundle, "One", nullptr, u"owner"_ns), "NSMutableSet");
    }
}

TEST_F(Nibs, AreLookedForInTheOwnersBundleAndThenInTheMainBundle) {
    const std::string own = folder.path("Own.framework/Contents/"),
                      main = NSBundle::mainBundle()->resourcePath()->toUTF8();
    folder.write(own + "Info.plist", "{}");
    for (const char* name : {"OnlyInOwn.nib", "InBoth.nib"})
        writeFile(own + "Resources/" + name, "NSMutableArray");
    auto removal = atEnd([files = std::vector{writeFile(main + "/OnlyInMain.nib", "NSMutableSet"),
                                              writeFile(main + "/InBoth.nib", "NSMutableSet")}] {
        for (const std::string& file : files) std::filesystem::remove(file);
    });
    registerLibrary(ownerLibrary);
    NSBundle::registerFramework_library(NSString::ofUTF8(folder.path("Own.framework")), ownerLibrary);
    auto owner = instanceOf(NibsOwner::classObject());
    expectAll({"OnlyInOwn -> NSMutableArray", "InBoth -> NSMutableArray", "OnlyInMain -> NSMutableSet",
               "Missing -> "},
              [&](const std::string& name) { return load(NSBundle::classObject(), name, nullptr, owner); });
    EXPECT_EQ(load(NSBundle::classObject(), "InBoth", nullptr), "NSMutableSet");
}

}  // namespace
