// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Strings/TextFinder.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/uset.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <memory>

#include "Foundation/Strings/CanonicalText.h"
#include "Foundation/Strings/ComposedCharacters.h"
#include "Foundation/Strings/TextFolding.h"
#include "Foundation/Strings/UnitSearch.h"

namespace pelvor {
namespace {

using Units = std::u16string_view;

constexpr NSRange kNothing{NSNotFound, 0};

NSRange rangeAt(std::size_t location, std::size_t length) {
    return {static_cast<NSUInteger>(location), static_cast<NSUInteger>(length)};
}

const UNormalizer2* decomposer() {
    UErrorCode error = U_ZERO_ERROR;
    static const UNormalizer2* const instance = unorm2_getNFDInstance(&error);
    return instance;
}

// Reads text as its canonically decomposed code points, folded if asked for, a letter with its combining
// marks at a time.
class CanonicalReader {
  public:
    CanonicalReader(Units text, std::size_t place, bool folds) : _text(text), _place(place), _folds(folds) {}

    bool isAtEnd() const { return _next == _group.size() && _place == _text.size(); }
    /// Whether the character at the place is read with what stands before it.
    static bool isInGroup(Units text, std::size_t place) {
        if (place == 0 || text[place] < 0x300) return false;
        const std::size_t before = place - (splitsPair(text, place - 1) ? 2 : 1);
        return joins(codePointAt(text, before), codePointAt(text, place));
    }
    /// Whether what has been read ends where a letter with its marks ends.
    bool isBetweenGroups() const { return _next == _group.size(); }
    /// The end of the group that is being read.
    std::size_t place() const { return _place; }

    char32_t read() {
        if (_next == _group.size()) readGroup();
        return _group[_next++];
    }

  private:
    void readGroup() {
        _group.clear();
        _next = 0;
        char32_t c;
        do {
            c = codePointAt(_text, _place);
            _place += unitCount(c);
            decompose(c);
        } while (_place < _text.size() && joins(c, codePointAt(_text, _place)));
        if (_group.size() > 2) orderMarks();
    }

    // Marks join what stands before them, unless that is a control or a line end.
    static bool joins(char32_t before, char32_t c) {
        if (c < 0x300 || u_getCombiningClass(static_cast<UChar32>(c)) == 0) return false;
        int32_t kind = u_getIntPropertyValue(static_cast<UChar32>(before), UCHAR_GRAPHEME_CLUSTER_BREAK);
        return kind != U_GCB_CONTROL && kind != U_GCB_LF && kind != U_GCB_CR;
    }

