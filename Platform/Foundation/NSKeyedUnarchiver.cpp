// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSKeyedUnarchiver.h"

#include "Foundation/Coding/KeyedArchiveKeys.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSCountedSet.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableData.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSPropertyListError.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "Foundation/NSRuntimeNames.h"
#include "Foundation/PropertyListLimits.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSKeyedUnarchiver, foundationLibrary) {
    methods.classLevel<"unarchivedObjectWithData:allowedClasses:error:",
                       &NSKeyedUnarchiver::unarchivedObjectWithData_allowedClasses_error>();
    methods.creator<"initForReadingWithData:allowedClasses:",
                    &NSKeyedUnarchiver::initForReadingWithData_allowedClasses>();
    methods.instance<"error", &NSKeyedUnarchiver::error>();
}

NSKeyedUnarchiver::NSKeyedUnarchiver() = default;
NSKeyedUnarchiver::~NSKeyedUnarchiver() = default;

Retained<NSKeyedUnarchiver> NSKeyedUnarchiver::initForReadingWithData_allowedClasses(NSData* data,
                                                                                     NSSet* allowedClasses,
                                                                                     Class* cls) {
    auto unarchiver = make<NSKeyedUnarchiver>(cls);
    unarchiver->_allowed = NSSet::initWithSet(allowedClasses);
    unarchiver->read(data);
    return unarchiver;
}

id NSKeyedUnarchiver::unarchivedObjectWithData_allowedClasses_error(NSData* data, NSSet* allowedClasses,
                                                                    NSString** error) {
    auto unarchiver = initForReadingWithData_allowedClasses(data, allowedClasses);
    auto root = Retained<Object>::retaining(unarchiver->decodeObjectForKey(archive::kRoot));
    if (error) *error = unarchiver->error();
    return unarchiver->error() ? nullptr : std::move(root).autorelease();
}

NSString* NSKeyedUnarchiver::error() { return _error.empty() ? nullptr : NSString::ofUTF8(_error); }

std::nullptr_t NSKeyedUnarchiver::fail(std::string reason) {
    if (_error.empty()) _error = std::move(reason);
    return nullptr;
}

void NSKeyedUnarchiver::read(NSData* data) {
    NSPropertyListError* error = nullptr;
    NSPropertyListFormat format{};
    auto* list = cast<NSDictionary>(NSPropertyListSerialization::propertyListWithData_options_format_error(
        data, NSPropertyListImmutable, &format, &error));
    if (error) return void(fail("the archive is no property list: " + error->description()->toUTF8()));
    if (!list || !archive::kArchiverName->isEqual(list->objectForKey(archive::kArchiver)))
        return void(fail("the property list is no keyed archive"));
    auto* version = cast<NSNumber>(list->objectForKey(archive::kVersion));
    if (!version || version->longLongValue() != 1) return void(fail("the archive is of an unknown version"));
    _fields.set(cast<NSDictionary>(list->objectForKey(archive::kTop)));
    _entries.set(cast<NSArray>(list->objectForKey(archive::kObjects)));
    if (!_fields || !_entries || _entries->count() == 0)
        return void(fail("the archive lacks its keys or its objects"));
    _slots.resize(_entries->count());
    _slots[0].state = State::made;
}

// MARK: Plain values

bool NSKeyedUnarchiver::containsValueForKey(NSString* key) {
    return _error.empty() && _fields->objectForKey(key);
}

// Null if there is no value, or the value is no number.
id NSKeyedUnarchiver::numberForKey(NSString* key) {
    if (!containsValueForKey(key)) return nullptr;
    auto* number = cast<NSNumber>(_fields->objectForKey(key));
    return number ? number : fail("the value for \"" + key->toUTF8() + "\" is no number");
}

bool NSKeyedUnarchiver::decodeBoolForKey(NSString* key) {
    auto* number = cast<NSNumber>(numberForKey(key));
    return number && number->boolValue();
}

