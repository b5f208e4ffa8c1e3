// SPDX-License-Identifier: Apache-2.0
#include "PBProfile.h"

#include <algorithm>
#include <vector>

#include "BaseLibrary.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSPasteboardTypes.h"
#include "PBProfileKeys.h"
#include "Runtime/Message.h"

namespace pelvor {
namespace {

// The strings of a profile that stand for something else. Every type is put under the same key, so that the
// table holds only the last one. Profiles may depend on that.
constinit NSMutableDictionary* _PBStandardPboardTypes = nullptr;

void makeStandardPboardTypes() {
    NSString* const types[] = {
        NSStringPboardType, NSFilenamesPboardType,    NSPostScriptPboardType,  NSTIFFPboardType,
        NSRTFPboardType,    NSRTFDPboardType,         NSTabularTextPboardType, NSFontPboardType,
        NSRulerPboardType,  NSFileContentsPboardType, NSColorPboardType,       NSRTFDPboardType,
        NSHTMLPboardType,   NSPICTPboardType,         NSURLPboardType,         NSPDFPboardType,
    };
    _PBStandardPboardTypes = NSMutableDictionary::init().leak();
    for (NSString* type : types) _PBStandardPboardTypes->setObject_forKey(type, u"val"_ns);
}

// Whether the object holds nothing to convert and cannot be changed, as most objects that are read from
// files.
bool isConverted(id object) {
    if (cast<NSString>(object)) return !_PBStandardPboardTypes->objectForKey(object);
    if (cast<NSMutableDictionary>(object) || cast<NSMutableArray>(object)) return false;
    if (auto* dictionary = cast<NSDictionary>(object)) {
        for (auto [key, value] : dictionary)
            if (!isConverted(value)) return false;
    } else if (auto* array = cast<NSArray>(object)) {
        for (id element : array)
            if (!isConverted(element)) return false;
    }
    return true;
}

Retained<Object> _PBConvertPboardTypes(id object);

// The keys come in reverse, as the library walks all dictionaries of profiles.
Retained<NSDictionary> convertedDictionary(NSDictionary* dictionary) {
    std::vector<Object*> keys, values;
    std::vector<Retained<Object>> converted;
    for (auto vector : {&keys, &values}) vector->reserve(dictionary->count());
    converted.reserve(dictionary->count());
    for (auto [key, value] : dictionary) {
        keys.push_back(key);
        values.push_back(converted.emplace_back(_PBConvertPboardTypes(value)));
    }
    std::reverse(keys.begin(), keys.end());
    std::reverse(values.begin(), values.end());
    return NSDictionary::initWithObjects_forKeys_count(values.data(), keys.data(),
                                                       static_cast<NSUInteger>(keys.size()));
}

Retained<NSArray> convertedArray(NSArray* array) {
    std::vector<Retained<Object>> converted;
    std::vector<Object*> elements;
    for (id element : array) elements.push_back(converted.emplace_back(_PBConvertPboardTypes(element)));
    return NSArray::initWithObjects_count(elements.data(), static_cast<NSUInteger>(elements.size()));
}

// The object itself if there is nothing to convert.
Retained<Object> _PBConvertPboardTypes(id object) {
    if (isConverted(object)) return Retained<Object>::retaining(object);
    if (cast<NSString>(object))
        return Retained<Object>::retaining(_PBStandardPboardTypes->objectForKey(object));
    if (auto* dictionary = cast<NSDictionary>(object)) return convertedDictionary(dictionary);
    if (auto* array = cast<NSArray>(object)) return convertedArray(array);
    return Retained<Object>::retaining(object);
}

}  // namespace

PELVOR_DEFINE_CLASS(PBProfile, baseLibrary) {
    methods.classLevel<"initialize", &PBProfile::initialize>();
    methods.creator<"profileWithIdentifier:dictionary:bundle:",
                    &PBProfile::profileWithIdentifier_dictionary_bundle>();
    methods
        .creator<"initWithIdentifier:dictionary:bundle:", &PBProfile::initWithIdentifier_dictionary_bundle>();
    methods.instance<"identifier", &PBProfile::identifier>();
    methods.instance<"bundle", &PBProfile::bundle>();
    methods.instance<"valueForKey:", &PBProfile::valueForKey>();
    methods.instance<"objectForKey:", &PBProfile::objectForKey>();
    methods.instance<"type", &PBProfile::type>();
    methods.instance<"profileClass", &PBProfile::profileClass>();
    methods.instance<"stringsName", &PBProfile::stringsName>();
    methods.instance<"localize:", &PBProfile::localize>();
}

void PBProfile::initialize(Class*) {
    if (!_PBStandardPboardTypes) makeStandardPboardTypes();
}

PBProfile* PBProfile::profileWithIdentifier_dictionary_bundle(id identifier, NSDictionary* dictionary,
                                                              NSBundle* bundle, Class* cls) {
    return initWithIdentifier_dictionary_bundle(identifier, dictionary, bundle, cls).autorelease();
}

Retained<PBProfile> PBProfile::initWithIdentifier_dictionary_bundle(id identifier, NSDictionary* dictionary,
                                                                    NSBundle* bundle, Class* cls) {
    auto self = make<PBProfile>(cls);
    self->_identifier = send<Retained<Object>>(identifier, "copy"_sel);
    self->_bundle.set(bundle);
    if (dictionary && isConverted(dictionary))
        self->_info = dictionary->copy();
    else if (dictionary)
        self->_info = convertedDictionary(dictionary);
    return self;
}

id PBProfile::valueForKey(id key) { return _info ? _info->objectForKey(key) : nullptr; }

id PBProfile::type() { return valueForKey(PBProfileTypeKey); }

Class* PBProfile::profileClass() {
    auto* name = cast<NSString>(valueForKey(PBProfileClassKey));
    return name ? classNamed(name->toUTF8()) : nullptr;
}

id PBProfile::stringsName() { return valueForKey(PBProfileStringsKey); }

NSString* PBProfile::localize(NSString* string) {
    auto* table = cast<NSString>(stringsName());
    if (!table) return string;
    NSBundle* bundle = _bundle ? _bundle.get() : NSBundle::mainBundle();
    return bundle->localizedStringForKey_value_table(string, u""_ns, table);
}

NSString* PBProfile::description() {
    return NSString::stringWithFormat(u"<%@ %p>: %@ = %@"_ns, class_(), static_cast<void*>(this), _identifier,
                                      _info);
}

}  // namespace pelvor
