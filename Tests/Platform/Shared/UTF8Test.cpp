// SPDX-License-Identifier: Apache-2.0
#include "Shared/UTF8.h"

#include "Prelude.h"
#include "RandomSteps.h"
#include "Shared/Codepoints.h"
#include "Shared/WideInstructions.h"

namespace pelvor {
namespace {

// Bit by bit, and a character at a time.
std::string plainUTF8(const std::u16string& units, bool& hasLoneHalf) {
    std::string bytes;
    for (std::size_t i = 0; i < units.size(); i += unitCount(codePointAt(units, i))) {
        char32_t c = codePointAt(units, i);
        if (c >= 0xD800 && c < 0xE000) {
            hasLoneHalf = true;
            c = 0xFFFD;
        }
        const int more = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
        const unsigned marks[] = {0, 0xC0, 0xE0, 0xF0};
        bytes += static_cast<char>(marks[more] | c >> 6 * more);
        for (int k = more - 1; k >= 0; --k) bytes += static_cast<char>(0x80 | (c >> 6 * k & 0x3F));
    }
    return bytes;
}

TEST(UTF8Test, RandomStepsOfAllKindsOfTextAgreeWithAPlainForm) {
    std::mt19937 random(7);
    auto below = [&](unsigned bound) { return static_cast<unsigned>(random() % bound); };
    const unsigned kinds[][2] = {
        {0, 0x80}, {0x80, 0x780}, {0x800, 0x5000}, {0x10000, 0x100000}, {0xD800, 0x800}};
    for (int step = 0; step < randomSteps(2000); ++step) {
        std::u16string units;
        // Runs of one kind, up to what crosses the pieces that are written at a time.
        for (unsigned runs = below(6); runs > 0; --runs) {
            const auto& [first, count] = kinds[below(step % 2 ? 5 : 4)];
            for (unsigned size = below(step % 50 ? 40 : 1500); size > 0; --size)
                appendCodepoint(units, first + below(count));
        }
        bool hasLoneHalf = false;
        const std::string bytes = plainUTF8(units, hasLoneHalf);
        ASSERT_EQ(utf8FromUnitsMending(units), bytes) << step;
        ASSERT_EQ(utf8FromUnits(units), hasLoneHalf ? std::nullopt : std::optional(bytes)) << step;
        if (hasLoneHalf) continue;
        ASSERT_EQ(unitsFromUTF8(bytes), units) << step;
        PlainInstructionsScope plain;
        ASSERT_EQ(unitsFromUTF8(bytes), units) << step;
    }
}

// ICU tells what is ill-formed. The characters stand at every place of the blocks that are decoded at a time,
// among others of one to four bytes, and where the text ends.
TEST(UTF8Test, RefusesWhatIsIllFormedAtEveryPlaceOfABlock) {
    const std::string_view fillings[] = {"a", "\xC3\xA9", "\xE6\xBC\xA2", "\xF0\x9F\x90\x88"};
    for (unsigned lead = 0x80; lead < 0x100; ++lead)
        for (unsigned second = 0; second < 0x100; ++second)
            for (const unsigned last : {0x7Fu, 0x80u, 0xC0u}) {
                const char bytes[] = {static_cast<char>(lead), static_cast<char>(second),
                                      static_cast<char>(last), static_cast<char>(last)};
                const std::string_view filling = fillings[(lead + second / 4) % 4];
                std::string text;
                while (text.size() < (lead + second) % 36) text += filling;
                text.append(bytes, 1 + second % 4);
                for (const std::size_t more : {0, 20, 60}) {
                    for (std::size_t i = 0; i < more; i += filling.size()) text += filling;
                    const std::u16string mended = unitsFromUTF8Mending(text);
                    const bool isValid = mended.find(kReplacementCharacter) == mended.npos;
                    const auto expected = isValid ? std::optional(mended) : std::nullopt;
                    ASSERT_EQ(unitsFromUTF8(text), expected) << ::testing::PrintToString(text);
                    PlainInstructionsScope plain;
                    ASSERT_EQ(unitsFromUTF8(text), expected) << ::testing::PrintToString(text);
                }
            }
}

}  // namespace
}  // namespace pelvor
