// SPDX-License-Identifier: Apache-2.0
#include "Writer/ProfileChoice.h"

#include "PBProfileKeys.h"
#include "Prelude.h"
#include "TestPlugIns.h"

namespace pelvor {
namespace {

class ProfileChoice : public testing::Test {
  protected:
    void add(const char* identifier, std::initializer_list<const char*> documentTypes, int order) {
        addProfile(registry, identifier, PBProfileDocumentReaderType, documentTypes, order);
    }
    std::string readersFor(const char* path) {
        std::string identifiers;
        for (id profile : profilesForDocument(registry, PBProfileDocumentReaderType, NSString::ofUTF8(path)))
            identifiers += static_cast<PBProfile*>(profile)->identifier()->description()->toUTF8() + " ";
        return identifiers;
    }
    Retained<PBRegistry> registry = PBRegistry::init();
};

TEST_F(ProfileChoice, PrefersReadersThatNameTheExtensionToThoseForEverything) {
    add("any", {"*"}, 1);
    add("late text", {"txt"}, 30);
    add("text", {"text", "txt", "*"}, 20);
    add("picture", {"png"}, 5);
    addProfile(registry, "writer", PBProfileDocumentWriterType, {"txt", "*"}, 1);
    EXPECT_EQ(readersFor("/a/b.txt"), "text late text any ");
    EXPECT_EQ(readersFor("LETTER.TXT"), "text late text any ");
    EXPECT_EQ(readersFor("b.png"), "picture any text ");
    EXPECT_EQ(readersFor("README"), "any text ");
}

TEST_F(ProfileChoice, PutsProfilesWithoutOrderLastAndEqualOnesByIdentifier) {
    add("c", {"txt"}, 0);
    add("b", {"txt"}, 7);
    add("a", {"txt"}, 7);
    EXPECT_EQ(readersFor("x.txt"), "a b c ");
    auto* profile = addProfile(registry, "plain", PBProfileDocumentReaderType, {}, 1);
    EXPECT_EQ(nameOfProfile(profile)->toUTF8(), "plain");
}

}  // namespace
}  // namespace pelvor
