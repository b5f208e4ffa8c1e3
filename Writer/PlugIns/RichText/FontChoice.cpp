// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/FontChoice.h"

#include <algorithm>
#include <cmath>

#include "Foundation/NSString.h"
#include "Text/NSFont.h"
#include "Text/NSFontManager.h"

namespace pelvor {
namespace {

NSFontManager* manager() { return NSFontManager::sharedFontManager(); }

NSFont* fontNamed(const std::u16string& name) {
    return name.empty() ? nullptr : NSFont::fontWithName_size(NSString::of(name), 12);
}

// What stands in for missing fonts.
NSFont* substituteOfKind(FontEntry::Kind kind) {
    NSFont* found = nullptr;
    if (kind == FontEntry::serif)
        for (NSString* name : {u"Liberation Serif"_ns, u"DejaVu Serif"_ns, u"Noto Serif"_ns})
            if (!found) found = NSFont::fontWithName_size(name, 12);
    if (kind == FontEntry::sansSerif)
        for (NSString* name : {u"Liberation Sans"_ns, u"DejaVu Sans"_ns, u"Noto Sans"_ns})
            if (!found) found = NSFont::fontWithName_size(name, 12);
    if (kind == FontEntry::fixedPitch) found = NSFont::userFixedPitchFontOfSize(12);
    return found ? found : NSFont::userFontOfSize(12);
}

NSFont* face(NSFont* font, bool isBold, bool isItalic) {
    const unsigned traits = (isBold ? NSBoldFontMask : 0u) | (isItalic ? NSItalicFontMask : 0u);
    return traits ? manager()->convertFont_toHaveTrait(font, traits) : font;
}

}  // namespace

FontChoice::Family& FontChoice::familyOf(const FontEntry& entry) {
    Family& family = _families[{entry.name, entry.alternative, entry.kind}];
    if (family.isKnown) return family;
    NSFont* font = fontNamed(entry.name);
    family.isSubstitute = !font && !entry.name.empty();
    if (!font) font = fontNamed(entry.alternative);
    family.faces[0] = font ? font : substituteOfKind(entry.kind);
    family.isKnown = true;
    return family;
}

ChosenFont FontChoice::fontFor(const FontRequest& request) {
    Family& family = familyOf(request.entry);
    NSFont*& found = family.faces[(request.isBold ? 1 : 0) | (request.isItalic ? 2 : 0)];
    if (!found) found = face(family.faces[0], request.isBold, request.isItalic);
    const float size = static_cast<float>(request.halfPoints) / 2;
    return {manager()->convertFont_toSize(found, size), family.isSubstitute};
}

FontRequest FontChoice::requestFor(NSFont* font, const std::u16string& wantedName) {
    const unsigned traits = manager()->traitsOfFont(font);
    FontRequest request;
    request.isBold = traits & NSBoldFontMask;
    request.isItalic = traits & NSItalicFontMask;
    request.halfPoints =
        static_cast<std::int32_t>(std::clamp(std::lround(font->pointSize() * 2), 2L, 0x7FFEL));
    NSFont* rounded = manager()->convertFont_toSize(font, static_cast<float>(request.halfPoints) / 2);
    const auto finds = [&](const FontRequest& tried) { return fontFor(tried).font == rounded; };
    if (!wantedName.empty()) {
        // The kind decides what stands in for a missing font.
        request.entry.name = wantedName;
        for (int kind : {FontEntry::any, FontEntry::serif, FontEntry::sansSerif, FontEntry::fixedPitch}) {
            request.entry.kind = static_cast<FontEntry::Kind>(kind);
            if (finds(request)) return request;
        }
        request.entry.kind = FontEntry::any;
        request.entry.alternative = font->familyName()->toUTF16();
        return request;
    }
    if (font->isFixedPitch()) request.entry.kind = FontEntry::fixedPitch;
    request.entry.name = font->familyName()->toUTF16();
    if (finds(request)) return request;
    FontRequest byName = request;  // a face that is more than bold and italic
    byName.isBold = byName.isItalic = false;
    byName.entry.name = font->fontName()->toUTF16();
    return finds(byName) ? byName : request;
}

}  // namespace pelvor
