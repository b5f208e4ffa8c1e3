// SPDX-License-Identifier: Apache-2.0
#include "Writer/ProfileChoice.h"

#include "TestProfiles.h"

namespace {

struct ProfileChoice : ::testing::Test {
    void add(const char* identifier, std::initializer_list<id> documentTypes, int order) {
        addProfile(registry, identifier, PBProfileDocumentReaderType, documentTypes, order);
    }
    void expectReaders(std::initializer_list<std::string_view> pathsAndReaders) {
        expectAll(pathsAndReaders, [this](const std::string& path) {
            std::string names;
            for (id profile :
                 profilesForDocument(registry, PBProfileDocumentReaderType, NSString::ofUTF8(path)))
                names += shown(static_cast<PBProfile*>(profile)->identifier()) + " ";
            return names;
        });
    }
    Retained<PBRegistry> registry = PBRegistry::init();
};

TEST_F(ProfileChoice, PrefersReadersThatNameTheExtensionToThoseForEverything) {
    add("any", {u"*"_ns}, 1);
    add("late", {u"txt"_ns}, 30);
    add("text", {u"text"_ns, u"txt"_ns, u"*"_ns}, 20);
    add("picture", {u"png"_ns}, 5);
    addProfile(registry, "writer", PBProfileDocumentWriterType, {u"txt"_ns, u"*"_ns}, 1);
    expectReaders({"/a/b.txt -> text late any ", "LETTER.TXT -> text late any ", "b.png -> picture any text ",
                   "README -> any text "});
}

TEST_F(ProfileChoice, PutsProfilesWithoutOrderLastAndEqualOnesByIdentifier) {
    add("c", {u"txt"_ns}, 0);
    for (const char* identifier : {"b", "a"}) add(identifier, {u"txt"_ns}, 7);
    expectReaders({"x.txt -> a b c "});
    EXPECT_EQ(shown(nameOfProfile(addProfile(registry, "plain", PBProfileDocumentReaderType, {}, 1))),
              "plain");
}

}  // namespace
