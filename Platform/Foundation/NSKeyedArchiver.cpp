// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSKeyedArchiver.h"

#include "Foundation/Coding/KeyedArchiveKeys.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSCountedSet.h"
#include "Foundation/NSDate.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableData.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSPropertyListError.h"
#include "Foundation/PropertyListLimits.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Runtime/NSMethodSignature.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

bool isLeaf(id object) {
    return cast<NSString>(object) || cast<NSNumber>(object) || cast<NSData>(object) || cast<NSDate>(object);
}

// The entry of a string or of data that can be changed; null for another object.
Retained<Object> entryForMutableLeaf(id object) {
    bool isText = cast<NSMutableString>(object);
    if (!isText && !cast<NSMutableData>(object)) return nullptr;
    NSString* cls = isText ? u"NSMutableString"_ns : u"NSMutableData"_ns;
    auto value = send<Retained<Object>>(object, "copy"_sel);
    return NSDictionary::initWithEntries({{archive::kClass, cls}, {archive::kValue, value}});
}

Retained<Object> entryForValue(NSValue* value) {
    const char* type = value->objCType();
    if (!archive::isPortableType(type))
        raiseException(NSInvalidArgumentException, u"%s cannot be archived"_ns, detail::describeType(type));
    NSUInteger size = 0;
    NSGetSizeAndAlignment(type, &size, nullptr);
    std::vector<std::byte> bytes(size);
    value->getValue(bytes.data());
    return NSDictionary::initWithEntries({{archive::kClass, u"NSValue"_ns},
                                          {archive::kType, NSString::ofUTF8(type)},
                                          {archive::kBytes, NSData::of(bytes)}});
}

}  // namespace

PELVOR_DEFINE_CLASS(NSKeyedArchiver, foundationLibrary) {
    methods.classLevel<"archivedDataWithRootObject:", &NSKeyedArchiver::archivedDataWithRootObject>();
    methods.creator<"init", &NSKeyedArchiver::init>();
    methods.instance<"setOutputFormat:", &NSKeyedArchiver::setOutputFormat>();
    methods.instance<"encodedData", &NSKeyedArchiver::encodedData>();
}

NSKeyedArchiver::NSKeyedArchiver() = default;
NSKeyedArchiver::~NSKeyedArchiver() = default;

Retained<NSKeyedArchiver> NSKeyedArchiver::init(Class* cls) {
    auto archiver = make<NSKeyedArchiver>(cls);
    archiver->_top = NSMutableDictionary::init();
    archiver->_fields = archiver->_top;
    archiver->_entries = NSMutableArray::initWithObjects({u""_ns});
    archiver->_encoded = NSMutableArray::init();
    archiver->_isComplete.push_back(true);
    return archiver;
}

NSData* NSKeyedArchiver::archivedDataWithRootObject(id object) {
    auto archiver = init();
    archiver->encodeObject_forKey(object, archive::kRoot);
    return archiver->encodedData();
}

NSData* NSKeyedArchiver::encodedData() {
    id list = NSDictionary::of({{archive::kArchiver, archive::kArchiverName},
                                {archive::kVersion, NSNumber::numberWithInt(1)},
                                {archive::kTop, _top.get()},
                                {archive::kObjects, _entries.get()}});
    NSPropertyListError* error = nullptr;
    NSData* data =
        NSPropertyListSerialization::dataWithPropertyList_format_options_error(list, _format, 0, &error);
    if (!data) raiseException(NSInvalidArgumentException, u"the objects cannot be archived: %@"_ns, error);
    return data;
}

// MARK: Objects

void NSKeyedArchiver::encodeObject_forKey(id object, NSString* key) {
    requireArgument(key, "encodeObject:forKey:", "the key");
    NSNumber* index = NSNumber::numberWithUnsignedInt(indexOf(object));
    _fields->setObject_forKey(NSDictionary::of({{archive::kObject, index}}), key);
}

