// SPDX-License-Identifier: Apache-2.0
// Tests of drawing: images read back pixel by pixel, PDF documents by their text and structure.
#include "Text/NSGraphicsContext.h"

#include <cairo.h>

#include "Prelude.h"
#include "TemporaryFolder.h"
#include "Text/Drawing/Canvas.h"
#include "Text/Drawing/GlyphDrawing.h"
#include "Text/NSColor.h"
#include "Text/NSFont.h"

namespace {

// The pixels of PNG data.
class Pixels {
  public:
    explicit Pixels(NSData* png) {
        auto rest = png->span();
        auto read = [](void* from, unsigned char* data, unsigned length) {
            auto& bytes = *static_cast<std::span<const std::byte>*>(from);
            std::memcpy(data, bytes.data(), length);
            bytes = bytes.subspan(length);
            return CAIRO_STATUS_SUCCESS;
        };
        _surface = cairo_image_surface_create_from_png_stream(read, &rest);
    }
    ~Pixels() { cairo_surface_destroy(_surface); }
    Pixels(const Pixels&) = delete;

    int width() const { return cairo_image_surface_get_width(_surface); }
    std::uint32_t at(int x, int y) const {
        std::uint32_t pixel;
        const int stride = cairo_image_surface_get_stride(_surface);
        std::memcpy(&pixel, cairo_image_surface_get_data(_surface) + y * stride + 4 * x, 4);
        return pixel;
    }
    // The sum of opacities in a column, in whole pixels.
    double inkOf(int x) const {
        double ink = 0;
        for (int y = 0; y < cairo_image_surface_get_height(_surface); ++y) ink += (at(x, y) >> 24) / 255.0;
        return ink;
    }
    // Where the ink stands on average.
    double middle() const {
        double ink = 0, moment = 0;
        for (int x = 0; x < width(); ++x) {
            ink += inkOf(x);
            moment += inkOf(x) * x;
        }
        return moment / ink;
    }