std::int64_t NSKeyedUnarchiver::decodeInt64ForKey(NSString* key) {
    auto* number = cast<NSNumber>(numberForKey(key));
    return number ? number->longLongValue() : 0;
}

double NSKeyedUnarchiver::decodeDoubleForKey(NSString* key) {
    auto* number = cast<NSNumber>(numberForKey(key));
    return number ? number->doubleValue() : 0;
}

const void* NSKeyedUnarchiver::decodeBytesForKey_returnedLength(NSString* key, NSUInteger* length) {
    if (length) *length = 0;
    if (!containsValueForKey(key)) return nullptr;
    auto* data = cast<NSData>(_fields->objectForKey(key));
    if (!data) return fail("the value for \"" + key->toUTF8() + "\" is no block of bytes");
    if (length) *length = data->length();
    return data->bytes();
}

// MARK: Objects

id NSKeyedUnarchiver::decodeObjectForKey(NSString* key) {
    if (!containsValueForKey(key)) return nullptr;
    auto* reference = cast<NSDictionary>(_fields->objectForKey(key));
    if (!reference) return fail("the value for \"" + key->toUTF8() + "\" is no object");
    return objectAt(reference->objectForKey(archive::kObject));
}

id NSKeyedUnarchiver::objectAt(id index) {
    auto* number = cast<NSNumber>(index);
    if (!_error.empty()) return nullptr;
    long long place = number ? number->longLongValue() : -1;
    if (place < 0 || static_cast<unsigned long long>(place) >= _slots.size())
        return fail("a reference leads outside the archive");
    Slot& slot = _slots[static_cast<std::size_t>(place)];
    if (slot.state == State::running)
        return fail("object " + std::to_string(place) + " leads back to itself");
    if (slot.state == State::waiting) makeObject(static_cast<NSUInteger>(place));
    _size += slot.size;
    if (_size > std::uint64_t{_slots.size()} + propertyListLimits().maximumSharedObjects)
        return fail("the archive refers to its objects too often");
    return _error.empty() ? slot.object.get() : nullptr;
}

void NSKeyedUnarchiver::makeObject(NSUInteger index) {
    if (_depth >= propertyListLimits().maximumDepth) return void(fail("the archive is nested too deeply"));
    Slot& slot = _slots[index];
    slot.state = State::running;
    std::uint64_t outerSize = std::exchange(_size, 1);
    Retained<NSDictionary> outerFields = _fields;
    ++_depth;
    try {
        slot.object = objectFor(_entries->objectAtIndex(index));
    } catch (const NSException& exception) {
        fail("object " + std::to_string(index) + ": " + exception.reason());
    } catch (const std::exception& exception) {
        fail("object " + std::to_string(index) + ": " + exception.what());
    }
    --_depth;
    _fields = outerFields;
    slot.size = std::exchange(_size, outerSize);
    slot.state = State::made;
}

Retained<Object> NSKeyedUnarchiver::objectFor(id entry) {
    auto* dictionary = cast<NSDictionary>(entry);
    if (!dictionary) {
        if (cast<NSArray>(entry)) return fail("an array where an object's entry should be");
        return Retained<Object>::retaining(entry);
    }
    auto* cls = cast<NSString>(dictionary->objectForKey(archive::kClass));
    if (!cls) return fail("an object has no class");
    if (dictionary->objectForKey(archive::kItems)) return collectionFor(cls, dictionary);
    if (cls->isEqualToString(u"NSValue"_ns)) return valueFor(dictionary);
    if (id value = dictionary->objectForKey(archive::kValue)) return mutableLeafFor(cls, value);
    return codedObjectFor(cls, dictionary);
}

