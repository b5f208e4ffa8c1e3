// SPDX-License-Identifier: Apache-2.0
// The test files of the Unicode data hold through lines, carets and the order of glyphs. Without the files
// (they are in Debian's package unicode-data) the tests are skipped.
#include <fstream>

#include "LaidOutText.h"
#include "Prelude.h"

namespace {

constexpr const char* kFolder = "/usr/share/unicode/";

// A line of a file of breaks: "÷ 0061 × 0308 ÷ 0020 ÷".
struct Sample {
    std::u16string text;
    std::vector<NSUInteger> breaks;
    std::string line;
};

void append(std::u16string& text, unsigned long character) {
    if (character > 0xFFFF) {
        text += static_cast<char16_t>(0xD7C0 + (character >> 10));
        text += static_cast<char16_t>(0xDC00 + (character & 0x3FF));
    } else {
        text += static_cast<char16_t>(character);
    }
}

std::vector<Sample> samples(const char* name) {
    std::vector<Sample> all;
    std::ifstream file(std::string(kFolder) + "auxiliary/" + name);
    for (std::string line; std::getline(file, line);) {
        Sample sample;
        sample.line = line;
        std::istringstream words(line.substr(0, line.find('#')));
        for (std::string word; words >> word;) {
            if (word == "÷")
                sample.breaks.push_back(static_cast<NSUInteger>(sample.text.size()));
            else if (word != "×")
                append(sample.text, std::stoul(word, nullptr, 16));
        }
        if (!sample.text.empty()) all.push_back(sample);
    }
    return all;
}

class UnicodeFilesTest : public testing::Test {
    AutoreleasePool _pool;
};

// The width of each unit's piece, at the piece's first unit.
std::vector<float> widths(LaidOutText& text) {
    std::vector<float> all(text.storage->length());
    for (NSUInteger unit = 0; unit < all.size();) {
        NSLayoutManager* layout = text.layoutManager;
        const NSRange piece = layout->glyphRangeForCharacterRange_actualCharacterRange({unit, 1}, nullptr);
        all[unit] = layout->boundingRectForGlyphRange_inTextContainer(piece, text.containers[0]).size.width;
        unit = std::max(NSMaxRange(piece), unit + 1);
    }
    return all;
}

bool endsLine(char16_t unit) {
    return (unit >= 0x0A && unit <= 0x0D) || unit == 0x85 || unit == 0x2028 || unit == 0x2029;
}
bool hangs(char16_t unit) {
    return unit == ' ' || unit == 0x3000 || (unit >= 0x2000 && unit <= 0x200A && unit != 0x2007);
}

// In a line as wide as the text before a break, what fits is the text up to the last break that does not make
// it wider.
TEST_F(UnicodeFilesTest, LinesEndAtTheLastBreakThatFits) {
    const auto all = samples("LineBreakTest.txt");
    if (all.empty()) GTEST_SKIP() << "the file is not installed";
    std::size_t checked = 0;
    for (const Sample& sample : all) {
        // ICU has a rule of its own for full stops before digits.
        const auto isStopAndDigit = [](char16_t a, char16_t b) { return a == '.' && b >= '0' && b <= '9'; };
        if (std::adjacent_find(sample.text.begin(), sample.text.end(), isStopAndDigit) != sample.text.end())
            continue;
        AutoreleasePool pool;
        LaidOutText text(NSString::of(sample.text), plain(), {{1.0e6F, 1.0e7F}});
        const std::vector<float> advances = widths(text);
        std::vector<float> ends;  // the width of the text before each break, without blanks at its end
        for (NSUInteger end : sample.breaks) {
            float width = 0, shown = 0;
            for (NSUInteger unit = 0; unit < end; ++unit) {
                width += advances[unit];
                if (!hangs(sample.text[unit])) shown = width;
            }
            ends.push_back(shown);
        }
        for (std::size_t i = 0; i < ends.size() && ends[i] > 0; ++i) {
            text.containers[0]->setContainerSize({ends[i] + 0.1F, 1.0e7F});
            NSUInteger expected = 0;
            for (std::size_t b = 0; b < ends.size() && ends[b] <= ends[i] + 0.05F; ++b) {
                expected = sample.breaks[b];
                if (endsLine(sample.text[expected - 1])) break;
            }
            ++checked;
            ASSERT_EQ(text.lineRange(0).length, expected) << sample.line << "\nin " << ends[i];
        }
    }
    EXPECT_GT(checked, 7000u);
}

TEST_F(UnicodeFilesTest, CaretsStandBetweenCharacters) {
    const auto all = samples("GraphemeBreakTest.txt");
    if (all.empty()) GTEST_SKIP() << "the file is not installed";
    for (const Sample& sample : all) {
        AutoreleasePool pool;
        LaidOutText text(NSString::of(sample.text), plain());
        NSUInteger start = 0;
        for (NSUInteger unit = 0; unit < sample.text.size(); ++unit) {
            if (std::count(sample.breaks.begin(), sample.breaks.end(), unit)) start = unit;
            EXPECT_EQ(text.layoutManager->caretRectForCharacterAtIndex(unit),
                      text.layoutManager->caretRectForCharacterAtIndex(start))
                << sample.line;
            const NSRect line = text.lineRect(unit);
            for (float x = -1; x < 60; x += 2) {
                const NSUInteger hit =
                    text.layoutManager
                        ->characterIndexForPoint_inTextContainer_fractionOfDistanceBetweenInsertionPoints(
                            {x, NSMidY(line)}, text.containers[0], nullptr);
                ASSERT_TRUE(std::count(sample.breaks.begin(), sample.breaks.end(), hit))
                    << sample.line << " " << hit;
            }
        }
    }
    EXPECT_GT(all.size(), 500u);
}

TEST_F(UnicodeFilesTest, GlyphsStandInTheirOrder) {
    std::ifstream file(std::string(kFolder) + "BidiCharacterTest.txt");
    if (!file) GTEST_SKIP() << "the file is not installed";
    std::size_t checked = 0, number = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#' || ++number % 9) continue;
        AutoreleasePool pool;
        std::istringstream fields(line);
        std::string characters, direction, level, levels, order;
        for (std::string* field : {&characters, &direction, &level, &levels, &order})
            std::getline(fields, *field, ';');
        std::u16string units;
        std::istringstream words(characters);
        for (std::string word; words >> word;) append(units, std::stoul(word, nullptr, 16));
        // ICU takes brackets under an override for brackets still, so overrides are left out.
        const auto isLeftOut = [](char16_t unit) {
            return endsLine(unit) || (unit & 0xF800) == 0xD800 || unit == 0x202D || unit == 0x202E;
        };
        if (std::any_of(units.begin(), units.end(), isLeftOut)) continue;
        const auto writingDirection =
            static_cast<NSWritingDirection>(direction == "2" ? -1 : std::stoi(direction));
        LaidOutText text(NSString::of(units), styled([&](NSMutableParagraphStyle* style) {
                             style->setBaseWritingDirection(writingDirection);
                         }));
        const std::vector<float> advances = widths(text);
        std::vector<std::pair<float, int>> places;
        std::vector<int> expected, found;
        for (NSUInteger unit = 0; unit < units.size(); ++unit)
            if (advances[unit] > 0) places.emplace_back(text.x(unit), static_cast<int>(unit));
        std::istringstream indexes(order);
        for (int index; indexes >> index;)
            if (advances[static_cast<std::size_t>(index)] > 0) expected.push_back(index);
        std::sort(places.begin(), places.end());
        for (auto [x, unit] : places) found.push_back(unit);
        ++checked;
        ASSERT_EQ(found, expected) << line << " " << testing::PrintToString(advances)
                                   << testing::PrintToString(places);
    }
    EXPECT_GT(checked, 5000u);
}

}  // namespace
