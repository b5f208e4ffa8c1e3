// SPDX-License-Identifier: Apache-2.0
// FontVariant: what fonts of one typeface share, whatever their size.
#pragma once

#include <array>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "Foundation/NSArray.h"
#include "Text/Fonts/EastAsian.h"
#include "Text/Fonts/FontFace.h"
#include "Text/Fonts/FontFeatures.h"

namespace pelvor {

/// What is made up of a face that the family lacks.
struct MadeUpTraits {
    bool isBold = false;
    bool isOblique = false;
    friend bool operator==(const MadeUpTraits&, const MadeUpTraits&) = default;
};

/// A typeface with feature settings and made-up traits: what fonts of one look share, whatever their size.
/// Equal variants are one object. Any thread.
class FontVariant {
  public:
    static std::shared_ptr<FontVariant> of(const std::shared_ptr<FontFace>& face, NSArray* featureSettings,
                                           MadeUpTraits madeUp = {});
    /// The variant that a font's name tells: the first usable face of that name or family, or of the name
    /// before "+Bold", "+Oblique" or "+BoldOblique". Null if there is none.
    static std::shared_ptr<FontVariant> named(std::string_view name, NSArray* featureSettings);
    /// The face of the family that has these traits and the nearest weight. A bold or an oblique face that
    /// the family lacks is made up. Null if there is no such family, or if no face of it has the other
    /// traits.
    static std::shared_ptr<FontVariant> ofFamily(std::string_view family, unsigned traits, int weight,
                                                 NSArray* featureSettings);
    /// The variant for a descriptor without a font's name: the face of that style, "Bold Oblique", or else
    /// the upright one nearest to regular.
    static std::shared_ptr<FontVariant> ofFamily(std::string_view family, NSString* style,
                                                 NSArray* featureSettings);
    FontVariant(const FontVariant&) = delete;

    /// Another one for each variant that ever was; not 0.
    std::uint32_t number() const { return _number; }
    FontFace& face() const { return *_face; }
    const std::shared_ptr<FontFace>& sharedFace() const { return _face; }
    MadeUpTraits madeUp() const { return _madeUp; }
    /// Null if there are none.
    NSArray* featureSettings() const { return _featureSettings; }
    const std::vector<FontFeature>& features() const { return _features; }

    std::string name() const;
    unsigned traits() const;
    int weight() const;

    /// The variant that sets the characters in the place of this one in text of the language: the first of
    /// the faces that the configuration ranks which has all of them. Null if no face has.
    std::shared_ptr<FontVariant> substituteFor(std::u32string_view characters, EastAsian language);
    /// The variant of the same settings and traits in another face.
    std::shared_ptr<FontVariant> inFace(const std::shared_ptr<FontFace>& face) const;

    /// Places for what drawing and measuring make of the variant.
    std::shared_ptr<void> drawingFace;
    std::once_flag drawingFaceMade;
    std::shared_ptr<void> measurer;

  private:
    FontVariant() = default;
    static std::shared_ptr<FontFace> faceNamed(std::string_view name);
    std::shared_ptr<FontVariant> substituteFor(char32_t character, EastAsian language);
    std::shared_ptr<FontVariant> findSubstitute(std::u32string_view characters, EastAsian language);

    // What stands in for the variant in one language.
    struct Substitutes {
        std::once_flag ranking;
        std::vector<const FontEntry*> ranked;
        std::unordered_map<char32_t, std::shared_ptr<FontVariant>> of;
    };
    Substitutes& substitutesFor(EastAsian language) {
        return _substitutes[static_cast<std::size_t>(language)];
    }

    std::uint32_t _number = 0;
    std::shared_ptr<FontFace> _face;
    MadeUpTraits _madeUp;
    Retained<NSArray> _featureSettings;
    std::vector<FontFeature> _features;

    std::mutex _mutex;  // for what stands in for single characters
    std::array<Substitutes, kEastAsianCount> _substitutes;
};

}  // namespace pelvor
