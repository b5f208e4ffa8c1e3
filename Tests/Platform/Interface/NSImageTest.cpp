// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSImage.h"

#include "Interface/InterfaceLibrary.h"
#include "InterfaceScope.h"
#include "Text/NSColor.h"
#include "Text/NSGraphicsContext.h"

namespace {

// Two pixels by two: red and green above blue and black.
NSData* fourColors() {
    auto context = NSGraphicsContext::initWithImageSize_scale({2, 2}, 1);
    const auto paint = [&](NSColor* color, NSPoint place) {
        context->setColor(color);
        context->fillRect({place, {1, 1}});
    };
    paint(NSColor::redColor(), {0, 0});
    paint(NSColor::greenColor(), {1, 0});
    paint(NSColor::blueColor(), {0, 1});
    paint(NSColor::blackColor(), {1, 1});
    return context->dataWithReason(nullptr);
}

constexpr std::uint32_t kRed = 0xFF0000, kGreen = 0x00FF00, kBlue = 0x0000FF;

extern Library imageTestLibrary;

class Shower final : public NSView {
    PELVOR_CLASS(Shower, NSView);
    PELVOR_INHERITED_CREATORS(initWithFrame);

  public:
    bool flipped = false;
    NSRect from;
    Retained<NSImage> image;
    bool isFlipped() override { return flipped; }
    void drawRect(NSRect) override {
        image->drawInRect_fromRect_operation_fraction(bounds(), from, NSCompositeSourceOver, 1);
    }
};
PELVOR_DEFINE_CLASS(Shower, imageTestLibrary) {}
constexpr Library* kDependencies[] = {&interfaceLibrary};
constinit Library imageTestLibrary{"TestImages", kDependencies, kClassesOf<Shower>, {}};

TEST(NSImage, StandsUprightInFlippedAndPlainViewsAndShowsItsParts) {
    struct Row {
        const char* name;
        bool isFlipped;
        NSRect from;
        NSPoint place;  // from the upper left corner
        std::uint32_t color;
    };
    for (const Row& row : {Row{"upper left, plain", false, {}, {2, 2}, kRed},
                           Row{"lower left, plain", false, {}, {2, 38}, kBlue},
                           Row{"upper left, flipped", true, {}, {2, 2}, kRed},
                           Row{"lower left, flipped", true, {}, {2, 38}, kBlue},
                           Row{"right half", true, {{2, 0}, {2, 4}}, {38, 2}, kGreen},
                           Row{"lower half", false, {{0, 0}, {4, 2}}, {2, 38}, kBlue}}) {
        InterfaceScope screen;
        auto window = screen.window({{10, 10}, {40, 40}});
        auto view = Shower::initWithFrame({{0, 0}, {40, 40}});
        view->flipped = row.isFlipped;
        view->from = row.from;
        view->image = NSImage::initWithData(fourColors());
        view->image->setSize({4, 4});
        window->contentView()->addSubview(view);
        screen.turn();
        const float y = row.isFlipped ? row.place.y : 40 - row.place.y;
        EXPECT_EQ(screen.pixel(view, {row.place.x, y}), row.color) << row.name;
    }
}

TEST(NSImage, IsFoundByItsNameAndRefusesOtherData) {
    InterfaceScope screen;
    auto image = NSImage::initWithData(fourColors());
    EXPECT_EQ(image->size(), (NSSize{2, 2}));
    EXPECT_TRUE(image->setName(u"Four"_ns));
    EXPECT_EQ(NSImage::imageNamed(u"Four"_ns), image);
    EXPECT_FALSE(NSImage::initWithData(fourColors())->setName(u"Four"_ns)) << "another image has the name";
    EXPECT_TRUE(image->setName(nullptr));
    EXPECT_EQ(NSImage::imageNamed(u"Four"_ns), nullptr);
    EXPECT_EQ(NSImage::initWithData(NSData::dataWithBytes_length("text", 4)), nullptr);
    EXPECT_EQ(NSImage::initWithContentsOfFile(u"/no/such.png"_ns), nullptr);
}

}  // namespace
