// SPDX-License-Identifier: Apache-2.0
#include "Text/NSParagraphStyle.h"

#include "Foundation/NSKeyedArchiver.h"
#include "Foundation/NSKeyedUnarchiver.h"
#include "Prelude.h"
#include "Text/NSMutableParagraphStyle.h"
#include "Text/NSTextAttachment.h"
#include "Text/NSTextAttachmentCell.h"
#include "Text/NSTextTab.h"
#include "Text/TextLibrary.h"

namespace {

class ParagraphStyleTest : public testing::Test {
  protected:
    ParagraphStyleTest() { registerLibrary(textLibrary); }

    template <class T>
    static T* archivedAndRead(T* object) {
        NSSet* allowed = NSSet::setWithArray(
            NSArray::of({NSParagraphStyle::classObject(), NSMutableParagraphStyle::classObject(),
                         NSTextTab::classObject(), NSTextAttachment::classObject(), NSArray::classObject(),
                         NSDictionary::classObject(), NSData::classObject()}));
        NSString* error = nullptr;
        return cast<T>(NSKeyedUnarchiver::unarchivedObjectWithData_allowedClasses_error(
            NSKeyedArchiver::archivedDataWithRootObject(object), allowed, &error));
    }

  private:
    AutoreleasePool _pool;
};

TEST_F(ParagraphStyleTest, IsAValue) {
    auto style = NSParagraphStyle::defaultParagraphStyle()->mutableCopy();
    auto same = style->mutableCopy();
    EXPECT_TRUE(style->isEqual(NSParagraphStyle::defaultParagraphStyle()));
    style->setHeadIndent(3);
    style->addTabStop(NSTextTab::initWithType_location(NSDecimalTabStopType, 40).get());
    style->addTabStop(NSTextTab::initWithType_location(NSLeftTabStopType, 20).get());
    EXPECT_FALSE(style->isEqual(same));
    auto copy = style->copy();
    EXPECT_NE(copy.get(), style.get());
    EXPECT_EQ(copy->copy().get(), copy.get());
    EXPECT_TRUE(copy->isEqual(style));
    EXPECT_EQ(copy->hash(), style->hash());
    EXPECT_EQ(shown(copy), "alignment 4, direction -1, break mode 0, headIndent 3, tabs 20L 40D");
    EXPECT_TRUE(copy->isEqual(archivedAndRead(copy.get())));
    style->removeTabStop(NSTextTab::initWithType_location(NSLeftTabStopType, 20).get());
    EXPECT_EQ(style->tabStops()->count(), 1u);
    EXPECT_EQ(copy->tabStops()->count(), 2u);
    EXPECT_EQ(RAISED(style->setTabStops(NSArray::of({u"x"_ns}))),
              "NSInvalidArgumentException: setTabStops: an object of the array is no NSTextTab");
}

TEST_F(ParagraphStyleTest, TellsTypesAndAlignmentsOfTabs) {
    const auto ofType = [](NSTextTabType type) {
        auto tab = NSTextTab::initWithType_location(type, 1);
        return shown(static_cast<int>(tab->alignment()), tab->options()->count());
    };
    EXPECT_EQ(ofType(NSLeftTabStopType), "0 0");
    EXPECT_EQ(ofType(NSRightTabStopType), "1 0");
    EXPECT_EQ(ofType(NSCenterTabStopType), "2 0");
    EXPECT_EQ(ofType(NSDecimalTabStopType), "1 1");
    NSDictionary* commas = NSDictionary::of({{NSTabColumnTerminatorsAttributeName, u","_ns}});
    auto decimal = NSTextTab::initWithTextAlignment_location_options(NSRightTextAlignment, 1, commas);
    EXPECT_EQ(decimal->tabStopType(), NSDecimalTabStopType);
    EXPECT_FALSE(decimal->isEqual(NSTextTab::initWithType_location(NSDecimalTabStopType, 1).get()));
    EXPECT_TRUE(decimal->isEqual(archivedAndRead(decimal.get())));
}

TEST_F(ParagraphStyleTest, KnowsTheDirectionOfLanguages) {
    EXPECT_EQ(NSParagraphStyle::defaultWritingDirectionForLanguage(u"he"_ns), NSWritingDirectionRightToLeft);
    EXPECT_EQ(NSParagraphStyle::defaultWritingDirectionForLanguage(u"de-AT"_ns),
              NSWritingDirectionLeftToRight);
}

TEST_F(ParagraphStyleTest, GivesAttachmentsCells) {
    auto attachment =
        NSTextAttachment::initWithData_ofType(NSData::of(std::as_bytes(std::span("abc", 3))), u"text"_ns);
    attachment->setBounds({{1, 2}, {3, 4}});
    auto cell =
        Retained<NSTextAttachmentCell>::retaining(cast<NSTextAttachmentCell>(attachment->attachmentCell()));
    EXPECT_EQ(cell->attachment(), attachment.get());
    EXPECT_EQ(cell->cellSize(), (NSSize{3, 4}));
    EXPECT_EQ(cell->cellBaselineOffset(), (NSPoint{1, 2}));
    NSTextAttachment* read = archivedAndRead(attachment.get());
    EXPECT_EQ(read->bounds(), attachment->bounds());
    EXPECT_TRUE(read->contents()->isEqual(attachment->contents()));
    attachment = nullptr;
    EXPECT_EQ(cell->cellSize(), NSZeroSize) << "the attachment is gone";
}

}  // namespace
