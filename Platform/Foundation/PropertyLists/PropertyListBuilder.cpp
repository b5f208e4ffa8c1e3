// SPDX-License-Identifier: Apache-2.0
#include "Foundation/PropertyLists/PropertyListBuilder.h"

#include <cstring>

#include "Foundation/NSDate.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableData.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSNumber.h"
#include "Foundation/PropertyListLimits.h"
#include "Foundation/PropertyLists/PropertyListFault.h"
#include "Foundation/Strings/NSInlineString.h"
#include "Shared/UTF8.h"

namespace pelvor {
namespace {

std::size_t hashBytes(std::string_view bytes) {
    std::uint32_t hash = 2166136261u;
    for (char c : bytes) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    return hash ^ hash >> 15;
}

}  // namespace

PropertyListBuilder::PropertyListBuilder(NSPropertyListMutabilityOptions options)
    : _options(options), _maximumDepth(propertyListLimits().maximumDepth) {}

PropertyListBuilder::~PropertyListBuilder() {
    dropFrom(_keys, 0);
    dropFrom(_values, 0);
}

void PropertyListBuilder::dropFrom(std::vector<Object*>& objects, std::size_t first) {
    for (std::size_t i = first; i < objects.size(); ++i) objects[i]->release();
    objects.resize(first);
}

Retained<Object> PropertyListBuilder::makeString(std::u16string_view units) {
    auto length = static_cast<NSUInteger>(units.size());
    if (_options >= NSPropertyListMutableContainersAndLeaves)
        return NSMutableString::initWithCharacters_length(units.data(), length);
    return NSString::initWithCharacters_length(units.data(), length);
}

Retained<Object> PropertyListBuilder::makeData(std::span<const std::byte> bytes) {
    auto length = static_cast<NSUInteger>(bytes.size());
    if (_options >= NSPropertyListMutableContainersAndLeaves)
        return NSMutableData::initWithBytes_length(bytes.data(), length);
    return NSData::initWithBytes_length(bytes.data(), length);
}

Retained<Object> PropertyListBuilder::makeInteger(PropertyListInteger value) {
    if (value.isUnsigned) return NSNumber::initWithUnsignedLongLong(value.bits);
    return NSNumber::initWithLongLong(static_cast<long long>(value.bits));
}

Retained<Object> PropertyListBuilder::makeReal(double value) { return NSNumber::initWithDouble(value); }

Retained<Object> PropertyListBuilder::makeBoolean(bool value) { return NSNumber::initWithBool(value); }

Retained<Object> PropertyListBuilder::makeDate(double secondsSinceReferenceDate) {
    return NSDate::initWithTimeIntervalSinceReferenceDate(secondsSinceReferenceDate);
}

void PropertyListBuilder::begin(Container kind) {
    if (_frames.size() >= _maximumDepth)
        throw PropertyListFault{"arrays and dictionaries are nested more than " +
                                std::to_string(_maximumDepth) + " deep"};
    requireValuePlace();
    _frames.push_back({kind, _keys.size(), _values.size()});
}

void PropertyListBuilder::requireValuePlace() const {
    if (_frames.empty() ? _root != nullptr : !awaitsValue(_frames.back()))
        throw PropertyListFault{_frames.empty() ? "more than one value" : "a value without a key"};
}

bool PropertyListBuilder::awaitsValue(const Frame& frame) const {
    return frame.kind == Container::array ||
           _keys.size() - frame.firstKey == _values.size() - frame.firstValue + 1;
}

Object* PropertyListBuilder::end() {
    const Frame frame = _frames.back();
    if (frame.kind == Container::dictionary && awaitsValue(frame))
        throw PropertyListFault{"a key without a value"};
    auto container = frame.kind == Container::array ? makeArray(frame) : makeDictionary(frame);
    dropFrom(_keys, frame.firstKey);
    dropFrom(_values, frame.firstValue);
    _frames.pop_back();
    Object* borrowed = container;
    add(std::move(container));
    return borrowed;
}

Retained<Object> PropertyListBuilder::makeArray(const Frame& frame) {
    Object* const* objects = _values.data() + frame.firstValue;
    auto count = static_cast<NSUInteger>(_values.size() - frame.firstValue);
    if (_options >= NSPropertyListMutableContainers)
        return NSMutableArray::initWithObjects_count(objects, count);
    return NSArray::initWithObjects_count(objects, count);
}

Retained<Object> PropertyListBuilder::makeDictionary(const Frame& frame) {
    Object* const* keys = _keys.data() + frame.firstKey;
    Object* const* objects = _values.data() + frame.firstValue;
    auto count = static_cast<NSUInteger>(_values.size() - frame.firstValue);
    if (_options >= NSPropertyListMutableContainers)
        return NSMutableDictionary::initWithObjects_forKeys_count(objects, keys, count);
    return NSDictionary::initWithObjects_forKeys_count(objects, keys, count);
}

void PropertyListBuilder::add(Retained<Object> value) {
    requireValuePlace();
    if (_frames.empty()) {
        _root = std::move(value);
        return;
    }
    _values.push_back(value.get());
    static_cast<void>(value.leak());
}

void PropertyListBuilder::addKey(Retained<Object> key) {
    if (!isInDictionary()) throw PropertyListFault{"a key outside a dictionary"};
    if (awaitsValue(_frames.back())) throw PropertyListFault{"a key without a value"};
    _keys.push_back(key.get());
    static_cast<void>(key.leak());
}

void PropertyListBuilder::addKey(std::u16string_view units) {
    char bytes[RecentKey::kLongest];
    if (units.size() > sizeof bytes)
        return addKey(
            NSString::initWithCharacters_length(units.data(), static_cast<NSUInteger>(units.size())));
    unsigned allBits = 0;
    for (std::size_t i = 0; i < units.size(); ++i) {
        allBits |= units[i];
        bytes[i] = static_cast<char>(units[i]);
    }
    if (allBits < 0x80) return addKey(std::string_view(bytes, units.size()));
    addKey(NSString::initWithCharacters_length(units.data(), static_cast<NSUInteger>(units.size())));
}

void PropertyListBuilder::addKey(std::string_view utf8) {
    if (utf8.size() > RecentKey::kLongest) return addKey(stringFromUTF8(utf8, false));
    if (!_recentKeys) _recentKeys = std::make_unique<RecentKeys>();
    RecentKey& recent = (*_recentKeys)[hashBytes(utf8) % std::tuple_size_v<RecentKeys>];
    if (!recent.string || recent.length != utf8.size() ||
        std::memcmp(recent.bytes, utf8.data(), utf8.size())) {
        recent.string = stringFromUTF8(utf8, false);
        recent.length = static_cast<std::uint8_t>(utf8.size());
        std::memcpy(recent.bytes, utf8.data(), utf8.size());
    }
    addKey(recent.string);
}

void PropertyListBuilder::addString(std::string_view utf8) {
    add(stringFromUTF8(utf8, _options >= NSPropertyListMutableContainersAndLeaves));
}

Retained<Object> PropertyListBuilder::stringFromUTF8(std::string_view utf8, bool isMutable) {
    if (!isMutable && asciiPrefix(utf8) == utf8.size()) {
        auto string = NSInlineString::create(static_cast<NSUInteger>(utf8.size()));
        widen(utf8, string->characters());
        return string;
    }
    if (_units.size() < utf8.size()) _units.resize(utf8.size());
    DecodedUTF8 decoded = decodeUTF8(utf8, _units);
    if (!decoded.isValid) throw PropertyListFault{"text that is not UTF-8"};
    std::u16string_view units(_units.data(), decoded.unitCount);
    if (isMutable) return makeString(units);
    return NSString::initWithCharacters_length(units.data(), static_cast<NSUInteger>(units.size()));
}

}  // namespace pelvor
