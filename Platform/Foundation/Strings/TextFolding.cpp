// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Strings/TextFolding.h"

#include <unicode/uchar.h>
#include <unicode/uset.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "Foundation/Strings/CanonicalText.h"

namespace pelvor {
namespace {

// Whether folding turns the unit into one other unit that is not active itself.
bool foldsAlone(UChar32 c) {
    char16_t unit = static_cast<char16_t>(c), folded[4];
    UErrorCode error = U_ZERO_ERROR;
    if (ActiveUnits::plain().has(unit)) return false;
    int32_t count = u_strFoldCase(folded, 4, &unit, 1, U_FOLD_CASE_DEFAULT, &error);
    return count == 1 && !ActiveUnits::plain().has(folded[0]);
}

}  // namespace

const ActiveUnits& ActiveUnits::plain() {
    static const ActiveUnits units(u"[[:NFC_QC=No:][:NFC_QC=Maybe:][:^ccc=0:]]", Folding::ignored);
    return units;
}

const ActiveUnits& ActiveUnits::folding() {
    static const ActiveUnits units(u"[[:NFC_QC=No:][:NFC_QC=Maybe:][:^ccc=0:][:CWCF=Yes:]]",
                                   Folding::counted);
    return units;
}

ActiveUnits::ActiveUnits(std::u16string_view pattern, Folding folding) {
    UErrorCode error = U_ZERO_ERROR;
    std::unique_ptr<USet, decltype(&uset_close)> set(
        uset_openPattern(pattern.data(), static_cast<int32_t>(pattern.size()), &error), &uset_close);
    for (int32_t i = 0; i < uset_getItemCount(set.get()); ++i) {
        UChar32 first, last;
        if (uset_getItem(set.get(), i, &first, &last, nullptr, 0, &error) != 0) continue;
        for (UChar32 c = first; c <= last; ++c) {
            if (folding == Folding::counted && c <= 0xFFFF && foldsAlone(c)) continue;
            auto value = static_cast<std::uint32_t>(c);
            _units[isSupplementary(value) ? highHalfOf(value) : value] = true;
        }
    }
}

bool ActiveUnits::hasAny(std::u16string_view text) const {
    // Four units at a time, most of which are ASCII.
    constexpr std::uint64_t kBeyondAscii = 0xFF80FF80FF80FF80;
    auto isActive = [&](char16_t unit) { return has(unit); };
    const char16_t *place = text.data(), *end = place + text.size();
    for (; end - place >= 4; place += 4) {
        std::uint64_t word;
        std::memcpy(&word, place, sizeof word);
        if (word & kBeyondAscii && std::any_of(place, place + 4, isActive)) return true;
    }
    return std::any_of(place, end, isActive);
}

char16_t foldOtherUnit(char16_t unit) {
    if (unit >= 0x3000 && unit < 0xA640) return unit;
    UChar32 folded = u_foldCase(unit, U_FOLD_CASE_DEFAULT);
    return folded > 0xFFFF ? unit : static_cast<char16_t>(folded);
}

std::u16string simpleFold(std::u16string_view text) {
    std::u16string folded;
    folded.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        char32_t c = codePointAt(text, i);
        UChar32 other = u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT);
        i += unitCount(c);
        if (unitCount(static_cast<char32_t>(other)) != unitCount(c)) other = static_cast<UChar32>(c);
        appendCodepoint(folded, static_cast<std::uint32_t>(other));
    }
    return folded;
}

std::u16string fullFold(std::u16string_view text) {
    UErrorCode error = U_ZERO_ERROR;
    std::u16string result(text.size() * 3, u'\0');
    int32_t size = u_strFoldCase(result.data(), static_cast<int32_t>(result.size()), text.data(),
                                 static_cast<int32_t>(text.size()), U_FOLD_CASE_DEFAULT, &error);
    result.resize(static_cast<std::size_t>(size));
    return result;
}

}  // namespace pelvor
