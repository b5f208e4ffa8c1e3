// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSMutableAttributedString.h"
#include "LaidOutText.h"
#include "Prelude.h"
#include "Text/NSAttributedString-Drawing.h"
#include "Text/NSColor.h"
#include "Text/NSGraphicsContext.h"
#include "Text/NSString-Drawing.h"
#include "Text/NSTextAttachment.h"
#include "Text/NSTextAttachmentCell.h"
#include "Text/TextLibrary.h"

namespace {

class LayoutDrawing : public testing::Test {
  protected:
    ~LayoutDrawing() { NSGraphicsContext::setCurrentContext(nullptr); }

    // The picture that the function draws.
    template <class Draw>
    static NSData* drawn(Draw draw) {
        auto context = NSGraphicsContext::initWithImageSize_scale({120, 40}, 1);
        NSGraphicsContext::setCurrentContext(context);
        draw();
        NSGraphicsContext::setCurrentContext(nullptr);
        NSData* picture = context->dataWithReason(nullptr);
        EXPECT_TRUE(picture);
        return picture;
    }
    static NSData* drawnText(NSString* string, NSDictionary* attributes, NSRange range) {
        LaidOutText text(string, attributes);
        return drawn([&] {
            text.layoutManager->drawBackgroundForGlyphRange_atPoint(range, {5, 5});
            text.layoutManager->drawGlyphsForGlyphRange_atPoint(range, {5, 5});
        });
    }

  private:
    AutoreleasePool _pool;
};

TEST_F(LayoutDrawing, DrawsTheGlyphsOfTheRange) {
    NSData* nothing = drawn([] {});
    NSData* whole = drawnText(u"ab cd"_ns, plain(), {0, 5});
    NSData* start = drawnText(u"ab cd"_ns, plain(), {0, 2});
    EXPECT_FALSE(whole->isEqual(nothing));
    EXPECT_FALSE(whole->isEqual(start));
    EXPECT_TRUE(start->isEqual(drawnText(u"ab"_ns, plain(), {0, 2})));
    EXPECT_TRUE(nothing->isEqual(drawnText(u"ab cd"_ns, plain(), {2, 1}))) << "a blank";
    EXPECT_FALSE(drawnText(u"ab\ncd"_ns, plain(), {0, 5})->isEqual(drawnText(u"ab\ncd"_ns, plain(), {0, 2})))
        << "a paragraph that was not laid out before";
    EXPECT_TRUE(whole->isEqual(drawn([] { drawAtPoint_withAttributes(u"ab cd"_ns, {5, 5}, plain()); })));
    auto same = NSAttributedString::initWithString_attributes(u"ab cd"_ns, plain());
    EXPECT_TRUE(whole->isEqual(drawn([&] { drawAtPoint(same, {5, 5}); })));
    EXPECT_TRUE(whole->isEqual(drawn([&] { drawInRect(same, {{5, 5}, {100, 30}}); })));
}

TEST_F(LayoutDrawing, DrawsTheHyphenWithItsLine) {
    LaidOutText text(u"aaaa\u00ADbbbb"_ns, plain(), {{50, 1.0e7F}});
    const auto firstLine = [&](NSRange range) {
        return drawn([&] {
            NSGraphicsContext::currentContext()->clipToRect(text.lineRect(0));
            text.layoutManager->drawGlyphsForGlyphRange_atPoint(range, {0, 0});
        });
    };
    EXPECT_TRUE(firstLine(text.lineRange(0))->isEqual(firstLine({0, 9})));
    EXPECT_FALSE(firstLine({0, 4})->isEqual(firstLine({0, 9}))) << "without the hyphen";
}

TEST_F(LayoutDrawing, DrawsLinesAndColours) {
    NSData* before = drawnText(u"ab"_ns, plain(), {0, 2});
    std::set<std::string> pictures;
    const auto add = [&](NSString* name, id value) {
        auto attributes = plain()->mutableCopy();
        attributes->setObject_forKey(value, name);
        NSData* picture = drawnText(u"ab"_ns, attributes, {0, 2});
        EXPECT_FALSE(picture->isEqual(before)) << name;
        pictures.emplace(static_cast<const char*>(picture->bytes()), picture->length());
    };
    for (int style : {NSUnderlineStyleSingle, NSUnderlineStyleThick, NSUnderlineStyleDouble})
        add(NSUnderlineStyleAttributeName, NSNumber::numberWithInt(style));
    add(NSStrikethroughStyleAttributeName, NSNumber::numberWithInt(NSUnderlineStyleSingle));
    add(NSForegroundColorAttributeName, NSColor::redColor());
    add(NSBackgroundColorAttributeName, NSColor::redColor());
    add(NSObliquenessAttributeName, NSNumber::numberWithDouble(0.3));
    EXPECT_EQ(pictures.size(), 7u) << "each looks another way";
}

extern Library notingCellLibrary;

class NotingCell final : public NSTextAttachmentCell {
    PELVOR_CLASS(NotingCell, NSTextAttachmentCell);