NSUInteger NSKeyedArchiver::indexOf(id object) {
    if (!object) return 0;
    auto [known, isNew] = _indexes.try_emplace(object, _entries->count());
    NSUInteger index = known->second;
    if (isNew) {
        if (_depth >= propertyListLimits().maximumDepth)
            raiseException(NSInvalidArgumentException,
                           u"the objects are nested too deeply to be archived"_ns);
        _encoded->addObject(object);
        _entries->addObject(u""_ns);
        _isComplete.push_back(false);
        ++_depth;
        _entries->replaceObjectAtIndex_withObject(index, entryFor(object).get());
        --_depth;
        _isComplete[index] = true;
    } else if (!_isComplete[index]) {
        raiseException(NSInvalidArgumentException,
                       u"an object of class %s leads back to itself and cannot be archived"_ns,
                       object->isa()->publicName());
    }
    return index;
}

Retained<Object> NSKeyedArchiver::entryFor(id object) {
    if (Retained<Object> entry = entryForMutableLeaf(object)) return entry;
    if (isLeaf(object)) return send<Retained<Object>>(object, "copy"_sel);
    if (object->respondsToSelector("encodeWithCoder:"_sel)) return entryByCoding(object);
    if (auto* value = cast<NSValue>(object)) return entryForValue(value);
    if (cast<NSArray>(object))
        return listOf(cast<NSMutableArray>(object) ? "NSMutableArray" : "NSArray", object);
    if (cast<NSCountedSet>(object)) return listOf("NSCountedSet", object);
    if (cast<NSSet>(object)) return listOf(cast<NSMutableSet>(object) ? "NSMutableSet" : "NSSet", object);
    auto* dictionary = cast<NSDictionary>(object);
    if (!dictionary)
        raiseException(NSInvalidArgumentException,
                       u"an object of class %s cannot be archived: the class has no encodeWithCoder:"_ns,
                       object->isa()->publicName());
    const char* cls = cast<NSMutableDictionary>(object) ? "NSMutableDictionary" : "NSDictionary";
    return NSDictionary::initWithEntries({{archive::kClass, NSString::ofUTF8(cls)},
                                          {archive::kKeys, referencesTo(dictionary->allKeys())},
                                          {archive::kItems, referencesTo(dictionary->allValues())}});
}

Retained<Object> NSKeyedArchiver::entryByCoding(id object) {
    auto fields = NSMutableDictionary::init();
    Retained<NSMutableDictionary> outer = std::exchange(_fields, fields);
    send(object, "encodeWithCoder:"_sel, static_cast<id>(this));
    _fields = outer;
    NSString* cls = NSString::ofUTF8(object->class_()->name());
    return NSDictionary::initWithEntries({{archive::kClass, cls}, {archive::kFields, fields.get()}});
}

Retained<Object> NSKeyedArchiver::listOf(const char* cls, id collection) {
    return NSDictionary::initWithEntries(
        {{archive::kClass, NSString::ofUTF8(cls)}, {archive::kItems, referencesTo(collection)}});
}

id NSKeyedArchiver::referencesTo(id collection) {
    auto* set = cast<NSSet>(collection);
    auto* counted = cast<NSCountedSet>(collection);
    NSMutableArray* references = NSMutableArray::array();
    for (id object : set ? set->allObjects() : cast<NSArray>(collection)) {
        NSNumber* reference = NSNumber::numberWithUnsignedInt(indexOf(object));
        for (NSUInteger i = counted ? counted->countForObject(object) : 1; i > 0; --i)
            references->addObject(reference);
    }
    return references;
}

// MARK: Plain values

void NSKeyedArchiver::encodeBool_forKey(bool value, NSString* key) {
    requireArgument(key, "encodeBool:forKey:", "the key");
    _fields->setObject_forKey(NSNumber::numberWithBool(value), key);
}

void NSKeyedArchiver::encodeInt64_forKey(std::int64_t value, NSString* key) {
    requireArgument(key, "encodeInt64:forKey:", "the key");
    _fields->setObject_forKey(NSNumber::numberWithLongLong(value), key);
}

void NSKeyedArchiver::encodeDouble_forKey(double value, NSString* key) {
    requireArgument(key, "encodeDouble:forKey:", "the key");
    _fields->setObject_forKey(NSNumber::numberWithDouble(value), key);
}

void NSKeyedArchiver::encodeBytes_length_forKey(const void* bytes, NSUInteger length, NSString* key) {
    requireMemory(bytes, length, "encodeBytes:length:forKey:", "the bytes");
    requireArgument(key, "encodeBytes:length:forKey:", "the key");
    _fields->setObject_forKey(NSData::dataWithBytes_length(bytes, length), key);
}

}  // namespace pelvor