bool NSKeyedUnarchiver::readObjects(id references, std::vector<Object*>& objects) {
    auto* list = cast<NSArray>(references);
    if (!list) fail("a collection has no list of contents");
    for (id reference : list) {
        id object = objectAt(reference);
        if (!object) fail("a collection holds null");
        if (!_error.empty()) return false;
        objects.push_back(object);
    }
    return _error.empty();
}

Retained<Object> NSKeyedUnarchiver::collectionFor(NSString* cls, NSDictionary* entry) {
    std::vector<Object*> items, keys;
    if (!readObjects(entry->objectForKey(archive::kItems), items)) return nullptr;
    auto count = static_cast<NSUInteger>(items.size());
    std::string name = cls->toUTF8();
    if (name == "NSArray") return NSArray::initWithObjects_count(items.data(), count);
    if (name == "NSMutableArray") return NSMutableArray::initWithObjects_count(items.data(), count);
    if (name == "NSSet") return NSSet::initWithObjects_count(items.data(), count);
    if (name == "NSCountedSet") return NSCountedSet::initWithObjects_count(items.data(), count);
    if (name == "NSMutableSet") return NSMutableSet::initWithObjects_count(items.data(), count);
    bool isMutable = name == "NSMutableDictionary";
    if (!isMutable && name != "NSDictionary") return fail("\"" + name + "\" is no class of collections");
    if (!readObjects(entry->objectForKey(archive::kKeys), keys)) return nullptr;
    if (keys.size() != items.size()) return fail("a dictionary has keys and values of different number");
    if (isMutable)
        return NSMutableDictionary::initWithObjects_forKeys_count(items.data(), keys.data(), count);
    return NSDictionary::initWithObjects_forKeys_count(items.data(), keys.data(), count);
}

Retained<Object> NSKeyedUnarchiver::valueFor(NSDictionary* entry) {
    auto* type = cast<NSString>(entry->objectForKey(archive::kType));
    auto* bytes = cast<NSData>(entry->objectForKey(archive::kBytes));
    if (!type || !bytes) return fail("a value lacks its type or its bytes");
    std::string text = type->toUTF8();
    NSUInteger size = 0;
    if (!archive::isPortableType(text) ||
        NSGetSizeAndAlignment(text.c_str(), &size, nullptr) != text.c_str() + text.size() ||
        size != bytes->length())
        return fail("a value's bytes do not fit its type");
    return NSValue::initWithBytes_objCType(bytes->bytes(), text.c_str());
}

Retained<Object> NSKeyedUnarchiver::mutableLeafFor(NSString* cls, id value) {
    if (auto* text = cast<NSString>(value); text && cls->isEqualToString(u"NSMutableString"_ns))
        return NSMutableString::initWithString(text);
    if (auto* data = cast<NSData>(value); data && cls->isEqualToString(u"NSMutableData"_ns))
        return NSMutableData::initWithData(data);
    return fail("\"" + cls->toUTF8() + "\" has no such value");
}

bool NSKeyedUnarchiver::isAllowed(Class* cls) {
    for (id allowed : _allowed.get())
        if (Class* ancestor = asClass(allowed); ancestor && cls->isSubclassOfClass(ancestor)) return true;
    return false;
}

Retained<Object> NSKeyedUnarchiver::codedObjectFor(NSString* name, NSDictionary* entry) {
    Class* cls = NSClassFromString(name);
    if (!cls || !isAllowed(cls)) return fail("objects of class \"" + name->toUTF8() + "\" are not allowed");
    if (!cls->classMethod("initWithCoder:"_sel))
        return fail("class " + name->toUTF8() + " has no initWithCoder:");
    _fields.set(cast<NSDictionary>(entry->objectForKey(archive::kFields)));
    if (!_fields) return fail("an object of class " + name->toUTF8() + " lacks its fields");
    auto object = Retained<Object>::retaining(send<id>(cls, "initWithCoder:"_sel, static_cast<id>(this)));
    return object ? object : fail("an object of class " + name->toUTF8() + " could not be made");
}

}  // namespace pelvor
