// SPDX-License-Identifier: Apache-2.0
#include "Writer/Recovery/RecoveryFormat.h"

#include "RecoveryScope.h"
#include "Text/NSColor.h"
#include "Text/NSFont.h"
#include "Text/NSMutableParagraphStyle.h"
#include "Text/NSTextAttachment.h"
#include "Text/NSTextTab.h"
#include "Writer/Pages/PagesLibrary.h"
#include "Writer/Pages/WRSheetParagraphStyle.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/Recovery/RecoveryLibrary.h"
#include "Writer/WRLanguage.h"
#include "Writer/WriterLibrary.h"

namespace {

TEST(RecoveryFormat, BringsBackFormatsPicturesAndSettings) {
    for (Library* library : {&writerLibrary, &pagesLibrary}) registerLibrary(*library);
    auto style = NSMutableParagraphStyle::init();
    style->addTabStop(NSTextTab::initWithType_location(NSDecimalTabStopType, 72).get());
    auto sheetStyle = WRSheetParagraphStyle::create(style, {true, false, true});
    auto picture = NSTextAttachment::initWithData_ofType(NSData::dataWithBytes_length("png", 3), u"png"_ns);
    picture->setBounds({{0, -3}, {48, 32}});
    auto text = NSMutableAttributedString::initWithString(u"\uFFFC"_ns);
    for (const NSDictionaryEntry& attribute :
         {NSDictionaryEntry{NSFontAttributeName, NSFont::boldSystemFontOfSize(17)},
          {NSForegroundColorAttributeName, NSColor::redColor()},
          {NSParagraphStyleAttributeName, style},
          {NSParagraphStyleAttributeName, sheetStyle},
          {WRLanguageAttributeKey, WRLanguage::languageWithIdentifier(u"fr"_ns)},
          {WRParagraphStyleNameKey, u"heading 1"_ns}})
        text->replaceCharactersInRange_withString_attributes({text->length(), 0}, u"\u00E9\U0001F600"_ns,
                                                             NSDictionary::of({attribute}));
    auto expected = text->copy();
    text->addAttribute_value_range(NSAttachmentAttributeName, picture, {0, 1});
    // An attribute of a class that cannot be archived does no harm to the rest.
    text->addAttribute_value_range(u"stranger"_ns, instanceOf(NSObject::classObject()).get(), {1, 3});
    auto* answer =
        NSDictionary::of({{WREncodingKey, u"utf-8"_ns},
                          {WRDocumentSettingsKey, NSDictionary::of({{WRHeaderKey, expected.get()}})}});
    std::string bytes(kRecoverySignature), reason;
    RecoveryAttributes attributes;
    LogLines log;
    addOriginRecord(bytes, archivedOrigin(RecoveryOrigin::of(u"/a/b.rtf"_ns, u"rich"_ns, answer)).get());
    addEditRecord(bytes, attributes, text, {0, text->length()}, 0);
    auto read = readRecovery(bytes, reason);
    ASSERT_TRUE(read) << reason;
    auto* attachment = cast<NSTextAttachment>(
        read->text->attribute_atIndex_effectiveRange(NSAttachmentAttributeName, 0, nullptr));
    ASSERT_TRUE(attachment && attachment->contents()->isEqual(picture->contents()));
    EXPECT_EQ(attachment->bounds(), picture->bounds());
    read->text->removeAttribute_range(NSAttachmentAttributeName, {0, 1});
    EXPECT_TRUE(read->text->isEqualToAttributedString(expected)) << read->text->description()->toUTF8();
    EXPECT_TRUE(read->origin.answer->isEqual(answer));
    EXPECT_EQ(shown(read->origin.path, read->origin.reader), "/a/b.rtf rich");
    EXPECT_THAT(log.lines, ElementsAre(HasSubstr("\"stranger\"")));
}

// A process may be killed behind any byte.
TEST(RecoveryFormat, ReadsAllRecordsBeforeTheFirstThatIsCutOrChanged) {
    std::mt19937 random(5);
    auto text = NSMutableAttributedString::initWithString(u"first"_ns);
    std::string bytes(kRecoverySignature);
    RecoveryAttributes attributes;
    addOriginRecord(bytes, archivedOrigin({}).get());
    std::vector<std::pair<std::size_t, Retained<NSAttributedString>>> states;
    NSUInteger before = 0;
    for (int i = 0; i < 8; ++i) {
        ASSERT_TRUE(addEditRecord(bytes, attributes, text, {0, text->length()}, before));
        before = text->length();
        states.emplace_back(bytes.size(), text->copy());
        changeRandomly(text, random);
    }
    std::size_t whole = 0;  // states that are before the damage
    for (std::size_t place = 0; place < bytes.size(); ++place) {
        while (whole < states.size() && states[whole].first <= place) ++whole;
        std::string changed = bytes;
        changed[place] = static_cast<char>(changed[place] ^ 0x20);
        for (const std::string& damaged : {bytes.substr(0, place), changed}) {
            std::string reason;
            const auto read = readRecovery(damaged, reason);
            ASSERT_EQ(read.has_value(), whole > 0) << place;
            ASSERT_EQ(reason.empty(), whole > 0) << place;
            ASSERT_TRUE(!read || read->text->isEqualToAttributedString(states[whole - 1].second)) << place;
        }
    }
    EXPECT_EQ(recoveryChecksum("123456789"), 0xCBF43926u);
}

}  // namespace
