// SPDX-License-Identifier: Apache-2.0
// Searching strings.
#include <unicode/ubrk.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <memory>

#include "Foundation/NSCharacterSet.h"
#include "Foundation/Strings/CanonicalText.h"
#include "Foundation/Strings/NSInlineString.h"
#include "Foundation/Strings/TextFinder.h"
#include "Runtime/NSException.h"

namespace pelvor {
namespace {

constexpr NSRange kNothing{NSNotFound, 0};

NSRange shifted(NSRange range, NSUInteger offset) {
    return range.location == NSNotFound ? range : NSRange{range.location + offset, range.length};
}

}  // namespace

NSRange NSString::rangeOfString_options(NSString* target, NSStringCompareOptions options) {
    return rangeOfString_options_range(target, options, {0, length()});
}

NSRange NSString::rangeOfString_options_range(NSString* target, NSStringCompareOptions options,
                                              NSRange range) {
    requireString(target, "rangeOfString:");
    StringUnits wanted(target);
    return shifted(TextFinder(wanted, options).find(StringUnits(this, range)), range.location);
}

// Members of a set

namespace {

class MemberSearch {
  public:
    MemberSearch(std::u16string_view text, NSCharacterSet* set, NSStringCompareOptions options)
        : _text(text), _set(set), _folds(options & NSCaseInsensitiveSearch) {}

    NSRange first() const {
        for (NSUInteger i = 0; i < _text.size();) {
            i = firstInterestingUnit(i);
            if (i == _text.size()) break;
            NSUInteger length = memberAt(i);
            if (length) return {i, length};
            i += static_cast<NSUInteger>(unitCount(codePointAt(_text, i)));
        }
        return kNothing;
    }
    NSRange last() const {
        for (NSUInteger i = endOfInterest(static_cast<NSUInteger>(_text.size())); i > 0;
             i = endOfInterest(i)) {
            i -= splitsPair(_text, i - 1) ? 2 : 1;
            NSUInteger length = memberAt(i);
            if (length) return {i, length};
        }
        return kNothing;
    }
    NSRange atStart() const { return _text.empty() || !memberAt(0) ? kNothing : NSRange{0, memberAt(0)}; }
    NSRange atEnd() const {
        NSRange range = last();
        return NSMaxRange(range) == _text.size() ? range : kNothing;
    }

  private:
    // Passes units that are neither members nor at or past the halves of pairs; none if case does not count.
    NSUInteger firstInterestingUnit(NSUInteger place) const {
        auto count = static_cast<NSUInteger>(_text.size());
        auto stops = [bitmap = _bitmap](char16_t unit) { return isInteresting(bitmap, unit); };
        if (_folds) return place;
        const char16_t* text = _text.data();
        while (place + 4 <= count && !(stops(text[place]) | stops(text[place + 1]) | stops(text[place + 2]) |
                                       stops(text[place + 3])))
            place += 4;
        while (place < count && !stops(text[place])) ++place;
        return place;
    }
    // The same backwards.
    NSUInteger endOfInterest(NSUInteger end) const {
        while (!_folds && end > 0 && !isInteresting(_bitmap, _text[end - 1])) --end;
        return end;
    }
    static unsigned isInteresting(const std::uint8_t* bitmap, char16_t unit) {
        return unsigned{unit >= 0xD800} | (bitmap[unit >> 3] >> (unit & 7) & 1u);
    }
    // How many units the member at the index has; 0 if what stands there is no member.
    NSUInteger memberAt(NSUInteger index) const {
        char32_t c = codePointAt(_text, index);
        bool isMember = _set->longCharacterIsMember(c) || (_folds && isMemberInOtherCase(c));
        return isMember ? static_cast<NSUInteger>(unitCount(c)) : 0;
    }
    bool isMemberInOtherCase(char32_t c) const {
        auto code = static_cast<UChar32>(c);
        return _set->longCharacterIsMember(static_cast<char32_t>(u_tolower(code))) ||
               _set->longCharacterIsMember(static_cast<char32_t>(u_toupper(code)));
    }

    std::u16string_view _text;
    NSCharacterSet* _set;
    const std::uint8_t* _bitmap = _set->basicPlaneBitmap();
    bool _folds;
};

// Searches a string that is not in one piece in pieces, so that what is near is found without a copy of all
// the rest. No pair lies in two of them.
class PieceSearch {
  public:
    PieceSearch(NSString* string, NSCharacterSet* set, NSStringCompareOptions options)
        : _string(string), _set(set), _options(options) {}

