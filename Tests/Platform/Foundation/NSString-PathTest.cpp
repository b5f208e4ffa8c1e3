// SPDX-License-Identifier: Apache-2.0
// Tests of strings as paths.
#include "Foundation/NSPathStore2.h"
#include "Platform/Foundation/BundleTestSupport.h"
#include "Platform/Foundation/OwnCollections.h"

namespace {

TEST(NSStringPathTest, PartsOfAPath) {
    // The last component, the extension, the path without each of them, and all components.
    expectAll({"/tmp/a.tiff -> a.tiff, tiff, /tmp, /tmp/a, [/][tmp][a.tiff]",
               "/tmp/lock/ -> lock, , /tmp, /tmp/lock, [/][tmp][lock][/]", "/tmp -> tmp, , /, /tmp, [/][tmp]",
               "/ -> /, , /, /, [/]", "// -> /, , /, /, [/]", " -> , , , , ", "a -> a, , , a, [a]",
               "a.tar.gz -> a.tar.gz, gz, , a.tar, [a.tar.gz]", "a..tiff -> a..tiff, tiff, , a., [a..tiff]",
               ".profile -> .profile, , , .profile, [.profile]",
               "/x/.profile -> .profile, , /x, /x/.profile, [/][x][.profile]",
               ".profile.bak -> .profile.bak, bak, , .profile, [.profile.bak]", "a. -> a., , , a, [a.]",
               "a.b/c -> c, , a.b, a.b/c, [a.b][c]", "dir.ext/// -> dir.ext, ext, , dir, [dir.ext][/]",
               "//a//b -> b, , /a, /a/b, [/][a][b]", "été.日本 -> été.日本, 日本, , été, [été.日本]"},
              [](const std::string& text) {
                  NSString* path = NSString::ofUTF8(text);
                  std::string components;
                  for (id component : path->pathComponents()) components += "[" + shown(component) + "]";
                  return joined({shown(path->lastPathComponent()), shown(path->pathExtension()),
                                 shown(path->stringByDeletingLastPathComponent()),
                                 shown(path->stringByDeletingPathExtension()), components});
              });
}

TEST(NSStringPathTest, ComponentsAndExtensionsAreAppendedAndJoined) {
    expectAll({"/tmp + a -> /tmp/a /tmp.a", "/tmp/ + a -> /tmp/a /tmp.a", "/ + a -> /a /", " + a -> a ",
               "/tmp +  -> /tmp /tmp.", "x + a/b/ -> x/a/b x.a/b/", "/tmp + /a -> /tmp/a /tmp./a",
               "a.old + new -> a.old/new a.old.new", " +  ->  "},
              [](const std::string& row) {
                  auto [path, piece] = halves(row, " + ");
                  return shown(path->stringByAppendingPathComponent(piece),
                               path->stringByAppendingPathExtension(piece));
              });
    for (NSString* path : {u"/"_ns, u"/tmp/a.b"_ns, u"a/b"_ns, u""_ns, u"a"_ns})
        EXPECT_EQ(NSString::pathWithComponents(path->pathComponents())->toUTF8(), path->toUTF8());
    EXPECT_EQ(NSString::pathWithComponents(NSArray::of({u"a"_ns, u""_ns, u"/b/"_ns}))->toUTF8(), "a/b");
}

TEST(NSStringPathTest, TildesStandForHomes) {
    EnvironmentScope home("HOME", "/home/anna/");
    expectAll({"~ -> /home/anna ~", "~/x -> /home/anna/x ~/x", "/home/anna -> /home/anna ~",
               "/home/anna/x/ -> /home/anna/x/ ~/x", "/home/annabel -> /home/annabel /home/annabel",
               "a~ -> a~ a~", "~nobody-of-that-name/x -> ~nobody-of-that-name/x ~nobody-of-that-name/x",
               "~root/x -> /root/x ~root/x"},
              [](const std::string& text) {
                  NSString* path = NSString::ofUTF8(text);
                  return shown(path->stringByExpandingTildeInPath(),
                               path->stringByAbbreviatingWithTildeInPath());
              });
    EXPECT_TRUE(u"/x"_ns->isAbsolutePath() && u"~/x"_ns->isAbsolutePath());
    EXPECT_FALSE(u"x"_ns->isAbsolutePath() || u""_ns->isAbsolutePath());
}

TEST(NSStringPathTest, StandardPathsHaveNothingToSpare) {
    expectAll({"/a//b/./c/ -> /a/b/c", "/a/../b -> /b", "/../a -> /a", "a/../b -> a/../b", "./a/. -> a",
               ". -> .", "/. -> /", " -> ", "/a/.. -> /"},
              [](const std::string& path) { return NSString::ofUTF8(path)->stringByStandardizingPath(); });
}

TEST(NSStringPathTest, LinksAreFollowedAsFarAsThePathExists) {
    BundleFolder folder;
    std::string root = folder.path();
    std::filesystem::create_directories(root + "/real/deep");
    std::filesystem::create_symlink("real", root + "/relative");
    std::filesystem::create_symlink(root + "/relative/deep", root + "/absolute");
    std::filesystem::create_symlink("loop", root + "/loop");
    expectAll({"/relative -> /real", "/absolute/../x -> /real/x", "/relative/none/./y -> /real/none/y",
               "/real/deep -> /real/deep", "/loop -> /loop"},
              [&](const std::string& path) {
                  return shown(NSString::ofUTF8(root + path)->stringByResolvingSymlinksInPath())
                      .substr(root.size());
              });
    EXPECT_EQ(shown(u"no-such-folder/../x/."_ns->stringByResolvingSymlinksInPath(),
                    u"../x"_ns->stringByResolvingSymlinksInPath()),
              "x ../x");
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
