// SPDX-License-Identifier: Apache-2.0
#include <unicode/uchar.h>
#include <unicode/uscript.h>

#include <algorithm>
#include <memory>

#include "Shared/Codepoints.h"
#include "Text/Fonts/FontCatalogue.h"
#include "Text/Fonts/FontVariant.h"
#include "Text/Fonts/Shaping.h"
#include "Text/NSFont.h"

namespace pelvor {
namespace {

constexpr char32_t kJoiner = 0x200D, kTextForm = 0xFE0E, kEmojiForm = 0xFE0F;

bool has(char32_t character, UProperty property) {
    return u_hasBinaryProperty(static_cast<UChar32>(character), property);
}

// Whether a font needs no glyph of its own for the character.
bool isInvisible(char32_t character) {
    if (character < 0x7F) return character < 0x21;
    return has(character, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) || has(character, UCHAR_WHITE_SPACE) ||
           u_charType(static_cast<UChar32>(character)) == U_CONTROL_CHAR || character == 0xFFFC;
}

// Whether the character belongs to the cluster that `before` ends.
bool continuesCluster(char32_t before, char32_t character) {
    if (character < 0x300) return false;
    if (before == kJoiner && has(character, UCHAR_EXTENDED_PICTOGRAPHIC)) return true;
    return character == kJoiner || has(character, UCHAR_GRAPHEME_EXTEND) ||
           has(character, UCHAR_EMOJI_MODIFIER) ||
           u_charType(static_cast<UChar32>(character)) == U_COMBINING_SPACING_MARK;
}

std::size_t endOfCluster(std::u16string_view text, std::size_t start) {
    char32_t before = codePointAt(text, start);
    std::size_t end = start + unitCount(before);
    bool isHalfFlag = has(before, UCHAR_REGIONAL_INDICATOR);
    while (end < text.size()) {
        const char32_t character = codePointAt(text, end);
        if (isHalfFlag && has(character, UCHAR_REGIONAL_INDICATOR))
            isHalfFlag = false;
        else if (!continuesCluster(before, character))
            break;
        end += unitCount(character);
        before = character;
    }
    return end;
}

// What a font must have to set a cluster.
struct Wants {
    std::u32string characters;
    bool asEmoji = false;