    void decompose(char32_t c) {
        if (c < 0x80) return _group.push_back(_folds ? foldUnit(static_cast<char16_t>(c)) : c);
        char16_t units[32];
        UErrorCode error = U_ZERO_ERROR;
        int32_t size = unorm2_getDecomposition(decomposer(), static_cast<UChar32>(c), units, 32, &error);
        if (size < 0) {
            size = static_cast<int32_t>(writeCodepoint(c, units) - units);
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

std::u32string decomposed(Units text, bool folds) {
    std::u32string result;
    for (CanonicalReader reader(text, 0, folds); !reader.isAtEnd();) result += reader.read();
    return result;
}

// Whether a match may begin or end at the index: not inside a composed character. Each half of a line end CR
// LF is found, for documents mix line ends, and so is a stem before the non-joiner that parts it from its
// ending.
bool mayCutAt(Units text, std::size_t index) {
    constexpr char16_t kNonJoiner = 0x200C;
    if (index > 0 && index < text.size() &&
        (text[index] == kNonJoiner || (text[index] == u'\n' && text[index - 1] == u'\r')))
        return true;
    return isComposedCharacterBound(text, index);
}

bool isWhole(Units text, NSRange match) {
    return mayCutAt(text, match.location) && mayCutAt(text, NSMaxRange(match));
}

// The search for text that may be written in several ways.
class EquivalentSearch {
  public:
    EquivalentSearch(Units text, std::u32string_view needle, bool folds)
        : _text(text), _needle(needle), _folds(folds) {}

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
            // One unit gives at most this many code points.
            if ((_text.size() - i) > (_needle.size() + 1) * 18) break;
        }
        return kNothing;
    }

  private:
    // The length of the text from the place on that is equivalent to the needle; 0 if there is no such text.
    std::size_t matchLength(std::size_t place) const {
        // No match begins at a mark that belongs to a letter. There may be very many, which would be read
        // again from each of them on.
        if (!mayMatch(place) || CanonicalReader::isInGroup(_text, place)) return 0;
        CanonicalReader reader(_text, place, _folds);
        for (char32_t c : _needle)
            if (reader.isAtEnd() || reader.read() != c) return 0;
        const std::size_t length = reader.place() - place;
        return reader.isBetweenGroups() && isWhole(_text, rangeAt(place, length)) ? length : 0;
    }

    bool mayMatch(std::size_t place) const {
        char16_t unit = _text[place];
        if (unit < 0x80) return (_folds ? foldUnit(unit) : unit) == _needle[0];
        return unit < 0x3400 || unit >= 0xA000 || unit == _needle[0];
    }

    Units _text;
    std::u32string_view _needle;
    bool _folds;
};

using Spellings = std::array<char16_t, 4>;

// All single units that fold to this one, which is folded; the first again in the places that are left.
// False if there are more.
bool readOtherSpellings(char16_t unit, Spellings& spellings) {
    std::unique_ptr<USet, decltype(&uset_close)> set(uset_open(unit, unit), &uset_close);
    uset_closeOver(set.get(), USET_CASE_INSENSITIVE);
    std::size_t count = 1;
    UErrorCode error = U_ZERO_ERROR;
    for (int32_t i = 0; i < uset_getItemCount(set.get()); ++i) {
        UChar32 first, last;
        if (uset_getItem(set.get(), i, &first, &last, nullptr, 0, &error) != 0) continue;
        for (UChar32 c = first; c <= std::min<UChar32>(last, 0xFFFF); ++c) {
            if (c == unit || foldUnit(static_cast<char16_t>(c)) != unit) continue;
            if (count == spellings.size()) return false;
            spellings[count++] = static_cast<char16_t>(c);
        }
    }
    return true;
}

bool readSpellings(char16_t unit, Spellings& spellings) {
    spellings.fill(unit);
    // Two letters of ASCII have more than two spellings: the long s and the sign for kelvin.
    if (unit >= 0x80 || unit == u'k' || unit == u's') return readOtherSpellings(unit, spellings);
    if (unit >= u'a' && unit <= u'z') spellings[1] = unit - (u'a' - u'A');
    return true;
}

}  // namespace

TextFinder::TextFinder(Units needle, NSStringCompareOptions options)
    : _options(options), _needle(needle), _active(nullptr) {
    bool folds = has(NSCaseInsensitiveSearch);
    if (!has(NSLiteralSearch)) {
        _active = folds ? &ActiveUnits::folding() : &ActiveUnits::plain();
        if (_active->hasAny(needle)) _decomposed = decomposed(needle, folds);
    }
    if (folds) _needle = _folded = simpleFold(needle);
    if (folds && !needle.empty() && !has(NSAnchoredSearch) && !has(NSBackwardsSearch))
        _hasSpellings = readSpellings(_needle.front(), _first) && readSpellings(_needle.back(), _last);
}

NSRange TextFinder::find(Units text) const {
    if (_needle.empty() || text.empty()) return kNothing;
    if (!_active) return findPlain(text);
    return _decomposed.empty() ? findByParts(text) : findEquivalent(text);
}

// MARK: Where equal units mean equal text

bool TextFinder::standsAt(Units text, std::size_t place) const {
    Units piece = text.substr(place, _needle.size());
    if (!has(NSCaseInsensitiveSearch)) return piece == _needle;
    for (std::size_t i = 0; i < piece.size(); ++i) {
        if (isHighSurrogate(piece[i])) return simpleFold(piece) == _needle;
        if (foldUnit(piece[i]) != _needle[i]) return false;
    }
    return true;
}

std::size_t TextFinder::firstFolded(Units text) const {
    if (!_hasSpellings) return findUnits(simpleFold(text), _needle);
    std::size_t distance = _needle.size() - 1, vain = 0;
    for (std::size_t i = 0;; ++i) {
        i = findCandidate(text, i, _first, distance, _last);
        if (i == kNoUnit || standsAt(text, i)) return i;
        vain += _needle.size();
        if (vain <= 8 * i + 4096) continue;
        std::size_t place = findUnits(simpleFold(text.substr(i)), _needle);
        return place == kNoUnit ? place : place + i;
    }
}

std::size_t TextFinder::firstPlain(Units text) const {
    return has(NSCaseInsensitiveSearch) ? firstFolded(text) : findUnits(text, _needle);
}

std::size_t TextFinder::lastPlain(Units text) const {
    return has(NSCaseInsensitiveSearch) ? findLastUnits(simpleFold(text), _needle)
                                        : findLastUnits(text, _needle);
}

NSRange TextFinder::findPlain(Units text) const {
    if (_needle.size() > text.size()) return kNothing;
    std::size_t place;
    if (has(NSAnchoredSearch)) {
        place = has(NSBackwardsSearch) ? text.size() - _needle.size() : 0;
        if (!standsAt(text, place)) return kNothing;
    } else {
        place = has(NSBackwardsSearch) ? lastPlain(text) : firstPlain(text);
    }
    return place == kNoUnit ? kNothing : rangeAt(place, _needle.size());
}

// MARK: Where text may be written in several ways

NSRange TextFinder::findEquivalent(Units text) const {
    bool folds = has(NSCaseInsensitiveSearch);
    std::u32string needle = _decomposed.empty() ? decomposed(_needle, folds) : _decomposed;
    EquivalentSearch search(text, needle, folds);
    if (has(NSAnchoredSearch)) return has(NSBackwardsSearch) ? search.atEnd() : search.atStart();
    return has(NSBackwardsSearch) ? search.last() : search.first();
}

// The part of the text that decides whether a plain match is the first, or last, equivalent one: from where
// the search began to one unit past the match.
Units TextFinder::decidingPart(Units text, NSRange match) const {
    if (has(NSBackwardsSearch)) return text.substr(match.location);
    return text.substr(0, std::size_t{NSMaxRange(match)} + 1);
}

// The units where the search begins.
Units TextFinder::endOf(Units text, std::size_t size) const {
    if (size >= text.size()) return text;
    return has(NSBackwardsSearch) ? text.substr(text.size() - size) : text.substr(0, size);
}

// Searches for equal units as long as these decide, in parts that grow: an equivalent match may be near where
// the next plain match is far.
NSRange TextFinder::findByParts(Units text) const {
    std::size_t size = has(NSAnchoredSearch) ? _needle.size() + 1 : _needle.size() + 2048;
    while (true) {
        Units part = endOf(text, size);
        NSRange match = findPlain(part);
        bool isFound = match.location != NSNotFound;
        if (isFound && has(NSBackwardsSearch))
            match.location += static_cast<NSUInteger>(text.size() - part.size());
        if (_active->hasAny(isFound ? decidingPart(text, match) : part)) return findEquivalent(text);
        if (isFound && !isWhole(text, match)) return findEquivalent(text);
        if (isFound || part.size() == text.size() || has(NSAnchoredSearch)) return match;
        size *= 4;
    }
}

}  // namespace pelvor
