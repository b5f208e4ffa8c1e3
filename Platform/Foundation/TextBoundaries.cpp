// SPDX-License-Identifier: Apache-2.0
#include "Foundation/TextBoundaries.h"

#include <unicode/ubidi.h>
#include <unicode/ubrk.h>
#include <unicode/uloc.h>
#include <unicode/utext.h>

#include <algorithm>
#include <cstdint>

#include "Foundation/NSString.h"

namespace pelvor {
namespace {

// MARK: A string as ICU reads it, a window at a time

constexpr NSUInteger kWindow = 512;

NSString* stringOf(const UText* text) { return static_cast<NSString*>(const_cast<void*>(text->context)); }

UText* cloneText(UText* clone, const UText* text, UBool isDeep, UErrorCode* status);

int64_t lengthOfText(UText* text) { return text->a; }

/// Brings the units around `place` into the window: those behind the place, or those before.
void fillWindow(UText* text, int64_t place, bool isForward) {
    const int64_t start = isForward ? place : std::max<int64_t>(place - kWindow, 0);
    const int64_t end = isForward ? std::min<int64_t>(place + kWindow, text->a) : place;
    stringOf(text)->getCharacters_range(
        static_cast<unichar*>(text->pExtra),
        {static_cast<NSUInteger>(start), static_cast<NSUInteger>(end - start)});
    text->chunkNativeStart = start;
    text->chunkNativeLimit = end;
    text->chunkLength = text->nativeIndexingLimit = static_cast<int32_t>(end - start);
}

UBool accessText(UText* text, int64_t place, UBool isForward) {
    place = std::clamp<int64_t>(place, 0, text->a);
    const bool isThere = isForward ? place < text->a : place > 0;
    const bool isInside = isForward ? place >= text->chunkNativeStart && place < text->chunkNativeLimit
                                    : place > text->chunkNativeStart && place <= text->chunkNativeLimit;
    if (!isInside) fillWindow(text, place, isThere == static_cast<bool>(isForward));
    text->chunkOffset = static_cast<int32_t>(place - text->chunkNativeStart);
    return isThere;
}

int32_t extractText(UText* text, int64_t start, int64_t limit, UChar* buffer, int32_t capacity,
                    UErrorCode* status) {
    start = std::clamp<int64_t>(start, 0, text->a);
    limit = std::clamp<int64_t>(limit, start, text->a);
    const int64_t length = limit - start;
    const int64_t taken = std::min<int64_t>(length, std::max(capacity, 0));
    if (taken > 0)
        stringOf(text)->getCharacters_range(buffer,
                                            {static_cast<NSUInteger>(start), static_cast<NSUInteger>(taken)});
    if (taken < capacity) buffer[taken] = 0;
    if (length > capacity && U_SUCCESS(*status)) *status = U_BUFFER_OVERFLOW_ERROR;
    accessText(text, limit, true);
    return static_cast<int32_t>(length);
}

constexpr UTextFuncs kStringFunctions = {sizeof(UTextFuncs),
                                         0,
                                         0,
                                         0,
                                         cloneText,
                                         lengthOfText,
                                         accessText,
                                         extractText,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr,
                                         nullptr};

/// Makes `text`, or a new text if that is null, show the string, which has to outlive the text.
UText* showString(UText* text, NSString* string, UErrorCode* status) {
    text = utext_setup(text, kWindow * sizeof(unichar), status);
    if (U_FAILURE(*status)) return nullptr;
    text->pFuncs = &kStringFunctions;
    text->context = string;
    text->a = string->length();
    text->chunkContents = static_cast<UChar*>(text->pExtra);
    fillWindow(text, 0, true);
    text->chunkOffset = 0;
    return text;
}

UText* cloneText(UText* clone, const UText* text, UBool isDeep, UErrorCode* status) {
    if (isDeep) *status = U_UNSUPPORTED_ERROR;
    if (U_FAILURE(*status)) return nullptr;
    clone = showString(clone, stringOf(text), status);
    if (clone) accessText(clone, text->chunkNativeStart + text->chunkOffset, true);
    return clone;
}

UBreakIteratorType typeOf(TextBoundaries::Kind kind) {
    switch (kind) {
        case TextBoundaries::Kind::Character:
            return UBRK_CHARACTER;
        case TextBoundaries::Kind::Word:
            return UBRK_WORD;
        case TextBoundaries::Kind::Line:
            return UBRK_LINE;
        default:
            return UBRK_SENTENCE;
    }
}

}  // namespace

struct TextBoundaries::Walker {
    explicit Walker(Kind wanted) : kind(wanted) {}

    Kind kind;
    UBreakIterator* iterator = nullptr;
    Retained<NSString> string;

    ~Walker() {
        if (iterator) ubrk_close(iterator);
    }

    NSUInteger length() { return string ? string->length() : 0; }

    void show(NSString* text) {
        UErrorCode status = U_ZERO_ERROR;
        UText* shown = showString(nullptr, text ? text : u""_ns, &status);
        if (shown && iterator) ubrk_setUText(iterator, shown, &status);  // takes a copy that shows the text
        utext_close(shown);
        string.set(text);
    }
};

TextBoundaries::TextBoundaries(Kind kind, NSString* language) : _walker(std::make_unique<Walker>(kind)) {
    UErrorCode status = U_ZERO_ERROR;
    _walker->iterator = ubrk_open(typeOf(kind), language ? language->UTF8String() : "", nullptr, 0, &status);
    _walker->show(nullptr);
}

TextBoundaries::~TextBoundaries() = default;
TextBoundaries::TextBoundaries(TextBoundaries&&) noexcept = default;
TextBoundaries& TextBoundaries::operator=(TextBoundaries&&) noexcept = default;

void TextBoundaries::setString(NSString* string) { _walker->show(string); }

NSUInteger TextBoundaries::following(NSUInteger place) {
    const NSUInteger length = _walker->length();
    if (place >= length) return NSNotFound;
    if (!_walker->iterator) return length;
    return static_cast<NSUInteger>(ubrk_following(_walker->iterator, static_cast<int32_t>(place)));
}

NSUInteger TextBoundaries::preceding(NSUInteger place) {
    place = std::min(place, _walker->length());
    if (place == 0) return NSNotFound;
    if (!_walker->iterator) return 0;
    return static_cast<NSUInteger>(ubrk_preceding(_walker->iterator, static_cast<int32_t>(place)));
}

bool TextBoundaries::isBoundary(NSUInteger place) {
    const NSUInteger length = _walker->length();
    if (place == 0 || place >= length) return place == 0 || place == length;
    return _walker->iterator && ubrk_isBoundary(_walker->iterator, static_cast<int32_t>(place));
}

bool TextBoundaries::isWordBefore(NSUInteger boundary) {
    if (_walker->kind != Kind::Word || !_walker->iterator || boundary == 0) return false;
    return following(boundary - 1) == boundary &&
           ubrk_getRuleStatus(_walker->iterator) >= UBRK_WORD_NONE_LIMIT;
}

bool isLanguageWrittenRightToLeft(NSString* language) {
    return language && uloc_isRightToLeft(language->UTF8String());
}

bool isParagraphReadRightToLeft(std::u16string_view paragraph) {
    const auto size = static_cast<std::int32_t>(std::min<std::size_t>(paragraph.size(), INT32_MAX));
    return ubidi_getBaseDirection(paragraph.data(), size) == UBIDI_RTL;
}

}  // namespace pelvor