  private:
    cairo_surface_t* _surface;
};

Pixels pixelsOf(NSGraphicsContext* context) { return Pixels(context->dataWithReason(nullptr)); }

void drawText(NSGraphicsContext* context, NSFont* font, std::u16string_view text, NSPoint origin,
              const char (&script)[5] = "Latn", bool isRightToLeft = false) {
    const auto length = static_cast<NSUInteger>(text.size());
    std::vector<PlacedGlyph> glyphs;
    shape({text.data(), length, 0, length, font, scriptTag(script), nullptr, isRightToLeft, 1}, glyphs);
    drawGlyphs(context, {font, glyphs, text.data(), {0, length}, isRightToLeft, 0, 1}, origin);
}

TEST(NSGraphicsContextTest, DrawsRectanglesInTheirPlacesAndColours) {
    auto context = NSGraphicsContext::initWithImageSize_scale({20, 10}, 2);
    NSGraphicsContext::setCurrentContext(context);
    NSColor::redColor()->set();
    NSGraphicsContext::setCurrentContext(nullptr);
    context->fillRect({{1, 1}, {3, 3}});
    context->saveGraphicsState();
    context->setColor(NSColor::blueColor());
    context->clipToRect({{10, 0}, {2, 10}});
    context->translateXBy_yBy(10, 5);
    context->scaleXBy_yBy(2, 1);
    context->fillRect({{0, 0}, {5, 1}});
    context->restoreGraphicsState();
    context->restoreGraphicsState();  // nothing is left to restore
    context->strokeRect_width({{14, 1}, {5, 5}}, 1);
    context->fillRect({{NAN, 0}, {1, 1}});
    context->setColor(nullptr);
    context->strokeLineFromPoint_toPoint_width({0, 8.5f}, {20, 8.5f}, 1);
    const Pixels pixels = pixelsOf(context);
    EXPECT_EQ(pixels.width(), 40);
    EXPECT_EQ(pixels.at(2, 2), 0xFFFF0000);
    EXPECT_EQ(pixels.at(1, 1), 0u);
    EXPECT_EQ(pixels.at(8, 8), 0u);
    EXPECT_EQ(pixels.at(20, 10), 0xFF0000FF);
    EXPECT_EQ(pixels.at(24, 10), 0u);  // clipped away
    EXPECT_EQ(pixels.at(28, 2), 0xFFFF0000);
    EXPECT_EQ(pixels.at(30, 4), 0u);  // inside the frame
    EXPECT_EQ(pixels.at(38, 5), 0u);
    EXPECT_EQ(pixels.at(0, 16), 0xFF000000);
}

// What is blended from images of glyphs looks as what Cairo fills, which it does for other operators.
TEST(NSGraphicsContextTest, ImagesOfGlyphsLookLikeTheirOutlines) {
    auto draw = [](cairo_operator_t way, NSFont* font, float x, bool isClipped) {
        auto context = NSGraphicsContext::initWithImageSize_scale({70, 30}, 1.5F);
        context->setColor(NSColor::colorWithCalibratedWhite_alpha(0.9F, 1));
        context->fillRect({{0, 0}, {70, 30}});
        if (isClipped) context->clipToRect({{10.3F, 8.2F}, {30, 10}});
        cairo_set_operator(context->canvas().page(), way);
        context->setColor(NSColor::colorWithCalibratedRed_green_blue_alpha(0.6F, 0.1F, 0.2F, 0.8F));
        drawText(context, font, u"Agj\u00C5", {x, 20});
        return context;
    };
    for (const char16_t* name : {u"DejaVuSans", u"DejaVuSans+Oblique"})
        for (float x : {5.0F, 5.5F})
            for (bool isClipped : {false, true}) {
                SCOPED_TRACE(x);
                NSFont* font = NSFont::fontWithName_size(NSString::of(name), 15);
                auto blended = draw(CAIRO_OPERATOR_OVER, font, x, isClipped);
                auto filled = draw(CAIRO_OPERATOR_ATOP, font, x, isClipped);
                const Pixels one = pixelsOf(blended), other = pixelsOf(filled);
                double difference = 0;
                for (int row = 0; row < 45; ++row)
                    for (int column = 0; column < 105; ++column)
                        for (int shift = 0; shift < 32; shift += 8)
                            difference += std::abs(static_cast<int>((one.at(column, row) >> shift) & 255) -
                                                   static_cast<int>((other.at(column, row) >> shift) & 255));
                // Advances fall between quarters of a pixel.
                EXPECT_LT(difference / (45 * 105 * 4), 0.9);
                EXPECT_GT(one.inkOf(20), 40) << "the background is there";
            }
}

TEST(NSGraphicsContextTest, PlacesGlyphsBetweenPixels) {
    NSFont* font = NSFont::fontWithName_size(u"DejaVuSans"_ns, 40);
    auto draw = [&](float x) {
        auto context = NSGraphicsContext::initWithImageSize_scale({40, 50}, 1);
        drawText(context, font, u"l", {x, 40});
        return context;
    };
    auto first = draw(10), second = draw(10.5f);
    const Pixels whole = pixelsOf(first), shifted = pixelsOf(second);
    EXPECT_NEAR(shifted.middle() - whole.middle(), 0.5, 0.02);
    EXPECT_EQ(whole.at(5, 25), 0u);
}

TEST(NSGraphicsContextTest, DrawsEveryKindOfFace) {
    for (const char* name :
         {"DejaVuSans+Bold", "DejaVuSans+Oblique", "NotoSansCJKsc-Regular", "NotoColorEmoji"}) {
        NSFont* font = NSFont::fontWithName_size(NSString::stringWithUTF8String(name), 30);
        ASSERT_TRUE(font) << name;
        auto context = NSGraphicsContext::initWithImageSize_scale({50, 50}, 1);
        drawText(context, font, std::strstr(name, "Emoji") ? u"\U0001F600" : u"E", {5, 40});
        const Pixels pixels = pixelsOf(context);
        double ink = 0;
        bool isColoured = false;
        for (int x = 0; x < 50; ++x) {
            ink += pixels.inkOf(x);
            isColoured |= (pixels.at(x, 25) & 0xFFFFFF) != 0;
        }
        EXPECT_GT(ink, 100) << name;
        EXPECT_EQ(isColoured, std::strstr(name, "Emoji") != nullptr) << name;
    }
}

std::string textOf(NSData* data) { return {static_cast<const char*>(data->bytes()), data->length()}; }

bool contains(NSData* data, std::string_view wanted) {
    return textOf(data).find(wanted) != std::string::npos;
}

// What a program that reads the document finds.
std::string readByTool(const TemporaryFolder& folder, NSData* pdf, const std::string& tool) {
    folder.write("page.pdf", textOf(pdf));
    const std::string command =
        tool + " '" + folder.path("page.pdf") + "' - 2>&1 > '" + folder.path("text") + "'";
    return std::system(command.c_str()) ? "(the tool failed)" : folder.read("text");
}

TEST(NSGraphicsContextTest, MakesDocumentsWhoseTextCanBeCopied) {
    if (std::system("pdftotext -v 2>/dev/null")) GTEST_SKIP() << "needs pdftotext";
    auto pages = NSGraphicsContext::initForPDFWithTitle(u"Ein Bl\u00E4ttchen"_ns);
    NSFont* latin = NSFont::fontWithName_size(u"DejaVuSerif"_ns, 14);
    for (int number = 0; number < 2; ++number) {
        pages->beginPageWithSize({300, 200});
        drawText(pages, latin, number ? u"second page" : u"office \u00E9tage", {20, 50});
    }
    drawText(pages, NSFont::fontWithName_size(u"NotoSansHebrew-Regular"_ns, 14), u"\u05E9\u05DC\u05D5\u05DD",
             {20, 100}, "Hebr", true);
    pages->addLink_inRect(u"https://example.org/a(b)'\u00FC"_ns, {{20, 30}, {100, 20}});
    EXPECT_EQ(pages->numberOfPages(), 2u);
    NSData* pdf = pages->dataWithReason(nullptr);
    ASSERT_TRUE(pdf);
    TemporaryFolder folder;
    const std::string text = readByTool(folder, pdf, "pdftotext");
    EXPECT_THAT(text, AllOf(HasSubstr("office \u00E9tage"), HasSubstr("second page"),
                            HasSubstr("\u05E9\u05DC\u05D5\u05DD")));
    EXPECT_TRUE(contains(pdf, "(https://example.org/a%28b%29%27%C3%BC)"));
    // The fonts are subsets: a mark stands before their names.
    EXPECT_TRUE(contains(pdf, "+DejaVuSerif\n"));
    pages->fillRect({{0, 0}, {1, 1}});  // too late, and harmless
}

TEST(NSGraphicsContextTest, TakesPicturesAndSaysWhyNot) {
    auto small = NSGraphicsContext::initWithImageSize_scale({2, 1}, 1);
    small->setColor(NSColor::greenColor());
    small->fillRect({{0, 0}, {1, 1}});
    NSData* png = small->dataWithReason(nullptr);
    EXPECT_EQ(NSGraphicsContext::sizeOfImage(png), (NSSize{2, 1}));
    auto large = NSGraphicsContext::initWithImageSize_scale({20, 10}, 1);
    EXPECT_TRUE(large->drawImage_inRect_reason(png, {{0, 0}, {20, 10}}, nullptr));
    // The start of a JPEG file: a frame of 3 times 2 pixels.
    const std::string jpeg("\xFF\xD8\xFF\xE0\0\4ab\xFF\xC0\0\x0B\x08\0\2\0\3\1\1\x11\0\xFF\xD9", 23);
    auto dataOf = [](std::string_view bytes) {
        return NSData::dataWithBytes_length(bytes.data(), static_cast<NSUInteger>(bytes.size()));
    };
    EXPECT_EQ(NSGraphicsContext::sizeOfImage(dataOf(jpeg)), (NSSize{3, 2}));
    auto pages = NSGraphicsContext::initForPDFWithTitle(nullptr);
    auto whyNot = [&](NSGraphicsContext* context, std::string_view picture, NSRect rect = {{0, 0}, {5, 5}}) {
        NSString* reason = u"drawn"_ns;
        const bool isDrawn = context->drawImage_inRect_reason(dataOf(picture), rect, &reason);
        EXPECT_EQ(isDrawn, reason == u"drawn"_ns);
        return reason->toUTF8();
    };
    EXPECT_EQ(whyNot(pages, jpeg), "there is no page to draw on");
    pages->beginPageWithSize({50, 50});
    EXPECT_EQ(whyNot(pages, jpeg), "drawn");
    EXPECT_EQ(whyNot(large, jpeg), "JPEG pictures are drawn only in PDF documents");
    EXPECT_EQ(whyNot(large, "GIF89a"), "the picture is neither PNG nor JPEG");
    EXPECT_EQ(whyNot(large, jpeg.substr(0, 8)), "JPEG pictures are drawn only in PDF documents");
    EXPECT_EQ(whyNot(pages, jpeg.substr(0, 8)), "the picture's header is broken");
    EXPECT_THAT(whyNot(large, textOf(png).substr(0, 40)), StartsWith("the picture is broken: "));
    EXPECT_EQ(whyNot(large, textOf(png), {{0, 0}, {0, 5}}), "the rectangle is empty");
    std::string huge = textOf(png);
    huge.replace(16, 8, "\0\0\x7F\xFF\0\0\x7F\xFF", 8);
    EXPECT_EQ(whyNot(large, huge), "the picture is too large");
    EXPECT_TRUE(contains(pages->dataWithReason(nullptr), "/DCTDecode"));
    EXPECT_EQ(pixelsOf(large).at(2, 5), 0xFF00FF00);
}

TEST(NSGraphicsContextTest, SaysWhyAFileCannotBeWritten) {
    auto context = NSGraphicsContext::initWithImageSize_scale({1, 1}, 1);
    NSString* reason = nullptr;
    EXPECT_FALSE(context->writeToFile_reason(u"/no/such/folder/a.png"_ns, &reason));
    EXPECT_EQ(reason->toUTF8(),
              "the file \"/no/such/folder/a.png\" cannot be written: the enclosing folder does not exist");
    EXPECT_FALSE(context->writeToFile_reason(u"/dev/full"_ns, &reason));
    EXPECT_THAT(reason->toUTF8(), EndsWith("there is no room left on the disk"));
    TemporaryFolder folder;
    EXPECT_TRUE(context->writeToFile_reason(NSString::ofUTF8(folder.path("a.png")), &reason));
    EXPECT_THAT(folder.read("a.png"), StartsWith("\x89PNG"));
    for (NSSize size : {NSSize{0, 1}, NSSize{40000, 1}, NSSize{NAN, 1}})
        EXPECT_THAT(RAISED(NSGraphicsContext::initWithImageSize_scale(size, 1)),
                    HasSubstr("1 to 32767 pixels"));
}

TEST(NSColorTest, KeepsComponentsInBoundsAndMixes) {
    NSColor* color = NSColor::colorWithCalibratedRed_green_blue_alpha(2, -1, NAN, 0.5f);
    EXPECT_EQ(shown(color), "NSColor 1 0 0 0.5");
    EXPECT_TRUE(color->isEqual(NSColor::redColor()->colorWithAlphaComponent(0.5f)));
    EXPECT_EQ(color->hash(), NSColor::redColor()->colorWithAlphaComponent(0.5f)->hash());
    EXPECT_EQ(shown(NSColor::redColor()->blendedColorWithFraction_ofColor(0.25f, NSColor::blueColor())),
              "NSColor 0.75 0 0.25 1");
}

// It lies on whole pixels wherever it begins, and is as wide as it was asked to be.
TEST(NSGraphicsContextTest, DrawsCrispWaves) {
    for (const float scale : {0.5F, 1.0F, 1.25F, 2.0F, 4.0F}) {
        const auto wave = [scale](NSPoint from) {
            auto context = NSGraphicsContext::initWithImageSize_scale({40, 12}, scale);
            context->strokeWaveFromPoint_length(from, 20);
            const Pixels pixels = pixelsOf(context);
            std::vector<std::uint32_t> all;
            for (int y = 0; y < static_cast<int>(12 * scale); ++y)
                for (int x = 0; x < pixels.width(); ++x) all.push_back(pixels.at(x, y));
            const int first = static_cast<int>(4 * scale), last = static_cast<int>(24 * scale) - 1;
            EXPECT_TRUE(pixels.inkOf(first) > 0.5 && pixels.inkOf(last) > 0.5) << scale;
            EXPECT_TRUE(pixels.inkOf(first - 1) == 0 && pixels.inkOf(last + 1) == 0) << scale;
            return all;
        };
        EXPECT_EQ(wave({4, 4}), wave({4 + 0.4F / scale, 4 + 0.9F / scale})) << scale;
    }
    auto context = NSGraphicsContext::initWithImageSize_scale({8, 8}, 1);
    context->scaleXBy_yBy(1e6F, 1e6F);
    context->strokeWaveFromPoint_length({0, 0}, 1e-6F);
    context->fillRect({{4e-6F, 0}, {1e-6F, 8e-6F}});
    EXPECT_GT(pixelsOf(context).inkOf(4), 4) << "at any scale, the page can still be drawn on";
}

}  // namespace
