// SPDX-License-Identifier: Apache-2.0
#include <unicode/uchar.h>
#include <unicode/uscript.h>

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

bool hasAll(const FontFace& face, std::u32string_view characters) {
    for (char32_t character : characters)
        if (!face.hasCharacter(character)) return false;
    return true;
}

NSFont* inVariant(NSFont* font, const std::shared_ptr<FontVariant>& variant) {
    return variant ? NSFont::fontWithVariant_size(variant, font->pointSize()) : font;
}

// Whether the cluster is set in the font of what stands before it if that font has it: marks between words
// that all scripts share.
bool isShared(char32_t character) {
    UErrorCode error = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(static_cast<UChar32>(character), &error);
    return script == USCRIPT_COMMON && !has(character, UCHAR_EXTENDED_PICTOGRAPHIC) &&
           !has(character, UCHAR_REGIONAL_INDICATOR);
}

// The font of the nearest character before `start` that belongs to a script, so that the font of shared marks
// does not depend on where somebody begins to ask.
NSFont* fontBefore(NSFont* font, std::u16string_view text, std::size_t start) {
    constexpr std::size_t kFarthest = 64;
    const std::size_t limit = start > kFarthest ? start - kFarthest : 0;
    while (start > limit) {
        --start;
        if (splitsPair(text, start)) --start;
        const char32_t character = codePointAt(text, start);
        if (!isShared(character) && !continuesCluster(0, character))
            return substituteFont(font, text.substr(start, endOfCluster(text, start) - start));
    }
    return font;
}

bool canSet(NSFont* font, std::u16string_view cluster) {
    return hasAll(font->variant().face(), Wants(cluster).characters);
}

NSFont* fontOfCluster(NSFont* font, NSFont* before, std::u16string_view cluster) {
    if (before != font && isShared(codePointAt(cluster, 0)) && canSet(before, cluster)) return before;
    return substituteFont(font, cluster);
}

}  // namespace

NSFont* substituteFont(NSFont* font, std::u16string_view cluster) {
    FontVariant& variant = font->variant();
    if (cluster.size() == 1 && cluster[0] < 0x2000 && variant.face().hasCharacter(cluster[0])) return font;
    const Wants wants(cluster);
    if (wants.asEmoji)
        if (auto emoji = FontCatalogue::shared().emojiFace(); emoji && hasAll(*emoji, wants.characters))
            return inVariant(font, variant.inFace(emoji));
    if (hasAll(variant.face(), wants.characters)) return font;
    return inVariant(font, variant.substituteFor(wants.characters));
}

FontStretch fontStretchAt(NSFont* font, std::u16string_view text, NSUInteger start) {
    std::size_t place = start;
    NSFont* stretch = nullptr;
    while (place < text.size()) {
        // Most text is plain letters that the font has.
        if (stretch == font && text[place] < 0x300 && font->variant().face().hasCharacter(text[place]) &&
            (place + 1 == text.size() || text[place + 1] < 0x300)) {
            ++place;
            continue;
        }
        const std::size_t end = endOfCluster(text, place);
        NSFont* before = stretch ? stretch : fontBefore(font, text, place);
        NSFont* wanted = fontOfCluster(font, before, text.substr(place, end - place));
        if (stretch && wanted != stretch) break;
        stretch = wanted;
        place = end;
    }
    return {stretch ? stretch : font, static_cast<NSUInteger>(place)};
}

}  // namespace pelvor
