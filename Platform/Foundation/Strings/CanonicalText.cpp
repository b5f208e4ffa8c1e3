// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Strings/CanonicalText.h"

#include <unicode/unorm2.h>

#include <algorithm>

#include "Foundation/Strings/TextFolding.h"
#include "Foundation/Strings/UnitSearch.h"

namespace pelvor {
namespace {

using Units = std::u16string_view;

const UNormalizer2* composer() {
    UErrorCode error = U_ZERO_ERROR;
    static const UNormalizer2* const instance = unorm2_getNFCInstance(&error);
    return instance;
}

const UNormalizer2* decomposer() {
    UErrorCode error = U_ZERO_ERROR;
    static const UNormalizer2* const instance = unorm2_getNFDInstance(&error);
    return instance;
}

std::u16string normalized(const UNormalizer2* form, Units text) {
    UErrorCode error = U_ZERO_ERROR;
    std::u16string result(text.size() + text.size() / 2 + 8, u'\0');
    while (true) {
        int32_t size = unorm2_normalize(form, text.data(), static_cast<int32_t>(text.size()), result.data(),
                                        static_cast<int32_t>(result.size()), &error);
        bool isDone = error != U_BUFFER_OVERFLOW_ERROR;
        result.resize(static_cast<std::size_t>(size));
        if (isDone) return result;
        error = U_ZERO_ERROR;
    }
}

// The form by which text is ordered; equivalent texts have equal forms.
std::u16string comparisonForm(Units text, NSStringCompareOptions options) {
    bool folds = options & NSCaseInsensitiveSearch;
    if (options & NSLiteralSearch) return folds ? simpleFold(text) : std::u16string(text);
    if (!folds) return normalized(composer(), text);
    return normalized(composer(), fullFold(normalized(decomposer(), text)));
}

bool isDigit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

NSComparisonResult orderOf(std::uint64_t a, std::uint64_t b) {
    return a < b ? NSOrderedAscending : a > b ? NSOrderedDescending : NSOrderedSame;
}

NSComparisonResult orderOfUnits(Units a, Units b) {
    std::size_t same = commonPrefix(a, b);
    if (same == a.size() || same == b.size()) return orderOf(a.size(), b.size());
    return orderOf(a[same], b[same]);
}

// Takes the digits at the front, without leading zeros.
Units takeDigits(Units& text) {
    std::size_t zeros = 0;
    while (zeros < text.size() && text[zeros] == u'0') ++zeros;
    std::size_t end = zeros;
    while (end < text.size() && isDigit(text[end])) ++end;
    Units digits = text.substr(zeros, end - zeros);
    text.remove_prefix(end);
    return digits;
}

NSComparisonResult numericOrder(Units a, Units b) {
    while (!a.empty() && !b.empty()) {
        if (isDigit(a[0]) && isDigit(b[0])) {
            Units x = takeDigits(a), y = takeDigits(b);
            NSComparisonResult order =
                x.size() == y.size() ? orderOfUnits(x, y) : orderOf(x.size(), y.size());
            if (order != NSOrderedSame) return order;
        } else {
            if (a[0] != b[0]) return orderOf(a[0], b[0]);
            a.remove_prefix(1);
            b.remove_prefix(1);
        }
    }
    return orderOf(a.size(), b.size());
}

// A place where both texts may be cut, at or before a place up to which the texts are equal.
std::size_t cutBefore(Units a, Units b, std::size_t place, const ActiveUnits& active, bool numeric) {
    auto isBound = [&](Units text) {
        if (place == text.size()) return true;
        return !active.has(text[place]) && !splitsPair(text, place);
    };
    auto isInNumber = [&] { return numeric && isDigit(a[place - 1]); };
    while (place > 0 && (!isBound(a) || !isBound(b) || isInNumber())) --place;
    return place;
}

// Whether the unit at the place, and the units that may join it, stay unchanged in the form for comparison,
// except for case.
bool isPlainAt(Units text, std::size_t place, const ActiveUnits& active) {
    if (splitsPair(text, place) && active.has(text[place - 1])) return false;
    return !active.has(text[place]) && (place + 1 == text.size() || !active.has(text[place + 1]));
}

std::size_t commonFoldedPrefix(Units a, Units b, const ActiveUnits& active) {
    std::size_t size = std::min(a.size(), b.size()), i = commonPrefix(a, b);
    while (i < size &&
           (a[i] == b[i] || (!active.has(a[i]) && !active.has(b[i]) && foldUnit(a[i]) == foldUnit(b[i]))))
        ++i;
    return i;
}

}  // namespace

NSComparisonResult compareText(Units a, Units b, NSStringCompareOptions options) {
    bool folds = options & NSCaseInsensitiveSearch, numeric = options & NSNumericSearch;
    if (options & NSLiteralSearch && !folds) return numeric ? numericOrder(a, b) : orderOfUnits(a, b);

    const ActiveUnits& active = folds ? ActiveUnits::folding() : ActiveUnits::plain();
    std::size_t same = folds ? commonFoldedPrefix(a, b, active) : commonPrefix(a, b);
    if (same == a.size() && same == b.size()) return NSOrderedSame;
    bool isInside = same < a.size() && same < b.size();
    if (!numeric && isInside && isPlainAt(a, same, active) && isPlainAt(b, same, active))
        return folds ? orderOf(foldUnit(a[same]), foldUnit(b[same])) : orderOf(a[same], b[same]);

    std::size_t cut = cutBefore(a, b, same, active, numeric);
    std::u16string x = comparisonForm(a.substr(cut), options), y = comparisonForm(b.substr(cut), options);
    return numeric ? numericOrder(x, y) : orderOfUnits(x, y);
}

}  // namespace pelvor
