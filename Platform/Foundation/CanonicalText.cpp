// SPDX-License-Identifier: Apache-2.0
#include "Foundation/CanonicalTextPrivate.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/uset.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <memory>
#include <vector>

#include "Foundation/UnitSearchPrivate.h"

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

// The units that can make two unlike texts equivalent, or their order differ from that of their units.
// Text without active units is equivalent only to itself, and may be cut anywhere between pairs.
class ActiveUnits {
  public:
    // Units that composed text lacks or that may join with what stands before them.
    static const ActiveUnits& plain() {
        static const ActiveUnits units(u"[[:NFC_QC=No:][:NFC_QC=Maybe:][:^ccc=0:]]", false);
        return units;
    }
    // The same, with those that fold to several code points and the pairs that fold at all.
    static const ActiveUnits& folding() {
        static const ActiveUnits units(u"[[:NFC_QC=No:][:NFC_QC=Maybe:][:^ccc=0:][:CWCF=Yes:]]", true);
        return units;
    }

    bool has(char16_t unit) const { return unit >= 0x80 && _units[unit]; }
    bool hasAny(Units text) const {
        std::size_t i = 0;
        for (; i + 16 <= text.size(); i += 16) {
            unsigned all = 0;
            for (std::size_t k = 0; k < 16; ++k) all |= text[i + k];
            if (all >= 0x80 && anyOf(text.substr(i, 16))) return true;
        }
        return anyOf(text.substr(i));
    }

  private:
    ActiveUnits(Units pattern, bool folds) {
        UErrorCode error = U_ZERO_ERROR;
        std::unique_ptr<USet, decltype(&uset_close)> set(
            uset_openPattern(pattern.data(), static_cast<int32_t>(pattern.size()), &error), &uset_close);
        for (int32_t i = 0; i < uset_getItemCount(set.get()); ++i) {
            UChar32 first, last;
            if (uset_getItem(set.get(), i, &first, &last, nullptr, 0, &error) != 0) continue;
            for (UChar32 c = first; c <= last; ++c)
                if (!folds || c > 0xFFFF || !foldsAlone(c)) _units[c > 0xFFFF ? U16_LEAD(c) : c] = true;
        }
    }

    // Whether folding turns the unit into one other unit that is not active itself.
    static bool foldsAlone(UChar32 c) {
        char16_t unit = static_cast<char16_t>(c), folded[4];
        UErrorCode error = U_ZERO_ERROR;
        if (plain().has(unit)) return false;
        int32_t count = u_strFoldCase(folded, 4, &unit, 1, U_FOLD_CASE_DEFAULT, &error);
        return count == 1 && !plain().has(folded[0]);
    }

    bool anyOf(Units text) const {
        return std::any_of(text.begin(), text.end(), [&](char16_t unit) { return has(unit); });
    }

    std::bitset<0x10000> _units;
};

char16_t foldUnit(char16_t unit) {
    if (unit < 0x80) return unit >= u'A' && unit <= u'Z' ? unit | 0x20 : unit;
    if (unit >= 0x3000 && unit < 0xA640) return unit;
    UChar32 folded = u_foldCase(unit, U_FOLD_CASE_DEFAULT);
    return folded > 0xFFFF ? unit : static_cast<char16_t>(folded);
}

// Each code point folded by itself, without a change of length.
std::u16string simpleFold(Units text) {
    std::u16string folded;
    folded.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        char32_t c = codePointAt(text, i);
        UChar32 other = u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT);
        i += unitCount(c);
        if (unitCount(static_cast<char32_t>(other)) != unitCount(c)) other = static_cast<UChar32>(c);
        if (other > 0xFFFF) folded += U16_LEAD(other);
        folded += other > 0xFFFF ? U16_TRAIL(other) : static_cast<char16_t>(other);
    }
    return folded;
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

std::u16string fullFold(Units text) {
    UErrorCode error = U_ZERO_ERROR;
    std::u16string result(text.size() * 3, u'\0');
    int32_t size = u_strFoldCase(result.data(), static_cast<int32_t>(result.size()), text.data(),
                                 static_cast<int32_t>(text.size()), U_FOLD_CASE_DEFAULT, &error);
    result.resize(static_cast<std::size_t>(size));
    return result;
}

// The form by which text is ordered; equivalent texts have the same.
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

// Where both texts may be cut, at or before a place up to which they are the same.
std::size_t cutBefore(Units a, Units b, std::size_t place, const ActiveUnits& active, bool numeric) {
    auto isBound = [&](Units text) {
        if (place == text.size()) return true;
        return !active.has(text[place]) && !splitsPair(text, place);
    };
    auto isInNumber = [&] { return numeric && isDigit(a[place - 1]); };
    while (place > 0 && (!isBound(a) || !isBound(b) || isInNumber())) --place;
    return place;
}

