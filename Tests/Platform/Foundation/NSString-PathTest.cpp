// SPDX-License-Identifier: Apache-2.0
// Tests of strings as paths.
#include <filesystem>

#include "Foundation/NSPathStore2.h"
#include "FoundationTestSupport.h"
#include "Platform/Foundation/BundleTestSupport.h"
#include "Platform/Foundation/EnvironmentScope.h"
#include "Prelude.h"

namespace pelvor {
namespace {

std::string joinedComponents(NSArray* components) {
    std::string text;
    for (id component : components) text += "[" + cast<NSString>(component)->toUTF8() + "]";
    return text;
}

TEST(NSStringPathTest, PartsOfAPath) {
    struct {
        const char *path, *last, *extension, *parent, *stem, *components;
    } cases[] = {
        {"/tmp/a.tiff", "a.tiff", "tiff", "/tmp", "/tmp/a", "[/][tmp][a.tiff]"},
        {"/tmp/lock/", "lock", "", "/tmp", "/tmp/lock", "[/][tmp][lock][/]"},
        {"/tmp", "tmp", "", "/", "/tmp", "[/][tmp]"},
        {"/", "/", "", "/", "/", "[/]"},
        {"//", "/", "", "/", "/", "[/]"},
        {"", "", "", "", "", ""},
        {"a", "a", "", "", "a", "[a]"},
        {"a.tar.gz", "a.tar.gz", "gz", "", "a.tar", "[a.tar.gz]"},
        {"a..tiff", "a..tiff", "tiff", "", "a.", "[a..tiff]"},
        {".profile", ".profile", "", "", ".profile", "[.profile]"},
        {"/x/.profile", ".profile", "", "/x", "/x/.profile", "[/][x][.profile]"},
        {".profile.bak", ".profile.bak", "bak", "", ".profile", "[.profile.bak]"},
        {"a.", "a.", "", "", "a", "[a.]"},
        {"a.b/c", "c", "", "a.b", "a.b/c", "[a.b][c]"},
        {"dir.ext///", "dir.ext", "ext", "", "dir", "[dir.ext][/]"},
        {"//a//b", "b", "", "/a", "/a/b", "[/][a][b]"},
        {"été.日本", "été.日本", "日本", "", "été", "[été.日本]"},
    };
    for (auto& c : cases) {
        NSString* path = NSString::ofUTF8(c.path);
        EXPECT_EQ(path->lastPathComponent()->toUTF8(), c.last) << c.path;
        EXPECT_EQ(path->pathExtension()->toUTF8(), c.extension) << c.path;
        EXPECT_EQ(path->stringByDeletingLastPathComponent()->toUTF8(), c.parent) << c.path;
        EXPECT_EQ(path->stringByDeletingPathExtension()->toUTF8(), c.stem) << c.path;
        EXPECT_EQ(joinedComponents(path->pathComponents()), c.components) << c.path;
    }
}

TEST(NSStringPathTest, AppendingComponentsAndExtensions) {
    struct {
        const char *path, *piece, *withComponent, *withExtension;
    } cases[] = {
        {"/tmp", "a", "/tmp/a", "/tmp.a"},
        {"/tmp/", "a", "/tmp/a", "/tmp.a"},
        {"/", "a", "/a", "/"},
        {"", "a", "a", ""},
        {"/tmp", "", "/tmp", "/tmp."},
        {"x", "a/b/", "x/a/b", "x.a/b/"},
        {"/tmp", "/a", "/tmp/a", "/tmp./a"},
        {"a.old", "new", "a.old/new", "a.old.new"},
        {"", "", "", ""},
    };
    for (auto& c : cases) {
        NSString *path = NSString::ofUTF8(c.path), *piece = NSString::ofUTF8(c.piece);
        EXPECT_EQ(path->stringByAppendingPathComponent(piece)->toUTF8(), c.withComponent) << c.path;
        EXPECT_EQ(path->stringByAppendingPathExtension(piece)->toUTF8(), c.withExtension) << c.path;
    }
    expectRaises(NSInvalidArgumentException, [] { u"a"_ns->stringByAppendingPathComponent(nullptr); });
}

TEST(NSStringPathTest, ComponentsJoinToThePathTheyCameFrom) {
    for (NSString* path : {u"/"_ns, u"/tmp/a.b"_ns, u"a/b"_ns, u""_ns, u"a"_ns})
        EXPECT_EQ(NSString::pathWithComponents(path->pathComponents())->toUTF8(), path->toUTF8());
    EXPECT_EQ(NSString::pathWithComponents(NSArray::of({u"a"_ns, u""_ns, u"/b/"_ns}))->toUTF8(), "a/b");
    expectRaises(NSInvalidArgumentException,
                 [] { NSString::pathWithComponents(NSArray::arrayWithObject(NSArray::array())); });
}

TEST(NSStringPathTest, TildesStandForHomes) {
    EnvironmentScope home("HOME", "/home/anna/");
    struct {
        NSString* path;
        const char *expanded, *abbreviated;
    } cases[] = {{u"~"_ns, "/home/anna", "~"},
                 {u"~/x"_ns, "/home/anna/x", "~/x"},
                 {u"/home/anna"_ns, "/home/anna", "~"},
                 {u"/home/anna/x/"_ns, "/home/anna/x/", "~/x"},
                 {u"/home/annabel"_ns, "/home/annabel", "/home/annabel"},
                 {u"a~"_ns, "a~", "a~"},
                 {u"~nobody-of-that-name/x"_ns, "~nobody-of-that-name/x", "~nobody-of-that-name/x"},
                 {u"~root/x"_ns, "/root/x", "~root/x"}};
    for (auto& c : cases) {
        EXPECT_EQ(c.path->stringByExpandingTildeInPath()->toUTF8(), c.expanded) << c.path;
        EXPECT_EQ(c.path->stringByAbbreviatingWithTildeInPath()->toUTF8(), c.abbreviated) << c.path;
    }
    EXPECT_TRUE(u"/x"_ns->isAbsolutePath() && u"~/x"_ns->isAbsolutePath());
    EXPECT_FALSE(u"x"_ns->isAbsolutePath() || u""_ns->isAbsolutePath());
}

TEST(NSStringPathTest, StandardPathsHaveNothingToSpare) {
    struct {
        NSString* path;
        const char* expected;
    } cases[] = {{u"/a//b/./c/"_ns, "/a/b/c"},
                 {u"/a/../b"_ns, "/b"},
                 {u"/../a"_ns, "/a"},
                 {u"a/../b"_ns, "a/../b"},
                 {u"./a/."_ns, "a"},
                 {u"."_ns, "."},
                 {u"/."_ns, "/"},
                 {u""_ns, ""},
                 {u"/a/.."_ns, "/"}};
    for (auto& c : cases) EXPECT_EQ(c.path->stringByStandardizingPath()->toUTF8(), c.expected) << c.path;
}

TEST(NSStringPathTest, LinksAreFollowedAsFarAsThePathExists) {
    testing::BundleFolder folder;
    std::string root = folder.path();
    std::filesystem::create_directories(root + "/real/deep");
    std::filesystem::create_symlink("real", root + "/relative");
    std::filesystem::create_symlink(root + "/relative/deep", root + "/absolute");
    std::filesystem::create_symlink("loop", root + "/loop");
    struct {
        const char *path, *expected;
    } cases[] = {{"/relative", "/real"},
                 {"/absolute/../x", "/real/x"},
                 {"/relative/none/./y", "/real/none/y"},
                 {"/real/deep", "/real/deep"},
                 {"/loop", "/loop"}};
    for (auto& c : cases)
        EXPECT_EQ(NSString::ofUTF8(root + c.path)->stringByResolvingSymlinksInPath()->toUTF8(),
                  root + c.expected);
    EXPECT_EQ(u"no-such-folder/../x/."_ns->stringByResolvingSymlinksInPath()->toUTF8(), "x");
    EXPECT_EQ(u"../x"_ns->stringByResolvingSymlinksInPath()->toUTF8(), "../x");
}

Object* unchanged(Object* self, SEL) { return self; }

TEST(NSStringPathTest, PathStringsHaveTheirOwnWayOfFollowingLinks) {
    NSString* path = u"/usr"_ns->stringByAppendingPathComponent(u"./bin"_ns);
    ASSERT_TRUE(path->isKindOfClass(NSPathStore2::classObject()));
    EXPECT_EQ(path->stringByAppendingPathComponent(u""_ns), path);
    EXPECT_EQ(path->hash(), u"/usr/./bin"_ns->hash());
    SEL selector = "stringByResolvingSymlinksInPath"_sel;
    IMP original = NSPathStore2::classObject()->instanceMethod(selector)->implementation;
    IMP replacement{reinterpret_cast<void (*)()>(&unchanged), original.signature, nullptr};
    NSPathStore2::classObject()->replaceImplementation(selector, replacement);
    EXPECT_EQ(send<NSString*>(path, selector), path);
    EXPECT_EQ(send<NSString*>(u"/./."_ns, selector)->toUTF8(), "/");
    NSPathStore2::classObject()->replaceImplementation(selector, original);
    EXPECT_NE(send<NSString*>(path, selector), path);
}

}  // namespace
}  // namespace pelvor