    explicit Wants(std::u16string_view cluster) {
        for (std::size_t i = 0; i < cluster.size();) {
            const char32_t character = codePointAt(cluster, i);
            i += unitCount(character);
            if (has(character, UCHAR_EMOJI_PRESENTATION) || character == kEmojiForm) asEmoji = true;
            if (character == kTextForm) asEmoji = false;
            if (!isInvisible(character)) characters += character;
        }
    }
};

using Variant = std::shared_ptr<FontVariant>;

bool hasAll(FontFace& face, std::u32string_view characters) {
    return std::all_of(characters.begin(), characters.end(),
                       [&face](char32_t character) { return face.hasCharacter(character); });
}

// The font and the language that text is given in.
struct Given {
    const Variant& variant;
    EastAsian language;
};

bool isEastAsian(char32_t character) {
    const auto width = u_getIntPropertyValue(static_cast<UChar32>(character), UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH;
}

// The variant that sets the cluster.
Variant variantFor(const Given& given, std::u16string_view cluster) {
    const Wants wants(cluster);
    if (wants.asEmoji)
        if (auto emoji = FontCatalogue::shared().emojiFace(); emoji && hasAll(*emoji, wants.characters))
            return given.variant->inFace(emoji);
    if (hasAll(given.variant->face(), wants.characters)) return given.variant;
    const bool hasShapes = given.language != EastAsian::unknown && isEastAsian(wants.characters[0]);
    Variant substitute =
        given.variant->substituteFor(wants.characters, hasShapes ? given.language : EastAsian::unknown);
    return substitute ? substitute : given.variant;
}

// Whether the character stands between words of all scripts. Such marks stay in the font of what stands
// before them if it has them, but not in a font for emoji, whose blanks are as wide as its pictures. Digits
// and brackets take the text's own font, so that numbers look alike everywhere and brackets match.
bool isShared(char32_t character) {
    if (character < 0x7F &&
        std::u32string_view(U"0123456789()[]{}").find(character) != std::u32string_view::npos)
        return false;
    UErrorCode error = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(static_cast<UChar32>(character), &error);
    return script == USCRIPT_COMMON && !has(character, UCHAR_EXTENDED_PICTOGRAPHIC) &&
           !has(character, UCHAR_REGIONAL_INDICATOR);
}

// The variant of the nearest character before `start` that belongs to a script, so that the font of shared
// marks does not depend on where somebody begins to ask.
Variant variantBefore(const Given& given, std::u16string_view text, std::size_t start) {
    constexpr std::size_t kFarthest = 64;
    const std::size_t limit = start > kFarthest ? start - kFarthest : 0;
    while (start > limit) {
        --start;
        if (splitsPair(text, start)) --start;
        const char32_t character = codePointAt(text, start);
        if (!isShared(character) && !continuesCluster(0, character))
            return variantFor(given, text.substr(start, endOfCluster(text, start) - start));
    }
    return given.variant;
}

Variant variantOfCluster(const Given& given, const Variant& before, std::u16string_view cluster) {
    const bool mayStay = before != given.variant && !before->face().entry().isColoured;
    if (mayStay && isShared(codePointAt(cluster, 0)) && hasAll(before->face(), Wants(cluster).characters))
        return before;
    return variantFor(given, cluster);
}

// Characters that nearly all text is made of.

// Blanks, and what begins a cluster, is seen, and is no emoji.
bool isPlain(char16_t unit) {
    static CharacterBits* plain = new CharacterBits([](char32_t character) {
        return character == ' ' ||
               (!isSurrogate(character) && !isInvisible(character) && !continuesCluster(kJoiner, character) &&
                !has(character, UCHAR_EMOJI_PRESENTATION));
    });
    return (*plain)[unit];
}

// What is seen on the character before it.
bool isPlainMark(char16_t unit) {
    static CharacterBits* marks = new CharacterBits([](char32_t character) {
        return !isSurrogate(character) && !isInvisible(character) && continuesCluster(0, character) &&
               !has(character, UCHAR_EMOJI_MODIFIER);
    });
    return unit >= 0x300 && (*marks)[unit];
}

bool isPlainShared(char16_t unit) {
    static CharacterBits* shared = new CharacterBits(isShared);
    return (*shared)[unit];
}

// The end of a cluster that is a plain character and plain marks; its start if it is another one.
std::size_t endOfPlainCluster(std::u16string_view text, std::size_t start) {
    if (!isPlain(text[start])) return start;
    std::size_t end = start + 1;
    while (end < text.size() && isPlainMark(text[end])) ++end;
    return end == text.size() || text[end] < 0x300 || isPlain(text[end]) ? end : start;
}

// The number of the variant that sets the character, as this thread remembers it.
std::uint32_t numberOfVariantFor(const Given& given, char16_t character) {
    struct Known {
        std::uint32_t given, character, found;
    };
    constexpr std::size_t kSize = 2048;
    // Not in the thread's own memory, of which there is little left for a library that a plug-in brings.
    static thread_local const auto known = std::make_unique<Known[]>(kSize);
    const std::uint32_t number =
        given.variant->number() * kEastAsianCount + static_cast<unsigned>(given.language);
    Known& slot = known[(number * 0x9E3779B1u ^ character) % kSize];
    if (slot.given != number || slot.character != character)
        slot = {number, character, variantFor(given, {&character, 1})->number()};
    return slot.found;
}

// Whether the plain cluster is set by the variant that sets the text before it.
bool goesOnIn(const Variant& variant, const Given& given, std::u16string_view cluster) {
    FontFace& face = variant->face();
    if (!std::all_of(cluster.begin(), cluster.end(), [&](char16_t unit) { return face.hasCharacter(unit); }))
        return false;
    return variant == given.variant || (!face.entry().isColoured && isPlainShared(cluster[0])) ||
           numberOfVariantFor(given, cluster[0]) == variant->number();
}

// The end of the ASCII text at the place, which no mark follows.
std::size_t endOfASCII(std::u16string_view text, std::size_t place) {
    const std::size_t start = place;
    while (place < text.size() && text[place] >= ' ' && text[place] < 0x7F) ++place;
    const bool isFollowed = place < text.size() && text[place] >= 0x300 && !isPlain(text[place]);
    return place > start && isFollowed ? place - 1 : place;
}

NSFont* inVariant(NSFont* font, const Variant& variant) {
    return variant == font->sharedVariant() ? font : NSFont::fontWithVariant_size(variant, font->pointSize());
}

}  // namespace

NSFont* substituteFont(NSFont* font, std::u16string_view cluster) {
    if (cluster.size() == 1 && isPlain(cluster[0]) && font->variant().face().hasCharacter(cluster[0]))
        return font;
    return inVariant(font, variantFor({font->sharedVariant(), EastAsian::unknown}, cluster));
}

FontStretch fontStretchAt(NSFont* font, std::u16string_view text, NSUInteger start, EastAsian language) {
    const Given given{font->sharedVariant(), language};
    std::size_t place = start;
    Variant stretch;
    while (place < text.size()) {
        if (stretch == given.variant && given.variant->face().hasASCII()) {
            place = endOfASCII(text, place);
            if (place == text.size()) break;
        }
        const std::size_t plainEnd = stretch ? endOfPlainCluster(text, place) : place;
        if (plainEnd > place && goesOnIn(stretch, given, text.substr(place, plainEnd - place))) {
            place = plainEnd;
            continue;
        }
        const std::size_t end = endOfCluster(text, place);
        Variant wanted = variantOfCluster(given, stretch ? stretch : variantBefore(given, text, place),
                                          text.substr(place, end - place));
        if (stretch && wanted != stretch) break;
        stretch = std::move(wanted);
        place = end;
    }
    return {stretch ? inVariant(font, stretch) : font, static_cast<NSUInteger>(place)};
}

}  // namespace pelvor
