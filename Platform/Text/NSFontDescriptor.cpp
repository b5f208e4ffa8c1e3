// SPDX-License-Identifier: Apache-2.0
#include "Text/NSFontDescriptor.h"

#include "Foundation/NSCoder.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "Shared/ArgumentChecks.h"
#include "Text/TextLibrary.h"

namespace pelvor {

constinit NSString* const NSFontFamilyAttribute = u"NSFontFamilyAttribute"_ns;
constinit NSString* const NSFontNameAttribute = u"NSFontNameAttribute"_ns;
constinit NSString* const NSFontFaceAttribute = u"NSFontFaceAttribute"_ns;
constinit NSString* const NSFontSizeAttribute = u"NSFontSizeAttribute"_ns;
constinit NSString* const NSFontFeatureSettingsAttribute = u"NSCTFontFeatureSettingsAttribute"_ns;
constinit NSString* const NSFontFeatureTypeIdentifierKey = u"CTFeatureTypeIdentifier"_ns;
constinit NSString* const NSFontFeatureSelectorIdentifierKey = u"CTFeatureSelectorIdentifier"_ns;

PELVOR_DEFINE_CLASS(NSFontDescriptor, textLibrary) {
    methods
        .creator<"fontDescriptorWithFontAttributes:", &NSFontDescriptor::fontDescriptorWithFontAttributes>();
    methods.creator<"fontDescriptorWithName:size:", &NSFontDescriptor::fontDescriptorWithName_size>();
    methods.creator<"initWithFontAttributes:", &NSFontDescriptor::initWithFontAttributes>();
    methods.creator<"initWithCoder:", &NSFontDescriptor::initWithCoder>();
    methods.instance<"fontAttributes", &NSFontDescriptor::fontAttributes>();
    methods.instance<"objectForKey:", &NSFontDescriptor::objectForKey>();
    methods.instance<"pointSize", &NSFontDescriptor::pointSize>();
    methods
        .instance<"fontDescriptorByAddingAttributes:", &NSFontDescriptor::fontDescriptorByAddingAttributes>();
    methods.instance<"fontDescriptorWithSize:", &NSFontDescriptor::fontDescriptorWithSize>();
    methods.instance<"fontDescriptorWithFamily:", &NSFontDescriptor::fontDescriptorWithFamily>();
    methods.instance<"fontDescriptorWithFace:", &NSFontDescriptor::fontDescriptorWithFace>();
    methods.instance<"encodeWithCoder:", &NSFontDescriptor::encodeWithCoder>();
}

// MARK: Creation

NSFontDescriptor* NSFontDescriptor::fontDescriptorWithFontAttributes(NSDictionary* attributes, Class* cls) {
    return initWithFontAttributes(attributes, cls).autorelease();
}

NSFontDescriptor* NSFontDescriptor::fontDescriptorWithName_size(NSString* name, float size, Class* cls) {
    requireArgument(name, "fontDescriptorWithName:size:", "the name");
    return fontDescriptorWithFontAttributes(
        NSDictionary::of(
            {{NSFontNameAttribute, name}, {NSFontSizeAttribute, NSNumber::numberWithFloat(size)}}),
        cls);
}

Retained<NSFontDescriptor> NSFontDescriptor::initWithFontAttributes(NSDictionary* attributes, Class* cls) {
    auto descriptor = make<NSFontDescriptor>(cls);
    descriptor->_attributes = attributes ? attributes->copy() : NSDictionary::init();
    return descriptor;
}

// MARK: Attributes

id NSFontDescriptor::objectForKey(NSString* attribute) { return _attributes->objectForKey(attribute); }

float NSFontDescriptor::pointSize() {
    auto* size = cast<NSNumber>(objectForKey(NSFontSizeAttribute));
    return size ? size->floatValue() : 0;
}

NSFontDescriptor* NSFontDescriptor::fontDescriptorByAddingAttributes(NSDictionary* attributes) {
    if (!attributes || !attributes->count()) return this;
    auto all = _attributes->mutableCopy();
    all->addEntriesFromDictionary(attributes);
    return fontDescriptorWithFontAttributes(all);
}

NSFontDescriptor* NSFontDescriptor::settingObject_forKey(id object, NSString* key) {
    return fontDescriptorByAddingAttributes(NSDictionary::of({{key, object}}));
}

NSFontDescriptor* NSFontDescriptor::fontDescriptorWithSize(float size) {
    return settingObject_forKey(NSNumber::numberWithFloat(size), NSFontSizeAttribute);
}

NSFontDescriptor* NSFontDescriptor::fontDescriptorWithFamily(NSString* family) {
    requireArgument(family, "fontDescriptorWithFamily:", "the family");
    return settingObject_forKey(family, NSFontFamilyAttribute);
}

NSFontDescriptor* NSFontDescriptor::fontDescriptorWithFace(NSString* face) {
    requireArgument(face, "fontDescriptorWithFace:", "the face");
    return settingObject_forKey(face, NSFontFaceAttribute);
}

// MARK: Everything else

bool NSFontDescriptor::isEqual(id other) {
    auto* descriptor = cast<NSFontDescriptor>(other);
    return descriptor && _attributes->isEqualToDictionary(descriptor->_attributes);
}

std::uintptr_t NSFontDescriptor::hash() { return _attributes->hash(); }

NSString* NSFontDescriptor::description() {
    return NSString::stringWithFormat(u"%@%@"_ns, Object::description(), _attributes.get());
}

Retained<Object> NSFontDescriptor::copyWithZone(void*) { return Retained<Object>::retaining(this); }

void NSFontDescriptor::encodeWithCoder(NSCoder* coder) {
    requireArgument(coder, "encodeWithCoder:", "the coder");
    coder->encodeObject_forKey(_attributes, u"NSAttributes"_ns);
}

Retained<NSFontDescriptor> NSFontDescriptor::initWithCoder(NSCoder* coder, Class* cls) {
    requireArgument(coder, "initWithCoder:", "the coder");
    return initWithFontAttributes(cast<NSDictionary>(coder->decodeObjectForKey(u"NSAttributes"_ns)), cls);
}

}  // namespace pelvor
