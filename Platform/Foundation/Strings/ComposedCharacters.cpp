// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Strings/ComposedCharacters.h"

#include <unicode/ubrk.h>
#include <unicode/uchar.h>

#include <memory>

#include "Foundation/Strings/CanonicalText.h"

namespace pelvor {
namespace {

// Whether the character is one by itself next to any other of the kind: letters, ideographs, whole syllables.
// Halves of pairs are not.
bool isPlainBase(char32_t c) {
    if (c < 0x300) return true;
    if (U16_IS_SURROGATE(c)) return false;
    if ((c >= 0x3400 && c < 0xA000) || (c >= 0xAC00 && c < 0xD7A4)) return true;
    return u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_GRAPHEME_CLUSTER_BREAK) == U_GCB_OTHER;
}

// Reads a text of which `unitAt` tells each unit, so that a string need not be copied for what is near.
template <class UnitAt>
class Surroundings {
  public:
    Surroundings(UnitAt unitAt, std::size_t count) : _unitAt(unitAt), _count(count) {}

    // The nearest bound at or before the index that shows without further rules.
    std::size_t startBefore(std::size_t index) const {
        while (!isPlainBound(index)) --index;
        return index;
    }
    std::size_t endAfter(std::size_t index) const {
        while (!isPlainBound(index)) ++index;
        return index;
    }

  private:
    bool isPlainBound(std::size_t index) const {
        if (index == 0 || index == _count) return true;
        const char32_t left = before(index), right = at(index);
        // Nothing joins controls, line ends among them, but CR and LF each other.
        if (left < 0x20 || right < 0x20) return left != U'\r' || right != U'\n';
        return isPlainBase(left) && isPlainBase(right);
    }
    // Where the index splits a pair, these return a half of it, which is no plain base.
    char32_t at(std::size_t index) const {
        const char16_t unit = _unitAt(index);
        if (!U16_IS_LEAD(unit) || index + 1 == _count) return unit;
        const char16_t next = _unitAt(index + 1);
        return U16_IS_TRAIL(next) ? static_cast<char32_t>(U16_GET_SUPPLEMENTARY(unit, next)) : unit;
    }
    char32_t before(std::size_t index) const {
        const char16_t unit = _unitAt(index - 1);
        const bool isPair = U16_IS_TRAIL(unit) && index > 1 && U16_IS_LEAD(_unitAt(index - 2));
        return isPair ? at(index - 2) : unit;
    }

    UnitAt _unitAt;
    std::size_t _count;
};

// The text of the iterator is set before each use.
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

UBreakIterator* iteratorOver(std::u16string_view text) {
    UErrorCode error = U_ZERO_ERROR;
    UBreakIterator* iterator = characterIterator();
    if (iterator) ubrk_setText(iterator, text.data(), static_cast<int32_t>(text.size()), &error);
    return iterator;
}

}  // namespace

NSRange composedCharacterAt(NSString* string, NSUInteger index) {
    auto unitAt = [string](std::size_t place) {
        return string->characterAtIndex(static_cast<NSUInteger>(place));
    };
    const Surroundings surroundings(unitAt, string->length());
    const auto start = static_cast<NSUInteger>(surroundings.startBefore(index));
    const auto end = static_cast<NSUInteger>(surroundings.endAfter(index + 1));
    if (end - start == 1) return {start, 1};

    StringUnits units(string, {start, end - start});
    UBreakIterator* iterator = iteratorOver(units);
    if (!iterator) return {index, 1};
    const int32_t after = ubrk_following(iterator, static_cast<int32_t>(index - start));
    const int32_t before = ubrk_previous(iterator);
    return {start + static_cast<NSUInteger>(before), static_cast<NSUInteger>(after - before)};
}

bool isComposedCharacterBound(std::u16string_view text, std::size_t index) {
    if (index == 0 || index == text.size()) return true;
    if (splitsPair(text, index)) return false;
    const Surroundings surroundings([text](std::size_t place) { return text[place]; }, text.size());
    const std::size_t start = surroundings.startBefore(index);
    if (start == index) return true;
    const std::size_t end = surroundings.endAfter(index);
    UBreakIterator* iterator = iteratorOver(text.substr(start, end - start));
    return !iterator || ubrk_isBoundary(iterator, static_cast<int32_t>(index - start));
}

}  // namespace pelvor
