// SPDX-License-Identifier: Apache-2.0
#include "Text/Fonts/FontFeatures.h"

#include <algorithm>
#include <string_view>

#include "Foundation/NSArray.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "Text/NSFontDescriptor.h"

namespace pelvor {
namespace {

// What a type and a selector of the font feature registry switch. A type that offers one choice of several
// has selector 0 for none of them; the others have pairs of selectors, on and off.
struct Setting {
    int type, selector;
    const char (&feature)[5];
    std::uint32_t value;
};

constexpr Setting kSettings[] = {
    // Ligatures
    {1, 0, "rlig", 1},
    {1, 1, "rlig", 0},
    {1, 2, "liga", 1},
    {1, 3, "liga", 0},
    {1, 4, "dlig", 1},
    {1, 5, "dlig", 0},
    {1, 18, "clig", 1},
    {1, 19, "clig", 0},
    {1, 20, "hlig", 1},
    {1, 21, "hlig", 0},
    // Letter case, as older documents have it
    {3, 3, "smcp", 1},
    // Forms for vertical text
    {4, 0, "vert", 1},
    {4, 1, "vert", 0},
    // Number spacing: all of one width, or each of its own
    {6, 0, "tnum", 1},
    {6, 1, "pnum", 1},
    {6, 2, "twid", 1},
    {6, 3, "qwid", 1},
    // Vertical position: superior and inferior letters, ordinals, inferiors of formulas
    {10, 1, "sups", 1},
    {10, 2, "subs", 1},
    {10, 3, "ordn", 1},
    {10, 4, "sinf", 1},
    // Fractions: one above the other, or aslant
    {11, 1, "afrc", 1},
    {11, 2, "frac", 1},
    // Slashed zero
    {14, 4, "zero", 1},
    {14, 5, "zero", 0},
    // Forms of Chinese characters
    {20, 0, "trad", 1},
    {20, 1, "smpl", 1},
    {20, 2, "jp78", 1},
    {20, 3, "jp83", 1},
    {20, 4, "jp90", 1},
    {20, 10, "tnam", 1},
    {20, 14, "nlck", 1},
    // Number case: old-style and lining figures
    {21, 0, "onum", 1},
    {21, 1, "lnum", 1},
    // Text spacing of wide scripts
    {22, 0, "pwid", 1},
    {22, 1, "fwid", 1},
    {22, 2, "hwid", 1},
    {22, 3, "twid", 1},
    {22, 4, "qwid", 1},
    {22, 5, "palt", 1},
    {22, 6, "halt", 1},
    // Ruby
    {28, 2, "ruby", 1},
    {28, 3, "ruby", 0},
    // Contextual alternatives and swashes
    {36, 0, "calt", 1},
    {36, 1, "calt", 0},
    {36, 2, "swsh", 1},
    {36, 3, "swsh", 0},
    {36, 4, "cswh", 1},
    {36, 5, "cswh", 0},
    // Small and petite capitals in the place of lower-case letters, and in that of capitals
    {37, 1, "smcp", 1},
    {37, 2, "pcap", 1},
    {38, 1, "c2sc", 1},
    {38, 2, "c2pc", 1},
};

// Stylistic sets 1 to 20: selectors 2 and 3 switch the first on and off, 4 and 5 the second …
constexpr int kStylisticSets = 35;

constexpr std::uint32_t tagOf(std::string_view letters) {
    std::uint32_t tag = 0;
    for (char letter : letters) tag = tag << 8 | static_cast<unsigned char>(letter);
    return tag;
}

void addFeature(std::vector<FontFeature>& features, int type, int selector) {
    if (type == kStylisticSets && selector >= 2 && selector < 42) {
        const int number = selector / 2;
        const char letters[] = {'s', 's', static_cast<char>('0' + number / 10),
                                static_cast<char>('0' + number % 10)};
        features.push_back({tagOf({letters, 4}), selector % 2 == 0});
    }
    for (const Setting& setting : kSettings)
        if (setting.type == type && setting.selector == selector)
            features.push_back({tagOf({setting.feature, 4}), setting.value});
}

NSNumber* numberFor(id setting, NSString* key) {
    auto* dictionary = cast<NSDictionary>(setting);
    return dictionary ? cast<NSNumber>(dictionary->objectForKey(key)) : nullptr;
}

}  // namespace

std::vector<FontFeature> featuresOfSettings(NSArray* settings) {
    std::vector<FontFeature> features;
    std::vector<int> seen;
    for (id setting : settings) {
        NSNumber* type = numberFor(setting, NSFontFeatureTypeIdentifierKey);
        NSNumber* selector = numberFor(setting, NSFontFeatureSelectorIdentifierKey);
        if (!type || !selector || std::count(seen.begin(), seen.end(), type->intValue())) continue;
        seen.push_back(type->intValue());
        addFeature(features, type->intValue(), selector->intValue());
    }
    return features;
}

std::vector<FontFeature> featuresOfLigatureLevel(int level) {
    if (level <= 0) return {{tagOf("liga"), 0}, {tagOf("clig"), 0}};
    if (level == 1) return {};
    return {{tagOf("dlig"), 1}, {tagOf("hlig"), 1}};
}

}  // namespace pelvor
