// SPDX-License-Identifier: Apache-2.0
#include "Shared/UTF8.h"

#include "Prelude.h"
#include "RandomSteps.h"
#include "Shared/Codepoints.h"

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
        if (!hasLoneHalf) {
            ASSERT_EQ(unitsFromUTF8(bytes), units) << step;
        }
    }
}

}  // namespace
}  // namespace pelvor
