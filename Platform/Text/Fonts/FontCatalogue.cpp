// SPDX-License-Identifier: Apache-2.0
#include "Text/Fonts/FontCatalogue.h"

#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <tuple>

#include "Foundation/NSLog.h"
#include "Foundation/StandardFolders.h"
#include "Runtime/AutoreleasePool.h"
#include "Text/Fonts/FontMemory.h"
#include "Text/NSFontManager.h"

namespace pelvor {
namespace {

const char* textOf(FcPattern* pattern, const char* object, int place = 0) {
    FcChar8* text = nullptr;
    return FcPatternGetString(pattern, object, place, &text) == FcResultMatch
               ? reinterpret_cast<const char*>(text)
               : nullptr;
}

// The English name if there is one, else the first.
std::string nameOf(FcPattern* pattern, const char* names, const char* languages) {
    for (int place = 0; const char* language = textOf(pattern, languages, place); ++place)
        if (!std::strcmp(language, "en"))
            if (const char* name = textOf(pattern, names, place)) return name;
    const char* name = textOf(pattern, names);
    return name ? name : "";
}

int numberOf(FcPattern* pattern, const char* object, int otherwise) {
    int number = otherwise;
    return FcPatternGetInteger(pattern, object, 0, &number) == FcResultMatch ? number : otherwise;
}

bool flagOf(FcPattern* pattern, const char* object) {
    FcBool flag = FcFalse;
    return FcPatternGetBool(pattern, object, 0, &flag) == FcResultMatch && flag == FcTrue;
}

// From fontconfig's weights, which are set apart unevenly.
int weightOf(FcPattern* pattern) {
    constexpr struct {
        int least, weight;
    } kWeights[] = {{FC_WEIGHT_EXTRABLACK, 12}, {FC_WEIGHT_BLACK, 11},   {FC_WEIGHT_EXTRABOLD, 10},
                    {FC_WEIGHT_BOLD, 9},        {FC_WEIGHT_DEMIBOLD, 8}, {FC_WEIGHT_MEDIUM, 6},
                    {FC_WEIGHT_BOOK, 5},        {FC_WEIGHT_LIGHT, 4},    {FC_WEIGHT_EXTRALIGHT, 3}};
    const int given = numberOf(pattern, FC_WEIGHT, FC_WEIGHT_REGULAR);
    for (auto [least, weight] : kWeights)
        if (given >= least) return weight;
    return 2;
}

unsigned traitsOf(FcPattern* pattern, int weight) {
    unsigned traits = 0;
    if (weight >= 8) traits |= NSBoldFontMask;
    if (numberOf(pattern, FC_SLANT, FC_SLANT_ROMAN) != FC_SLANT_ROMAN) traits |= NSItalicFontMask;
    const int width = numberOf(pattern, FC_WIDTH, FC_WIDTH_NORMAL);
    if (width < FC_WIDTH_NORMAL) traits |= NSCondensedFontMask;
    if (width > FC_WIDTH_NORMAL) traits |= NSExpandedFontMask;
    if (numberOf(pattern, FC_SPACING, FC_PROPORTIONAL) >= FC_MONO) traits |= NSFixedPitchFontMask;
    return traits;
}

bool isUsable(FcPattern* pattern) {
    const char* format = textOf(pattern, FC_FONTFORMAT);
    return format && (!std::strcmp(format, "TrueType") || !std::strcmp(format, "CFF")) &&
           (flagOf(pattern, FC_OUTLINE) || flagOf(pattern, FC_COLOR)) && !flagOf(pattern, FC_VARIABLE) &&
           textOf(pattern, FC_FILE);
}

unsigned indexOf(FcPattern* pattern) { return static_cast<unsigned>(numberOf(pattern, FC_INDEX, 0)); }

template <class Do>
void forUsablePatterns(FcConfig* config, Do action) {
    for (FcSetName name : {FcSetSystem, FcSetApplication})
        if (const FcFontSet* set = FcConfigGetFonts(config, name))
            for (int i = 0; i < set->nfont; ++i)
                if (isUsable(set->fonts[i])) action(set->fonts[i]);
}

ListedFont fontOf(FcPattern* pattern) {
    ListedFont font;
    FontEntry& entry = font.entry;
    entry.family = nameOf(pattern, FC_FAMILY, FC_FAMILYLANG);
    entry.fullName = nameOf(pattern, FC_FULLNAME, FC_FULLNAMELANG);
    entry.style = nameOf(pattern, FC_STYLE, FC_STYLELANG);
    const char* postScriptName = textOf(pattern, FC_POSTSCRIPT_NAME);
    entry.postScriptName = postScriptName ? postScriptName : entry.fullName;
    entry.file = textOf(pattern, FC_FILE);
    entry.index = indexOf(pattern);
    entry.weight = weightOf(pattern);
    entry.traits = traitsOf(pattern, entry.weight);
    entry.isColoured = flagOf(pattern, FC_COLOR);
    for (int place = 0; const char* family = textOf(pattern, FC_FAMILY, place); ++place)
        font.families.emplace_back(family);
    return font;
}

FontList listOf(FcConfig* config) {
    FontList list;
    forUsablePatterns(config, [&](FcPattern* pattern) { list.fonts.push_back(fontOf(pattern)); });
    return list;
}

// The files and folders whose change may change what fontconfig says, with those of the user that it did not
// find.
std::vector<std::string> dependenciesOf(FcConfig* config) {
    std::vector<std::string> paths;
    for (FcStrList* list : {FcConfigGetConfigFiles(config), FcConfigGetFontDirs(config)}) {
        while (const FcChar8* path = FcStrListNext(list))
            paths.emplace_back(reinterpret_cast<const char*>(path));
        FcStrListDone(list);
    }
    AutoreleasePool pool;
    const std::string home = NSHomeDirectory()->fileSystemRepresentation();
    const char* settings = std::getenv("XDG_CONFIG_HOME");
    const std::string own = (settings && *settings ? settings : home + "/.config") + "/fontconfig";
    paths.insert(paths.end(),
                 {own + "/fonts.conf", own + "/conf.d", home + "/.fonts.conf", home + "/.fonts.conf.d"});
    return paths;
}

FcPattern* patternOfFamily(const char* family) {
    FcPattern* pattern = FcPatternCreate();
    FcPatternAddString(pattern, FC_FAMILY, reinterpret_cast<const FcChar8*>(family));
    return pattern;
}

}  // namespace

std::string lowerCased(std::string_view name) {
    std::string lower(name);
    for (char& letter : lower)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    return lower;
}

bool FontEntry::hasCharacters(std::u32string_view wanted) const {
    return characters && std::all_of(wanted.begin(), wanted.end(), [this](char32_t character) {
               return FcCharSetHasChar(characters, character);
           });
}

FontCatalogue& FontCatalogue::shared() {
    static FontCatalogue* catalogue = new FontCatalogue;  // outlives the fonts that end with the process
    return *catalogue;
}

FontCatalogue::FontCatalogue() {
    if (const std::optional<FontList> known = FontMemory::ofUser().read()) {
        for (const ListedFont& font : known->fonts) add(font);
        for (const auto& [family, place] : known->best) _rememberedBest.emplace(family, &_entries[place]);
    } else {
        FontList list = listOf(FcConfigReference(nullptr));
        for (const ListedFont& font : list.fonts) add(font);
        remember(std::move(list));
    }
    for (const FontEntry& entry : _entries) _ordered.push_back(&entry);
    std::sort(_ordered.begin(), _ordered.end(), [](const FontEntry* a, const FontEntry* b) {
        return std::tie(a->postScriptName, a->file) < std::tie(b->postScriptName, b->file);
    });
    for (auto& [family, members] : _families)
        std::stable_sort(members.begin(), members.end(), [](const FontEntry* a, const FontEntry* b) {
            return std::tie(a->weight, a->traits, a->postScriptName) <
                   std::tie(b->weight, b->traits, b->postScriptName);
        });
    if (_entries.empty()) logText("No font is installed: text is set in boxes");
}

void FontCatalogue::add(const ListedFont& font) {
    FontEntry& entry = _entries.emplace_back(font.entry);
    _postScriptNames[lowerCased(entry.postScriptName)].push_back(&entry);
    _fullNames[lowerCased(entry.fullName)].push_back(&entry);
    for (const std::string& family : font.families) _families[lowerCased(family)].push_back(&entry);
}

// Gives the entries what is not remembered.
void FontCatalogue::askFontconfig() {
    std::call_once(_asked, [this] {
        _config = FcConfigReference(nullptr);
        std::map<std::pair<std::string_view, unsigned>, FontEntry*> faces;
        for (FontEntry& entry : _entries) faces[{entry.file, entry.index}] = &entry;
        forUsablePatterns(_config, [&](FcPattern* pattern) {
            const auto face = faces.find({textOf(pattern, FC_FILE), indexOf(pattern)});
            if (face == faces.end()) return;
            FcCharSet* characters = nullptr;
            if (FcPatternGetCharSet(pattern, FC_CHARSET, 0, &characters) == FcResultMatch)
                face->second->characters = characters;
            face->second->pattern = pattern;
            _byPattern.emplace(pattern, face->second);
        });
    });
}

void FontCatalogue::remember(FontList list) {
    for (const char* family : {"sans-serif", "monospace"}) {
        const auto order = ranked(patternOfFamily(family));
        const auto best =
            std::find_if(order.begin(), order.end(), [](auto* entry) { return !entry->isColoured; });
        if (best == order.end()) continue;
        const auto place =
            std::find_if(_entries.begin(), _entries.end(), [&](auto& entry) { return &entry == *best; });
        list.best.emplace_back(family, static_cast<std::size_t>(place - _entries.begin()));
    }
    // What has changed since it was read would be taken for what was read.
    if (FcConfigUptoDate(_config)) FontMemory::ofUser().write(list, dependenciesOf(_config));
}

std::vector<const FontEntry*> FontCatalogue::look(const Names& names, std::string_view name) {
    auto found = names.find(lowerCased(name));
    return found == names.end() ? std::vector<const FontEntry*>() : found->second;
}

std::vector<const FontEntry*> FontCatalogue::named(std::string_view name) const {
    auto found = look(_postScriptNames, name);
    return found.empty() ? look(_fullNames, name) : found;
}

std::vector<const FontEntry*> FontCatalogue::ofFamily(std::string_view family) const {
    return look(_families, family);
}

// MARK: Faces

std::shared_ptr<FontFace> FontCatalogue::face(const FontEntry& entry) {
    std::lock_guard lock(_mutex);
    Opened& opened = _opened[&entry];
    if (opened.isBroken) return nullptr;
    std::shared_ptr<FontFace> face = opened.face.lock();
    if (face) return face;
    face = FontFace::open(entry);
    opened = {face, !face};
    return face;
}

std::shared_ptr<FontFace> FontCatalogue::bestFace(const char* family) {
    {
        std::lock_guard lock(_mutex);
        if (auto known = _best.find(family); known != _best.end()) return known->second;
    }
    std::shared_ptr<FontFace> best;
    if (auto known = _rememberedBest.find(family); known != _rememberedBest.end())
        best = face(*known->second);
    if (!best)
        for (const FontEntry* entry : ranked(patternOfFamily(family)))
            if (!entry->isColoured && (best = face(*entry))) break;
    if (!best) best = FontFace::box();
    std::lock_guard lock(_mutex);
    return _best.emplace(family, best).first->second;
}

std::shared_ptr<FontFace> FontCatalogue::emojiFace() {
    static const std::shared_ptr<FontFace> emoji = [this]() -> std::shared_ptr<FontFace> {
        for (const FontEntry* entry : ranked(patternOfFamily("emoji")))
            if (entry->isColoured)
                if (auto opened = face(*entry)) return opened;
        return nullptr;
    }();
    return emoji;
}

std::vector<const FontEntry*> FontCatalogue::substitutes(const FontEntry& entry, EastAsian language) {
    askFontconfig();
    static constexpr const char* kNames[kEastAsianCount] = {nullptr, "zh-cn", "zh-tw", "zh-hk", "ja", "ko"};
    FcPattern* wanted = patternOfFamily(entry.family.c_str());
    if (const char* name = kNames[static_cast<std::size_t>(language)])
        FcPatternAddString(wanted, FC_LANG, reinterpret_cast<const FcChar8*>(name));
    for (const char* object : {FC_WEIGHT, FC_SLANT, FC_WIDTH, FC_SPACING}) {
        int number = 0;
        if (entry.pattern && FcPatternGetInteger(entry.pattern, object, 0, &number) == FcResultMatch)
            FcPatternAddInteger(wanted, object, number);
    }
    return ranked(wanted);
}

// Takes over the pattern.
std::vector<const FontEntry*> FontCatalogue::ranked(FcPattern* wanted) {
    askFontconfig();
    FcConfigSubstitute(_config, wanted, FcMatchPattern);
    FcDefaultSubstitute(wanted);
    FcResult result = FcResultNoMatch;
    FcFontSet* set = FcFontSort(_config, wanted, FcFalse, nullptr, &result);
    FcPatternDestroy(wanted);
    std::vector<const FontEntry*> entries;
    if (!set) return entries;
    for (int i = 0; i < set->nfont; ++i)
        if (auto entry = _byPattern.find(set->fonts[i]); entry != _byPattern.end())
            entries.push_back(entry->second);
    FcFontSetDestroy(set);
    return entries;
}

}  // namespace pelvor