// Whether the unit at the place, and what may join it, is the same in the form for comparison, case apart.
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

namespace {

// Reads text as its canonically decomposed code points, folded if asked for, a letter with its combining
// marks at a time.
class CanonicalReader {
  public:
    CanonicalReader(Units text, std::size_t place, bool folds) : _text(text), _place(place), _folds(folds) {}

    bool isAtEnd() const { return _next == _group.size() && _place == _text.size(); }
    /// Whether what has been read ends where a letter with its marks ends.
    bool isBetweenGroups() const { return _next == _group.size(); }
    /// The end of the group that is being read.
    std::size_t place() const { return _place; }

    char32_t read() {
        if (_next == _group.size()) readGroup();
        return _group[_next++];
    }

    static bool continuesGroup(char32_t c) {
        return c >= 0x300 && u_getCombiningClass(static_cast<UChar32>(c)) != 0;
    }

  private:
    void readGroup() {
        _group.clear();
        _next = 0;
        do {
            char32_t c = codePointAt(_text, _place);
            _place += unitCount(c);
            decompose(c);
        } while (_place < _text.size() && continuesGroup(codePointAt(_text, _place)));
        if (_group.size() > 2) orderMarks();
    }

    void decompose(char32_t c) {
        if (c < 0x80) return _group.push_back(_folds ? foldUnit(static_cast<char16_t>(c)) : c);
        char16_t units[32];
        UErrorCode error = U_ZERO_ERROR;
        int32_t size = unorm2_getDecomposition(decomposer(), static_cast<UChar32>(c), units, 32, &error);
        if (size < 0) {
            size = 0;
            U16_APPEND_UNSAFE(units, size, c);
        }
        char16_t folded[96];
        if (_folds) size = u_strFoldCase(folded, 96, units, size, U_FOLD_CASE_DEFAULT, &error);
        Units piece(_folds ? folded : units, static_cast<std::size_t>(size));
        for (std::size_t i = 0; i < piece.size(); i += unitCount(_group.back()))
            _group.push_back(codePointAt(piece, i));
    }

    void orderMarks() {
        auto classOf = [](char32_t c) { return u_getCombiningClass(static_cast<UChar32>(c)); };
        auto start = _group.begin();
        while (start != _group.end()) {
            start = std::find_if(start, _group.end(), classOf);
            auto end = std::find_if_not(start, _group.end(), classOf);
            std::stable_sort(start, end, [&](char32_t x, char32_t y) { return classOf(x) < classOf(y); });
            start = end;
        }
    }

    Units _text;
    std::size_t _place;
    bool _folds;
    std::u32string _group;
    std::size_t _next = 0;
};

constexpr NSRange kNothing{NSNotFound, 0};

NSRange rangeAt(std::size_t location, std::size_t length) {
    return {static_cast<NSUInteger>(location), static_cast<NSUInteger>(length)};
}

// Searches where equal units mean equal text: the text is the same as what it is equivalent to.
class PlainSearch {
  public:
    PlainSearch(Units text, Units needle, bool folds) : _text(text), _needle(needle), _folds(folds) {
        if (folds) _needle = _folded = simpleFold(needle);
    }

    std::size_t first() const {
        if (!_folds) return findUnits(_text, _needle);
        for (std::size_t i = 0; i + _needle.size() <= _text.size(); ++i)
            if (standsAt(i)) return i;
        return kNoUnit;
    }
    std::size_t last() const {
        if (!_folds) return findLastUnits(_text, _needle);
        for (std::size_t i = lastStart() + 1; i-- > 0;)
            if (standsAt(i)) return i;
        return kNoUnit;
    }
    std::size_t lastStart() const { return _text.size() - _needle.size(); }
    bool standsAt(std::size_t place) const {
        if (!_folds) return _text.substr(place, _needle.size()) == _needle;
        for (std::size_t i = 0; i < _needle.size(); ++i) {
            char32_t c = codePointAt(_text, place + i);
            if (c > 0xFFFF) return simpleFold(_text.substr(place, _needle.size())) == _needle;
            if (foldUnit(static_cast<char16_t>(c)) != _needle[i]) return false;
        }
        return true;
    }

