// SPDX-License-Identifier: Apache-2.0
#include "Private/WhiteSpace.h"
#include "Foundation/NSCharacterSet.h"
#include "Shared/Vectors.h"

namespace pelvor {
namespace {

// Of up to sixteen units.
struct Kinds {
    unsigned whiteSpace, lineEnds;
};

Kinds kindsOf(const unichar* units, std::size_t count) {
    static const std::uint8_t* const members =
        NSCharacterSet::whitespaceAndNewlineCharacterSet()->basicPlaneBitmap();
    Kinds bits{0, 0};
    for (std::size_t i = 0; i < count; ++i) {
        bits.whiteSpace |= static_cast<unsigned>(members[units[i] >> 3] >> (units[i] & 7) & 1) << i;
        bits.lineEnds |= static_cast<unsigned>(units[i] == u'\n' || units[i] == u'\f') << i;
    }
    return bits;
}

Kinds kindsOfSixteen(const unichar* units) {
    const Units8 first = loadUnits(units), second = loadUnits(units + 8);
    auto test = [&](auto isFound) { return bitsOf(isFound(first), isFound(second)); };
    // The rest of white space begins at U+1680.
    if (test([](Units8 eight) { return eight > vectorOf(u'\x167F'); })) return kindsOf(units, 16);
    unsigned controls = test([](Units8 eight) { return eight - vectorOf(u'\t') <= vectorOf(u'\x4'); });
    unsigned blanks = test([](Units8 eight) {
        return (eight == vectorOf(u' ')) | (eight == vectorOf(u'\x85')) | (eight == vectorOf(u'\xA0'));
    });
    if (!controls) return {blanks, 0};
    return {controls | blanks,
            test([](Units8 eight) { return (eight == vectorOf(u'\n')) | (eight == vectorOf(u'\f')); })};
}

}  // namespace

std::size_t WhiteSpace::readParagraph(std::size_t start) {
    std::u16string_view rest = _text.substr(start);
    _words[0] = 0;
    for (std::size_t i = 0; i < rest.size(); i += 16) {
        const unichar* units = rest.data() + i;
        Kinds bits = rest.size() - i >= 16 ? kindsOfSixteen(units) : kindsOf(units, rest.size() - i);
        _words[i / 64] |= std::uint64_t{bits.whiteSpace} << (i & 63);
        _words[i / 64 + 1] = 0;
        if (bits.lineEnds) return start + i + static_cast<std::size_t>(std::countr_zero(bits.lineEnds));
    }
    return _text.size();
}

}  // namespace pelvor
