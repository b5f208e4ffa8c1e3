// SPDX-License-Identifier: Apache-2.0
// Searching strings.
#include <unicode/uchar.h>

#include <algorithm>

#include "Foundation/NSCharacterSet.h"
#include "Foundation/Strings/CanonicalText.h"
#include "Foundation/Strings/ComposedCharacters.h"
#include "Foundation/Strings/NSInlineString.h"
#include "Foundation/Strings/TextFinder.h"

namespace pelvor {
namespace {

constexpr NSRange kNothing{NSNotFound, 0};

NSRange shifted(NSRange range, NSUInteger offset) {
    return range.location == NSNotFound ? range : NSRange{range.location + offset, range.length};
}

}  // namespace

namespace {

NSRange foundString(NSString* string, NSString* target, NSStringCompareOptions options, NSRange range,
                    const char* operation) {
    requireArgument(target, operation, "the target");
    requireRange(range, string->length(), operation);
    StringUnits wanted(target), text(string, range);
    return shifted(TextFinder(wanted, options).find(text), range.location);
}

}  // namespace

NSRange NSString::rangeOfString(NSString* target) {
    return foundString(this, target, 0, {0, length()}, "rangeOfString:");
}

NSRange NSString::rangeOfString_options(NSString* target, NSStringCompareOptions options) {
    return foundString(this, target, options, {0, length()}, "rangeOfString:options:");
}

NSRange NSString::rangeOfString_options_range(NSString* target, NSStringCompareOptions options,
                                              NSRange range) {
    return foundString(this, target, options, range, "rangeOfString:options:range:");
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
    // Passes units that are neither members nor at or past the halves of pairs; passes nothing if case does
    // not count.
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
    // Does this backwards.
    NSUInteger endOfInterest(NSUInteger end) const {
        while (!_folds && end > 0 && !isInteresting(_bitmap, _text[end - 1])) --end;
        return end;
    }
    static unsigned isInteresting(const std::uint8_t* bitmap, char16_t unit) {
        return unsigned{unit >= 0xD800} | (bitmap[unit >> 3] >> (unit & 7) & 1u);
    }
    // How many units the member at the index has; 0 if no member stands there.
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
    Unretained<NSCharacterSet> _set;
    const std::uint8_t* _bitmap = _set->basicPlaneBitmap();
    bool _folds;
};

// Searches a string that is not in one piece in parts, so that a match near the start is found without a copy
// of the rest. No surrogate pair is divided between two parts.
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

    Unretained<NSString> _string;
    Unretained<NSCharacterSet> _set;
    NSStringCompareOptions _options;
    NSUInteger _size = 48;
};

NSRange foundMember(NSString* string, NSCharacterSet* set, NSStringCompareOptions options, NSRange range,
                    const char* operation) {
    requireArgument(set, operation, "the set");
    requireRange(range, string->length(), operation);
    bool isBackwards = options & NSBackwardsSearch;
    if (!string->contiguousCharacters() && !(options & NSAnchoredSearch)) {
        PieceSearch search(string, set, options);
        return isBackwards ? search.last(range) : search.first(range);
    }
    StringUnits units(string, range);
    MemberSearch search(units, set, options);
    NSRange found = options & NSAnchoredSearch ? (isBackwards ? search.atEnd() : search.atStart())
                    : isBackwards              ? search.last()
                                               : search.first();
    return shifted(found, range.location);
}

}  // namespace

NSRange NSString::rangeOfCharacterFromSet(NSCharacterSet* set) {
    return foundMember(this, set, 0, {0, length()}, "rangeOfCharacterFromSet:");
}

NSRange NSString::rangeOfCharacterFromSet_options(NSCharacterSet* set, NSStringCompareOptions options) {
    return foundMember(this, set, options, {0, length()}, "rangeOfCharacterFromSet:options:");
}

NSRange NSString::rangeOfCharacterFromSet_options_range(NSCharacterSet* set, NSStringCompareOptions options,
                                                        NSRange range) {
    return foundMember(this, set, options, range, "rangeOfCharacterFromSet:options:range:");
}

NSRange NSString::rangeOfComposedCharacterSequenceAtIndex(NSUInteger index) {
    requireIndex(index, length(), "rangeOfComposedCharacterSequenceAtIndex:");
    return composedCharacterAt(this, index);
}

}  // namespace pelvor
