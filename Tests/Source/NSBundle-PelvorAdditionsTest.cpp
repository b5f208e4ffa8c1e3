// SPDX-License-Identifier: Apache-2.0
// Tests of loading interface files by name, which are kept by identifier.
#include "NSBundle-PelvorAdditions.h"

#include "BaseLibrary.h"
#include "Foundation/PlatformVersion.h"
#include "Prelude.h"
#include "TemporaryFolder.h"

namespace {

struct Nibs : ::testing::Test {
    Nibs() { registerLibrary(baseLibrary); }
    ~Nibs() { setPlatformVersion(1000); }

    // A bundle with files of one object, which is of that class.
    NSBundle* bundleWith(const std::string& name, std::initializer_list<const char*> files,
                         const char* cls = "NSNull") {
        const std::string resources = name + "/Contents/Resources/";
        folder.write(name + "/Contents/Info.plist", "{}");
        for (const char* file : files) writeFile(resources + file, cls);
        return NSBundle::bundleWithPath(NSString::ofUTF8(folder.path(name)));
    }
    void writeFile(const std::string& path, const char* cls) {
        folder.write(path + ".nib",
                     "{Objects = ({Identifier = a; Class = " + std::string(cls) + "; Create = new;});}");
    }
    // The class of what is loaded, or "" if nothing is.
    std::string load(NSBundle* bundle, NSString* name, id identifier) {
        NSArray* objects = nullptr;
        if (!loadNibNamed_owner_identifier_topLevelObjects(bundle, name, nullptr, identifier, &objects))
            return objects ? "objects of nothing" : "";
        EXPECT_EQ(objects->count(), 1u);
        return objects->lastObject()->isa()->publicName();
    }

    TemporaryFolder folder;
    LogLines log;
    AutoreleasePool pool;
};

TEST_F(Nibs, AreReadOnceForEachIdentifier) {
    NSBundle* bundle = bundleWith("A.bundle", {"One", "Two"}, "NSMutableArray");
    NSString* identifier = u"AreReadOnceForEachIdentifier"_ns;
    EXPECT_EQ(load(bundle, u"Missing"_ns, identifier), "");
    EXPECT_EQ(load(bundle, u"One"_ns, identifier), "NSMutableArray");
    writeFile("A.bundle/Contents/Resources/One", "NSMutableSet");
    EXPECT_EQ(load(bundle, u"One"_ns, identifier), "NSMutableArray") << "the file was read already";
    EXPECT_EQ(load(bundle, u"Missing"_ns, identifier), "NSMutableArray") << "the identifier alone decides";
    EXPECT_EQ(load(bundle, u"One"_ns, nullptr), "NSMutableSet");
    EXPECT_TRUE(loadNibNamed_owner_identifier(bundle, u"Two"_ns, nullptr, nullptr));
    EXPECT_FALSE(loadNibNamed_owner_identifier(bundle, u"Three"_ns, nullptr, nullptr));
    NSArray *first = nullptr, *second = nullptr;
    for (NSArray** objects : {&first, &second})
        EXPECT_TRUE(send<bool>(bundle, "loadNibNamed:owner:identifier:topLevelObjects:"_sel, u"One"_ns,
                               static_cast<id>(nullptr), static_cast<id>(identifier), objects));
    EXPECT_NE(first->lastObject(), second->lastObject());
    EXPECT_THAT(log.lines, IsEmpty());
}

TEST_F(Nibs, AreNeverKeptByOlderPlatforms) {
    NSBundle* bundle = bundleWith("B.bundle", {"One"}, "NSMutableArray");
    NSString* identifier = u"AreNeverKeptByOlderPlatforms"_ns;
    for (double version : {743.0, 742.9}) {
        setPlatformVersion(version);
        writeFile("B.bundle/Contents/Resources/One", "NSMutableArray");
        EXPECT_EQ(load(bundle, u"One"_ns, identifier), "NSMutableArray");
        writeFile("B.bundle/Contents/Resources/One", "NSMutableSet");
        EXPECT_EQ(load(bundle, u"One"_ns, identifier), version < 743 ? "NSMutableSet" : "NSMutableArray");
        EXPECT_EQ(load(bundle, u"Missing"_ns, nullptr), "");
    }
    EXPECT_TRUE(loadNibNamed_owner_identifier(bundle, u"One"_ns, u"owner"_ns, nullptr));
    EXPECT_THAT(log.lines, IsEmpty());
}

// The class of a framework.
extern Library ownerLibrary;
class NibsOwner : public NSObject {
    PELVOR_CLASS(NibsOwner, NSObject);
};
PELVOR_DEFINE_CLASS(NibsOwner, ownerLibrary) {}
constinit Library ownerLibrary{"NibsOwner", {}, kClassesOf<NibsOwner>, {}};

TEST_F(Nibs, AreLookedForInTheOwnersBundleAndThenInTheMainBundle) {
    using Additions = NSBundle_PelvorAdditions;
    bundleWith("Own.framework", {"OnlyInOwn", "InBoth"}, "NSMutableArray");
    registerLibrary(ownerLibrary);
    NSBundle::registerFramework_library(NSString::ofUTF8(folder.path("Own.framework")), ownerLibrary);
    auto owner = instanceOf(NibsOwner::classObject());
    const std::string resources = NSBundle::mainBundle()->resourcePath()->toUTF8();
    std::vector<std::string> files;
    for (const char* name : {"/OnlyInMain.nib", "/InBoth.nib"}) {
        files.push_back(resources + name);
        std::ofstream(files.back()) << "{Objects = ({Identifier = a; Class = NSMutableSet; Create = new;});}";
    }
    auto removal = atEnd([&] {
        for (const std::string& file : files) std::filesystem::remove(file);
    });
    auto loaded = [&](NSString* name, id itsOwner) {
        NSArray* objects = nullptr;
        const bool isLoaded =
            Additions::loadNibNamed_owner_identifier_topLevelObjects(name, itsOwner, nullptr, &objects);
        return std::string(isLoaded ? objects->lastObject()->isa()->publicName() : "");
    };
    EXPECT_EQ(loaded(u"OnlyInOwn"_ns, owner), "NSMutableArray");
    EXPECT_EQ(loaded(u"InBoth"_ns, owner), "NSMutableArray");
    EXPECT_EQ(loaded(u"OnlyInMain"_ns, owner), "NSMutableSet");
    EXPECT_EQ(loaded(u"InBoth"_ns, nullptr), "NSMutableSet");
    EXPECT_EQ(loaded(u"Missing"_ns, owner), "");
    EXPECT_TRUE(send<bool>(NSBundle::classObject(), "loadNibNamed:owner:identifier:"_sel, u"OnlyInMain"_ns,
                           owner, static_cast<id>(nullptr)));
    EXPECT_THAT(log.lines, IsEmpty());
}

}  // namespace
