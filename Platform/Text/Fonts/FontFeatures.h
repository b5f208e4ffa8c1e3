// SPDX-License-Identifier: Apache-2.0
// The typographic features that a descriptor's settings stand for.
#pragma once

#include <cstdint>
#include <vector>

namespace pelvor {

class NSArray;

/// A feature of a font by its four letters, 'smcp', and its value: 0 off, 1 on.
struct FontFeature {
    std::uint32_t tag;
    std::uint32_t value;
    friend bool operator==(const FontFeature&, const FontFeature&) = default;
};

/// The features that the settings stand for: an array of dictionaries with the keys of NSFontDescriptor.h.
/// What is no such dictionary is passed over. Of two settings of one type the first counts.
std::vector<FontFeature> featuresOfSettings(NSArray* settings);

/// What a level of ligatures switches: 0 those that the script needs, 1 the usual ones, 2 all.
std::vector<FontFeature> featuresOfLigatureLevel(int level);

}  // namespace pelvor
