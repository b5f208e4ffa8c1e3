// SPDX-License-Identifier: Apache-2.0
// NSFontDescriptor: what a font is asked for by.
#pragma once

#include "Foundation/NSDictionary.h"
#include "Runtime/Class.h"

namespace pelvor {

class NSCoder;
class NSString;

// The keys of a descriptor's attributes, each with the class of its value.

extern PELVOR_EXPORT NSString* const NSFontFamilyAttribute;  ///< NSString: "DejaVu Sans"
extern PELVOR_EXPORT NSString* const NSFontNameAttribute;    ///< NSString: "DejaVuSans-Bold"
extern PELVOR_EXPORT NSString* const NSFontFaceAttribute;    ///< NSString: "Bold", a face of the family
extern PELVOR_EXPORT NSString* const NSFontSizeAttribute;    ///< NSNumber: points
/// NSArray of NSDictionary with the two keys below: typographic features that are on or off, by the numbers
/// of the font feature registry. Understood are ligatures (type 1), vertical forms (4), number spacing (6),
/// vertical position (10), fractions (11), the slashed zero (14), forms of Chinese characters (20), number
/// case (21), text spacing (22), ruby (28), contextual alternatives (36), and small capitals in the place of
/// small letters (37) and of capitals (38): {37, 1} sets small capitals. Others are kept and do nothing.
extern PELVOR_EXPORT NSString* const NSFontFeatureSettingsAttribute;
extern PELVOR_EXPORT NSString* const NSFontFeatureTypeIdentifierKey;  ///< NSNumber: the type of feature
extern PELVOR_EXPORT NSString* const
    NSFontFeatureSelectorIdentifierKey;  ///< NSNumber: the choice of that type

/// A dictionary of attributes that a font is asked for by. Immutable, any thread. Operations return borrowed
/// descriptors.
///
///     auto* bold = NSDictionary::of({{NSFontFamilyAttribute, u"DejaVu Sans"_ns},
///                                    {NSFontFaceAttribute, u"Bold"_ns}});
///     NSFontDescriptor* wanted = NSFontDescriptor::fontDescriptorWithFontAttributes(bold);
///     NSFont* font = NSFont::fontWithDescriptor_size(wanted, 12);
class PELVOR_EXPORT NSFontDescriptor : public NSObject {
    PELVOR_CLASS(NSFontDescriptor, NSObject);
    PELVOR_CREATORS(fontDescriptorWithFontAttributes, fontDescriptorWithName_size, initWithFontAttributes,
                    initWithCoder);

  public:
    /// Null stands for no attributes.
    static NSFontDescriptor* fontDescriptorWithFontAttributes(NSDictionary* attributes,
                                                              Class* cls = classObject());
    /// Raises NSInvalidArgumentException for null as name.
    static NSFontDescriptor* fontDescriptorWithName_size(NSString* name, float size,
                                                         Class* cls = classObject());
    static Retained<NSFontDescriptor> initWithFontAttributes(NSDictionary* attributes,
                                                             Class* cls = classObject());

    NSDictionary* fontAttributes() { return _attributes; }
    id objectForKey(NSString* attribute);
    /// 0 if the descriptor has no size.
    float pointSize();

    /// The attributes of the receiver and the given ones, which win where both have a key.
    NSFontDescriptor* fontDescriptorByAddingAttributes(NSDictionary* attributes);
    NSFontDescriptor* fontDescriptorWithSize(float size);
    /// Both raise NSInvalidArgumentException for null.
    NSFontDescriptor* fontDescriptorWithFamily(NSString* family);
    NSFontDescriptor* fontDescriptorWithFace(NSString* face);

    bool isEqual(id other) override;
    std::uintptr_t hash() override;
    NSString* description() override;
    void encodeWithCoder(NSCoder* coder);
    static Retained<NSFontDescriptor> initWithCoder(NSCoder* coder, Class* cls = classObject());
    Retained<Object> copyWithZone(void* zone) override;
    Retained<NSFontDescriptor> copy() { return Retained<NSFontDescriptor>::retaining(this); }

  protected:
    NSFontDescriptor() = default;
    ~NSFontDescriptor() = default;

  private:
    NSFontDescriptor* settingObject_forKey(id object, NSString* key);

    Retained<NSDictionary> _attributes;
};

}  // namespace pelvor