  public:
    NSSize cellSize() override { return {20, 10}; }
    NSPoint cellBaselineOffset() override { return {0, -2}; }
    void drawWithFrame_inView_characterIndex_layoutManager(NSRect frame, id, NSUInteger index,
                                                           NSLayoutManager* layoutManager) override {
        notes += shown(frame, index) + "\n";
        // What is drawn may ask the layout about other lines.
        for (NSUInteger unit = 0; unit < layoutManager->numberOfGlyphs(); ++unit)
            layoutManager->locationForGlyphAtIndex(unit);
        if (inside) drawAtPoint(inside, frame.origin);
        if (!fails) return;
        NSGraphicsContext::currentContext()->saveGraphicsState();
        NSGraphicsContext::currentContext()->translateXBy_yBy(9, 9);
        throw NSException(NSGenericException, "cell " + std::to_string(index));
    }
    std::string notes;
    bool fails = false;
    Retained<NSAttributedString> inside;
};
PELVOR_DEFINE_CLASS(NotingCell, notingCellLibrary) {}
constexpr Library* kDependencies[] = {&textLibrary};
constinit Library notingCellLibrary{"TestNotingCell", kDependencies, kClassesOf<NotingCell>, {}};

TEST_F(LayoutDrawing, HasCellsDrawAttachments) {
    auto attachment = NSTextAttachment::init();
    auto cell = make<NotingCell>();
    attachment->setAttachmentCell(cell);
    auto string = NSMutableString::init();
    string->appendString(u"\uFFFCa\uFFFC"_ns);
    for (int line = 0; line < 100; ++line) string->appendString(u"\nx"_ns);
    LaidOutText text(string, plain());
    text.storage->addAttribute_value_range(NSAttachmentAttributeName, attachment, {0, 3});
    drawn([&] { text.layoutManager->drawGlyphsForGlyphRange_atPoint({0, string->length()}, {5, 5}); });
    const auto frame = [&](NSUInteger index) {
        return shown(NSOffsetRect(text.layoutManager->attachmentRectForGlyphAtIndex(index), 5, 5), index) +
               "\n";
    };
    EXPECT_EQ(cell->notes, frame(0) + frame(2));
    EXPECT_EQ(text.x(1), 20);
}

TEST_F(LayoutDrawing, DrawsOnAfterACellThatFails) {
    const auto drawnWith = [](bool fails) {
        LaidOutText text(u"\uFFFC\uFFFCa\nb"_ns, plain());
        auto attachment = NSTextAttachment::init();
        auto cell = make<NotingCell>();
        cell->fails = fails;
        attachment->setAttachmentCell(cell);
        text.storage->addAttribute_value_range(NSAttachmentAttributeName, attachment, {0, 2});
        return drawn([&] {
            EXPECT_EQ(RAISED(text.layoutManager->drawGlyphsForGlyphRange_atPoint({0, 5}, {5, 5})),
                      fails ? "NSGenericException: cell 0" : "");
            NSGraphicsContext::currentContext()->fillRect({{100, 0}, {5, 5}});
        });
    };
    EXPECT_TRUE(drawnWith(true)->isEqual(drawnWith(false)))
        << "the rest of the line, the next line, and what the caller draws";
}

TEST_F(LayoutDrawing, LetsACellDrawAStringInsideAString) {
    auto string = NSMutableAttributedString::init();
    string->mutableString()->appendString(u"\uFFFCa"_ns);
    auto attachment = NSTextAttachment::init();
    auto cell = make<NotingCell>();
    attachment->setAttachmentCell(cell);
    string->addAttribute_value_range(NSAttachmentAttributeName, attachment, {0, 1});
    NSData* empty = drawn([&] { drawAtPoint(string, {5, 5}); });
    cell->inside = NSAttributedString::initWithString(u"b"_ns);
    NSData* filled = drawn([&] { drawAtPoint(string, {5, 5}); });
    EXPECT_FALSE(filled->isEqual(empty));
    cell->inside = nullptr;
    EXPECT_TRUE(drawn([&] { drawAtPoint(string, {5, 5}); })->isEqual(empty));
}

TEST_F(LayoutDrawing, MeasuresStrings) {
    NSDictionary* attributes = plain();
    const NSSize line = sizeWithAttributes(u"Hamburg"_ns, attributes);
    EXPECT_NEAR(
        line.width,
        LaidOutText(u"Hamburg"_ns, attributes).layoutManager->caretRectForCharacterAtIndex(7).origin.x, 0.02);
    EXPECT_EQ(sizeWithAttributes(u"Hamburg\nx"_ns, attributes), (NSSize{line.width, 2 * line.height}));
    EXPECT_EQ(sizeWithAttributes(u""_ns, attributes), NSZeroSize);
    const auto box = [&](NSString* string, float width, int options) {
        return boundingRectWithSize_options_attributes(string, {width, 1.0e6F}, options, attributes);
    };
    EXPECT_EQ(box(u"ab cd"_ns, 20, 1).size.height, 2 * box(u"ab"_ns, 20, 1).size.height);
    EXPECT_NEAR(NSMinY(box(u"ab"_ns, 20, 0)), NSFont::fontWithName_size(u"DejaVuSans"_ns, 12)->descender(),
                0.02)
        << "below the baseline";
}

}  // namespace