  private:
    Units _text;
    Units _needle;
    std::u16string _folded;
    bool _folds;
};

NSRange findPlain(Units text, Units needle, NSStringCompareOptions options) {
    if (needle.size() > text.size()) return kNothing;
    PlainSearch search(text, needle, options & NSCaseInsensitiveSearch);
    bool isBackwards = options & NSBackwardsSearch;
    std::size_t place;
    if (options & NSAnchoredSearch) {
        place = isBackwards ? search.lastStart() : 0;
        if (!search.standsAt(place)) return kNothing;
    } else {
        place = isBackwards ? search.last() : search.first();
    }
    return place == kNoUnit ? kNothing : rangeAt(place, needle.size());
}

// The search for text that may be written in several ways.
class CanonicalSearch {
  public:
    CanonicalSearch(Units text, Units needle, bool folds) : _text(text), _folds(folds) {
        for (CanonicalReader reader(needle, 0, folds); !reader.isAtEnd();) _needle += reader.read();
    }

    NSRange first() const {
        for (std::size_t i = 0; i < _text.size(); ++i)
            if (std::size_t length = matchLength(i)) return rangeAt(i, length);
        return kNothing;
    }
    NSRange last() const {
        for (std::size_t i = _text.size(); i-- > 0;)
            if (std::size_t length = matchLength(i)) return rangeAt(i, length);
        return kNothing;
    }
    NSRange atStart() const {
        std::size_t length = matchLength(0);
        return length ? rangeAt(0, length) : kNothing;
    }
    NSRange atEnd() const {
        for (std::size_t i = _text.size(); i-- > 0;) {
            std::size_t length = matchLength(i);
            if (length && i + length == _text.size()) return rangeAt(i, length);
            // No more than this many code points come of one unit.
            if ((_text.size() - i) > (_needle.size() + 1) * 18) break;
        }
        return kNothing;
    }

  private:
    // The length of the text from the place on that is equivalent to the needle; 0 for none.
    std::size_t matchLength(std::size_t place) const {
        if (!mayMatch(place)) return 0;
        CanonicalReader reader(_text, place, _folds);
        for (char32_t c : _needle)
            if (reader.isAtEnd() || reader.read() != c) return 0;
        return reader.isBetweenGroups() ? reader.place() - place : 0;
    }

    bool mayMatch(std::size_t place) const {
        char16_t unit = _text[place];
        if (unit < 0x80) return (_folds ? foldUnit(unit) : unit) == _needle[0];
        if (unit >= 0x3400 && unit < 0xA000) return unit == _needle[0];
        if (splitsPair(_text, place)) return false;
        return place == 0 || !CanonicalReader::continuesGroup(codePointAt(_text, place));
    }

    Units _text;
    std::u32string _needle;
    bool _folds;
};

NSRange findEquivalent(Units text, Units needle, NSStringCompareOptions options) {
    CanonicalSearch search(text, needle, options & NSCaseInsensitiveSearch);
    bool isBackwards = options & NSBackwardsSearch;
    if (options & NSAnchoredSearch) return isBackwards ? search.atEnd() : search.atStart();
    return isBackwards ? search.last() : search.first();
}

// The part of the text that decides whether a plain match is the first, or last, equivalent one: from where
// the search began to one unit past the match.
Units decidingPart(Units text, NSRange match, NSStringCompareOptions options) {
    if (options & NSBackwardsSearch) return text.substr(match.location);
    return text.substr(0, std::size_t{NSMaxRange(match)} + 1);
}

// The first, or last, units of the text.
Units endOf(Units text, std::size_t size, NSStringCompareOptions options) {
    if (size >= text.size()) return text;
    return options & NSBackwardsSearch ? text.substr(text.size() - size) : text.substr(0, size);
}

// Searches plainly as long as that decides, in parts that grow, so that a far plain match or none does not
// cost the whole text where an equivalent one is near.
NSRange findByParts(Units text, Units needle, NSStringCompareOptions options, const ActiveUnits& active) {
    std::size_t size = options & NSAnchoredSearch ? needle.size() + 1 : needle.size() + 2048;
    while (true) {
        Units part = endOf(text, size, options);
        NSRange match = findPlain(part, needle, options);
        bool isFound = match.location != NSNotFound;
        if (isFound && options & NSBackwardsSearch)
            match.location += static_cast<NSUInteger>(text.size() - part.size());
        if (active.hasAny(isFound ? decidingPart(text, match, options) : part))
            return findEquivalent(text, needle, options);
        if (isFound || part.size() == text.size() || options & NSAnchoredSearch) return match;
        size *= 4;
    }
}

}  // namespace

NSRange findText(Units text, Units needle, NSStringCompareOptions options) {
    if (needle.empty() || text.empty()) return kNothing;
    if (options & NSLiteralSearch) return findPlain(text, needle, options);
    const ActiveUnits& active =
        options & NSCaseInsensitiveSearch ? ActiveUnits::folding() : ActiveUnits::plain();
    if (active.hasAny(needle)) return findEquivalent(text, needle, options);
    return findByParts(text, needle, options, active);
}

}  // namespace pelvor