    NSRange first(NSRange range) {
        for (NSUInteger place = range.location, end = NSMaxRange(range); place < end;) {
            NSUInteger size = nextSize(end - place);
            if (size > 1 && place + size < end &&
                isHighSurrogate(_string->characterAtIndex(place + size - 1)))
                --size;
            StringUnits units(_string, {place, size});
            NSRange found = shifted(MemberSearch(units, _set, _options).first(), place);
            if (found.location != NSNotFound) return found;
            place += size;
        }
        return kNothing;
    }
    NSRange last(NSRange range) {
        for (NSUInteger end = NSMaxRange(range); end > range.location;) {
            NSUInteger size = nextSize(end - range.location);
            if (size > 1 && end - size > range.location &&
                isLowSurrogate(_string->characterAtIndex(end - size)))
                --size;
            StringUnits units(_string, {end - size, size});
            NSRange found = shifted(MemberSearch(units, _set, _options).last(), end - size);
            if (found.location != NSNotFound) return found;
            end -= size;
        }
        return kNothing;
    }

  private:
    NSUInteger nextSize(NSUInteger rest) {
        NSUInteger size = std::min(_size, rest);
        _size = std::min(_size * 4, NSUInteger{4096});
        return size;
    }

    NSString* _string;
    NSCharacterSet* _set;
    NSStringCompareOptions _options;
    NSUInteger _size = 48;
};

}  // namespace

NSRange NSString::rangeOfCharacterFromSet_options(NSCharacterSet* set, NSStringCompareOptions options) {
    return rangeOfCharacterFromSet_options_range(set, options, {0, length()});
}

NSRange NSString::rangeOfCharacterFromSet_options_range(NSCharacterSet* set, NSStringCompareOptions options,
                                                        NSRange range) {
    if (!set) throw NSException(NSInvalidArgumentException, "rangeOfCharacterFromSet: none given");
    bool isBackwards = options & NSBackwardsSearch;
    if (!contiguousCharacters() && !(options & NSAnchoredSearch)) {
        requireRange(range, length());
        PieceSearch search(this, set, options);
        return isBackwards ? search.last(range) : search.first(range);
    }
    StringUnits units(this, range);
    MemberSearch search(units, set, options);
    NSRange found = options & NSAnchoredSearch ? (isBackwards ? search.atEnd() : search.atStart())
                    : isBackwards              ? search.last()
                                               : search.first();
    return shifted(found, range.location);
}

// Composed characters

namespace {

// Units between two of which there is always a bound: letters, ideographs and whole syllables that nothing
// joins by itself.
bool isPlainBase(unichar unit) {
    bool isKnown = (unit < 0x300 && unit != u'\n' && unit != u'\r' && unit != 0xA9 && unit != 0xAE) ||
                   (unit >= 0x370 && unit < 0x483) || (unit >= 0x48A && unit < 0x530) ||
                   (unit >= 0x3400 && unit < 0xA000) || (unit >= 0xAC00 && unit < 0xD7A4);
    return isKnown ||
           (!isSurrogate(unit) && u_getIntPropertyValue(unit, UCHAR_GRAPHEME_CLUSTER_BREAK) == U_GCB_OTHER &&
            !u_hasBinaryProperty(unit, UCHAR_EXTENDED_PICTOGRAPHIC));
}

// The nearest bound at or before the index, and the nearest one after it, that show without any rules.
NSRange plainSurroundings(NSString* string, NSUInteger index, NSUInteger count) {
    NSUInteger start = index, end = index + 1;
    bool isBase = isPlainBase(string->characterAtIndex(start));
    while (start > 0) {
        bool isPreviousBase = isPlainBase(string->characterAtIndex(start - 1));
        if (isBase && isPreviousBase) break;
        isBase = isPreviousBase;
        --start;
    }
    isBase = isPlainBase(string->characterAtIndex(index));
    for (; end < count; ++end) {
        bool isNextBase = isPlainBase(string->characterAtIndex(end));
        if (isBase && isNextBase) break;
        isBase = isNextBase;
    }
    return {start, end - start};
}

UBreakIterator* characterIterator() {
    struct Closer {
        void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
    };
    thread_local std::unique_ptr<UBreakIterator, Closer> iterator = [] {
        UErrorCode error = U_ZERO_ERROR;
        return std::unique_ptr<UBreakIterator, Closer>(ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &error));
    }();
    return iterator.get();
}

}  // namespace

NSRange NSString::rangeOfComposedCharacterSequenceAtIndex(NSUInteger index) {
    NSUInteger count = length();
    requireIndex(index, count);
    NSRange around = plainSurroundings(this, index, count);
    UBreakIterator* iterator = characterIterator();
    if (around.length == 1 || !iterator) return {index, 1};

    StringUnits units(this, around);
    UErrorCode error = U_ZERO_ERROR;
    ubrk_setText(iterator, units.data(), static_cast<int32_t>(units.size()), &error);
    auto place = static_cast<int32_t>(index - around.location);
    int32_t end = ubrk_following(iterator, place), start = ubrk_previous(iterator);
    return {around.location + static_cast<NSUInteger>(start), static_cast<NSUInteger>(end - start)};
}

}  // namespace pelvor
