// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSPasteboard.h"

#include "Foundation/NSArray.h"
#include "Interface/Backend/DisplayConnection.h"
#include "Interface/InterfaceLibrary.h"
#include "InterfaceScope.h"

namespace {

extern Library pasteboardOwnerLibrary;

/// Gives what it promised when somebody asks.
class PromisingOwner : public NSObject {
    PELVOR_CLASS(PromisingOwner, NSObject);

  public:
    void pasteboard_provideDataForType(NSPasteboard* board, NSString* type) {
        told += "provide ";
        board->setString_forType(u"promised"_ns, type);
    }
    void pasteboardChangedOwner(NSPasteboard*) { told += "lost "; }
    std::string told;
};
PELVOR_DEFINE_CLASS(PromisingOwner, pasteboardOwnerLibrary) {
    methods.instance<"pasteboard:provideDataForType:", &PromisingOwner::pasteboard_provideDataForType>();
    methods.instance<"pasteboardChangedOwner:", &PromisingOwner::pasteboardChangedOwner>();
}
constexpr Library* kDependencies[] = {&interfaceLibrary};
constinit Library pasteboardOwnerLibrary{
    "TestPasteboardOwner", kDependencies, kClassesOf<PromisingOwner>, {}};

struct NSPasteboardTest : ::testing::Test {
    ~NSPasteboardTest() override { general->releaseGlobally(); }
    NSString* text() { return general->stringForType(NSStringPboardType); }
    /// What another program gets under the name.
    std::string foreign(const char* name) {
        std::string content = "nothing";
        screen.backend->requestSelection(BackendSelection::clipboard, name,
                                         [&](bool isThere, std::string given) {
                                             if (isThere) content = std::move(given);
                                         });
        return content;
    }

    InterfaceScope screen;
    NSPasteboard* general = NSPasteboard::generalPasteboard();
    Retained<PromisingOwner> owner = make<PromisingOwner>();
};

TEST_F(NSPasteboardTest, HoldsWhatItWasGiven) {
    NSPasteboard* find = NSPasteboard::pasteboardWithName(NSFindPboard);
    EXPECT_EQ(find, NSPasteboard::pasteboardWithName(u"NSFindPboard"_ns));
    const NSInteger before = find->changeCount();
    EXPECT_EQ(find->declareTypes_owner(NSArray::of({NSStringPboardType, u"own"_ns}), nullptr), before + 1);
    EXPECT_TRUE(find->setString_forType(u"wanted"_ns, NSStringPboardType));
    EXPECT_TRUE(find->setPropertyList_forType(NSArray::of({u"a"_ns}), u"own"_ns));
    EXPECT_FALSE(find->setString_forType(u"x"_ns, NSRTFPboardType)) << "not declared";
    EXPECT_EQ(find->availableTypeFromArray(NSArray::of({NSRTFPboardType, u"own"_ns}))->toUTF8(), "own");
    EXPECT_TRUE(find->propertyListForType(u"own"_ns)->isEqual(NSArray::of({u"a"_ns})));
    EXPECT_EQ(find->stringForType(NSStringPboardType)->toUTF8(), "wanted");
    EXPECT_EQ(find->dataForType(NSRTFPboardType), nullptr);
    EXPECT_EQ(foreign("UTF8_STRING"), "nothing") << "the search text is nobody else's";
    EXPECT_THAT(RAISED(find->declareTypes_owner(NSArray::of({find}), nullptr)), HasSubstr("is no string"));
}

TEST_F(NSPasteboardTest, AsksItsOwnerWhenSomebodyWantsWhatWasPromised) {
    general->declareTypes_owner(NSArray::of({NSStringPboardType}), owner);
    EXPECT_EQ(owner->told, "");
    EXPECT_EQ(foreign("UTF8_STRING"), "promised");
    EXPECT_EQ(text()->toUTF8(), "promised");
    EXPECT_EQ(owner->told, "provide ") << "once";
    general->declareTypes_owner(NSArray::of({NSStringPboardType}), owner);
    EXPECT_EQ(owner->told, "provide lost ");
    owner = nullptr;
    EXPECT_EQ(text(), nullptr) << "an owner that has ended keeps no promise";
}

TEST_F(NSPasteboardTest, GivesOtherProgramsWhatTheyUnderstand) {
    general->declareTypes_owner(NSArray::of({NSStringPboardType, NSFilenamesPboardType, u"own"_ns}), nullptr);
    general->setString_forType(u"\u00E4\u20AC"_ns, NSStringPboardType);
    general->setPropertyList_forType(NSArray::of({u"/tmp/a b"_ns}), NSFilenamesPboardType);
    general->setString_forType(u"1"_ns, u"own"_ns);
    EXPECT_EQ(foreign("text/plain;charset=utf-8"), "\u00E4\u20AC");
    EXPECT_EQ(foreign("STRING"),
              "\xE4"
              "EUR");
    EXPECT_EQ(foreign("text/uri-list"), "file:///tmp/a%20b\r\n");
    EXPECT_EQ(foreign("application/x-pelvorbase.own"), "1");
    EXPECT_EQ(foreign("image/png"), "nothing");
}

TEST_F(NSPasteboardTest, ReadsWhatOtherProgramsCopied) {
    general->declareTypes_owner(NSArray::of({NSStringPboardType}), owner);
    const NSInteger before = general->changeCount();
    screen.backend->setForeignSelection(BackendSelection::clipboard,
                                        {{"STRING", "\xE4"},
                                         {"text/uri-list", "# list\r\nfile:///tmp/a%20b\r\nhttp://c/\r\n"},
                                         {"TARGETS", ""}});
    EXPECT_GT(general->changeCount(), before);
    EXPECT_EQ(text()->toUTF8(), "\u00E4");
    EXPECT_EQ(owner->told, "");
    screen.turn();
    EXPECT_EQ(owner->told, "lost ") << "a moment later";
    EXPECT_TRUE(general->types()->containsObject(NSFilenamesPboardType));
    EXPECT_EQ(general->types()->count(), 2u);
    EXPECT_TRUE(general->propertyListForType(NSFilenamesPboardType)->isEqual(NSArray::of({u"/tmp/a b"_ns})));
}

}  // namespace
