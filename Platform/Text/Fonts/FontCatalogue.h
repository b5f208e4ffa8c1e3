// SPDX-License-Identifier: Apache-2.0
// FontCatalogue: the fonts that the machine's configuration lists.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Text/Fonts/EastAsian.h"
#include "Text/Fonts/FontFace.h"

struct _FcCharSet;
struct _FcConfig;
struct _FcPattern;

namespace pelvor {

constexpr int kGreatestWeight = 15;

/// A typeface that the configuration lists. Names are UTF-8.
struct FontEntry {
    std::string postScriptName;
    std::string family;
    std::string fullName;
    std::string style = {};  ///< "Bold Oblique"
    std::string file = {};
    unsigned index = 0;   ///< the face in its file, and above bit 16 the named instance of a variable font
    int weight = 5;       ///< 0 to kGreatestWeight, 5 is regular and 9 bold
    unsigned traits = 0;  ///< NSFontTraitMask
    bool isColoured = false;
    // What else fontconfig knows; null until FontCatalogue::substitutes has asked it.
    const _FcCharSet* characters = nullptr;
    _FcPattern* pattern = nullptr;

    bool hasCharacters(std::u32string_view wanted) const;
};

/// The name with small letters for A to Z: names of fonts are compared so.
std::string lowerCased(std::string_view name);

struct FontList;
struct ListedFont;

/// The outline and colour fonts that fontconfig knows, or knew when its settings and the folders of fonts
/// were the same, read when first asked for. Any thread.
class FontCatalogue {
  public:
    static FontCatalogue& shared();

    /// All typefaces, ordered by their PostScript names.
    const std::vector<const FontEntry*>& entries() const { return _ordered; }
    /// The typefaces of that PostScript name, or else of that full name; none if there are none.
    std::vector<const FontEntry*> named(std::string_view name) const;
    /// The typefaces of the family, ordered by weight, upright faces first.
    std::vector<const FontEntry*> ofFamily(std::string_view family) const;

    /// The entry's face, opened when it is first asked for or after its last user let go of it; null if the
    /// file is broken, which is logged once.
    std::shared_ptr<FontFace> face(const FontEntry& entry);
    /// The face that the configuration ranks first for a family, or a generic name like "sans-serif"; the box
    /// face if no font can be opened.
    std::shared_ptr<FontFace> bestFace(const char* family);
    /// All typefaces in the order in which the configuration would have them stand in for the given one in
    /// text of the language.
    std::vector<const FontEntry*> substitutes(const FontEntry& entry, EastAsian language);
    /// The colour font for emoji, null if there is none.
    std::shared_ptr<FontFace> emojiFace();

  private:
    FontCatalogue();
    void add(const ListedFont& font);
    void askFontconfig();
    void remember(FontList list);
    std::vector<const FontEntry*> ranked(_FcPattern* wanted);

    // Names in lower case, each with all its typefaces.
    using Names = std::unordered_map<std::string, std::vector<const FontEntry*>>;
    static std::vector<const FontEntry*> look(const Names& names, std::string_view name);

    std::deque<FontEntry> _entries;
    std::vector<const FontEntry*> _ordered;
    Names _postScriptNames, _fullNames, _families;
    std::unordered_map<std::string, const FontEntry*> _rememberedBest;

    std::once_flag _asked;  // for what follows
    _FcConfig* _config = nullptr;
    std::unordered_map<const _FcPattern*, const FontEntry*> _byPattern;

    struct Opened {
        std::weak_ptr<FontFace> face;
        bool isBroken = false;
    };
    std::mutex _mutex;  // for what follows
    std::unordered_map<const FontEntry*, Opened> _opened;
    std::unordered_map<std::string, std::shared_ptr<FontFace>> _best;
};

}  // namespace pelvor
