// SPDX-License-Identifier: Apache-2.0
// Tests of what collections and values say about arguments that they refuse.
#include "Foundation/NSCountedSet.h"
#include "Foundation/NSIndexSet.h"
#include "Foundation/NSKeyedArchiver.h"
#include "Foundation/NSMutableData.h"
#include "Foundation/NSMutableIndexSet.h"
#include "Foundation/NSValue.h"
#include "Platform/Foundation/Pebble.h"

namespace {

// "the reason" of each operation that raises an exception of that name.
#define RAISES(name, reason, ...) \
    EXPECT_EQ(RAISED(__VA_ARGS__), std::string(name) + ": " + (reason)) << #__VA_ARGS__
#define REFUSES(reason, ...) RAISES(NSInvalidArgumentException, reason, __VA_ARGS__)

Object** const kNoObjects = nullptr;
constexpr NSRange kOutside{2, 2};

template <class Array>
void expectArraysRefuse() {
    id some[] = {num(1), nullptr, num(3)};
    REFUSES("arrayWithObject: the object is null", Array::arrayWithObject(nullptr));
    REFUSES(Array::classObject()->name() + std::string("::of: object 2 of 2 is null"),
            Array::of({num(1), nullptr}));
    REFUSES("initWithObjects: object 1 of 1 is null", Array::initWithObjects({nullptr}));
    REFUSES("arrayWithObjects:count: object 2 of 3 is null", Array::arrayWithObjects_count(some, 3));
    REFUSES("initWithObjects:count: the objects must not be null where the length is 3",
            Array::initWithObjects_count(nullptr, 3));
}

TEST(CollectionFailures, OfArraysNameTheOperationAndTheArgument) {
    expectArraysRefuse<NSArray>();
    expectArraysRefuse<NSMutableArray>();
    Class* own = Class::createSubclass("BareArray", NSArray::classObject());
    REFUSES(
        "arrayWithObject: the creator makes objects of class NSArray, not of class BareArray, which needs a "
        "creator of its own",
        send<id>(own, "arrayWithObject:"_sel, num(1)));
    auto array = NSMutableArray::initWithArray(numbers({1, 2, 3}));
    REFUSES("addObject: the object is null", array->addObject(nullptr));
    REFUSES("insertObject:atIndex: the object is null", array->insertObject_atIndex(nullptr, 0));
    REFUSES("replaceObjectAtIndex:withObject: the object is null",
            array->replaceObjectAtIndex_withObject(0, nullptr));
    REFUSES("arrayByAddingObject: the object is null", array->arrayByAddingObject(nullptr));
    REFUSES("getObjects: the objects must not be null where the length is 3", array->getObjects(kNoObjects));
    REFUSES("getObjects:range: the objects must not be null where the length is 1",
            array->getObjects_range(kNoObjects, {1, 1}));
    REFUSES("sortUsingFunction:context: the function is null",
            array->sortUsingFunction_context(nullptr, nullptr));
    REFUSES("sortedArrayUsingFunction:context: the function is null",
            array->sortedArrayUsingFunction_context(nullptr, nullptr));
    const char* range = " range {2, 2} beyond bounds (3)";
    RAISES(NSRangeException, std::string("subarrayWithRange:") + range, array->subarrayWithRange(kOutside));
    RAISES(NSRangeException, std::string("indexOfObject:inRange:") + range,
           array->indexOfObject_inRange(num(1), kOutside));
    RAISES(NSRangeException, std::string("getObjects:range:") + range,
           array->getObjects_range(kNoObjects, kOutside));
    RAISES(NSRangeException, std::string("removeObjectsInRange:") + range,
           array->removeObjectsInRange(kOutside));
    RAISES(NSRangeException, std::string("removeObject:inRange:") + range,
           array->removeObject_inRange(num(1), kOutside));
    RAISES(NSRangeException, std::string("replaceObjectsInRange:withObjectsFromArray:") + range,
           array->replaceObjectsInRange_withObjectsFromArray(kOutside, nullptr));
    EXPECT_EQ(listing(array), "1 2 3");
}

template <class Dictionary>
void expectDictionariesRefuse() {
    id objects[] = {num(1), num(2)}, keys[] = {num(1), nullptr};
    auto plain = make<NSObject>();
    REFUSES("dictionaryWithObject:forKey: the object is null",
            Dictionary::dictionaryWithObject_forKey(nullptr, num(1)));
    REFUSES("dictionaryWithObject:forKey: the key is null",
            Dictionary::dictionaryWithObject_forKey(num(1), nullptr));
    REFUSES(
        "dictionaryWithObject:forKey: a key of class NSObject cannot be copied: "
        "NSObject does not implement copyWithZone:",
        Dictionary::dictionaryWithObject_forKey(num(1), plain));
    REFUSES("dictionaryWithObjects:forKeys: 2 objects were given for 1 keys",
            Dictionary::dictionaryWithObjects_forKeys(numbers({1, 2}), numbers({1})));
    REFUSES("initWithObjects:forKeys: 0 objects were given for 1 keys",
            Dictionary::initWithObjects_forKeys(nullptr, numbers({1})));
    REFUSES("dictionaryWithObjects:forKeys:count: key 2 of 2 is null",
            Dictionary::dictionaryWithObjects_forKeys_count(objects, keys, 2));
    REFUSES("initWithObjects:forKeys:count: the keys must not be null where the length is 2",
            Dictionary::initWithObjects_forKeys_count(objects, nullptr, 2));
    REFUSES("initWithEntries: object 1 of 1 is null", Dictionary::initWithEntries({{num(1), nullptr}}));
}

TEST(CollectionFailures, OfDictionariesNameTheOperationAndTheArgument) {
    expectDictionariesRefuse<NSDictionary>();
    expectDictionariesRefuse<NSMutableDictionary>();
    REFUSES("NSDictionary::of: key 1 of 1 is null", NSDictionary::of({{nullptr, num(1)}}));
    auto dictionary = NSMutableDictionary::init();
    REFUSES("setObject:forKey: the object is null", dictionary->setObject_forKey(nullptr, num(1)));
    REFUSES("setObject:forKey: the key is null", dictionary->setObject_forKey(num(1), nullptr));
    REFUSES("setValue:forKey: the key is null", dictionary->setValue_forKey(num(1), nullptr));
    REFUSES("objectsForKeys:notFoundMarker: the marker is null",
            dictionary->objectsForKeys_notFoundMarker(numbers({1}), nullptr));
}

template <class Set>
void expectSetsRefuse() {
    REFUSES("setWithObject: the object is null", Set::setWithObject(nullptr));
    REFUSES(Set::classObject()->name() + std::string("::of: object 1 of 1 is null"), Set::of({nullptr}));
    REFUSES("initWithObjects: object 2 of 2 is null", Set::initWithObjects({num(1), nullptr}));
    REFUSES("setWithObjects:count: the objects must not be null where the length is 1",
            Set::setWithObjects_count(nullptr, 1));
    REFUSES("initWithObjects:count: the objects must not be null where the length is 1",
            Set::initWithObjects_count(nullptr, 1));
}

TEST(CollectionFailures, OfSetsNameTheOperationAndTheArgument) {
    expectSetsRefuse<NSSet>();
    expectSetsRefuse<NSMutableSet>();
    expectSetsRefuse<NSCountedSet>();
    REFUSES("addObject: the object is null", NSMutableSet::set()->addObject(nullptr));
    REFUSES("addObject: the object is null", NSCountedSet::set()->addObject(nullptr));
    REFUSES("setByAddingObject: the object is null", NSSet::set()->setByAddingObject(nullptr));
    auto indexes = NSMutableIndexSet::init();
    const NSRange range{5, NSNotFound};
    RAISES(NSRangeException, "addIndex: index (2147483647) beyond bounds (2147483647)",
           indexes->addIndex(NSNotFound));
    RAISES(NSRangeException, "addIndexesInRange: range {5, 2147483647} beyond bounds (2147483647)",
           indexes->addIndexesInRange(range));
    RAISES(NSRangeException, "indexSetWithIndexesInRange: range {5, 2147483647} beyond bounds (2147483647)",
           NSIndexSet::indexSetWithIndexesInRange(range));
}

template <class Data>
void expectDataRefuses() {
    const char* bytes = " the bytes must not be null where the length is 2";
    REFUSES(std::string("dataWithBytes:length:") + bytes, Data::dataWithBytes_length(nullptr, 2));
    REFUSES(std::string("initWithBytes:length:") + bytes, Data::initWithBytes_length(nullptr, 2));
    REFUSES(std::string("dataWithBytesNoCopy:length:") + bytes, Data::dataWithBytesNoCopy_length(nullptr, 2));
    REFUSES(std::string("initWithBytesNoCopy:length:freeWhenDone:") + bytes,
            Data::initWithBytesNoCopy_length_freeWhenDone(nullptr, 2, true));
}

TEST(CollectionFailures, OfDataNameTheOperationAndTheArgument) {
    expectDataRefuses<NSData>();
    expectDataRefuses<NSMutableData>();
    auto data = NSMutableData::initWithBytes_length("abc", 3);
    const char* range = " range {2, 2} beyond bounds (3)";
    REFUSES("getBytes: the bytes must not be null where the length is 3", data->getBytes(nullptr));
    REFUSES("getBytes:length: the bytes must not be null where the length is 2",
            data->getBytes_length(nullptr, 2));
    REFUSES("appendBytes:length: the bytes must not be null where the length is 2",
            data->appendBytes_length(nullptr, 2));
    REFUSES("replaceBytesInRange:withBytes: the bytes must not be null where the length is 1",
            data->replaceBytesInRange_withBytes({0, 1}, nullptr));
    RAISES(NSRangeException, std::string("getBytes:range:") + range, data->getBytes_range(nullptr, kOutside));
    RAISES(NSRangeException, std::string("subdataWithRange:") + range, data->subdataWithRange(kOutside));
    RAISES(NSRangeException, std::string("resetBytesInRange:") + range, data->resetBytesInRange(kOutside));
    RAISES(NSRangeException, std::string("replaceBytesInRange:withBytes:length:") + range,
           data->replaceBytesInRange_withBytes_length(kOutside, "x", 1));
    RAISES(NSMallocException, "increaseLengthBy: the data would hold more than 2^32 - 1 bytes",
           data->increaseLengthBy(0xFFFFFFFF));
    EXPECT_EQ(data->length(), 3u);
}

struct Cell {
    NSRange row;
};

TEST(CollectionFailures, OfValuesSpeakOfTypesInWords) {
    REFUSES("rangeValue: the value holds a struct Cell, not a struct NSRange",
            NSValue::of(Cell{{1, 2}})->rangeValue());
    REFUSES("as: the value holds an int, not a double", num(1)->as<double>());
    REFUSES("valueWithBytes:objCType: the bytes is null", NSValue::valueWithBytes_objCType(nullptr, "i"));
    REFUSES("initWithBytes:objCType: the type is null", NSValue::initWithBytes_objCType("abcd", nullptr));
    REFUSES("valueWithBytes:objCType: \"cc\" is more than one type",
            NSValue::valueWithBytes_objCType("ab", "cc"));
    REFUSES("initWithBytes:objCType: \"x\" is no type encoding", NSValue::initWithBytes_objCType("ab", "x"));
    REFUSES("NSGetSizeAndAlignment: the type is null", NSGetSizeAndAlignment(nullptr, nullptr, nullptr));
    for (NSValue* value :
         {NSValue::valueWithRange({1, 2}), NSValue::valueWithPoint({1, 2}), static_cast<NSValue*>(num(1))})
        REFUSES("getValue: the buffer is null", value->getValue(nullptr));
    REFUSES("compare: the number is null", num(1)->compare(nullptr));
    REFUSES("compare: the date is null", NSDate::date()->compare(nullptr));
    REFUSES("timeIntervalSinceDate: the date is null", NSDate::date()->timeIntervalSinceDate(nullptr));
    REFUSES("initWithTimeInterval:sinceDate: the date is null",
            NSDate::initWithTimeInterval_sinceDate(1, nullptr));
    auto archiver = NSKeyedArchiver::init();
    REFUSES("encodeInt:forKey: the key is null", archiver->encodeInt_forKey(1, nullptr));
    REFUSES("encodeObject:forKey: the key is null", archiver->encodeObject_forKey(num(1), nullptr));
    REFUSES("encodeBytes:length:forKey: the bytes must not be null where the length is 2",
            archiver->encodeBytes_length_forKey(nullptr, 2, u"key"_ns));
}

// MARK: The ends of objects

// A collection that can be changed, and what each of its kind is called to do.
struct Kind {
    const char* name;
    Retained<Object> (*make)();
    void (*add)(Object* collection, id object);
    void (*remove)(Object* collection, id object);
    void (*set)(Object* collection);
    int (*walk)(Object* collection);
};

template <class Collection>
int walk(Object* collection) {
    int seen = 0;
    for ([[maybe_unused]] auto entry : static_cast<Collection*>(collection)) ++seen;
    return seen;
}

template <class Collection, void (*set)(Collection*)>
constexpr Kind kind(const char* name) {
    return {name,
            [] { return Retained<Object>(Collection::init()); },
            [](Object* collection, id object) { static_cast<Collection*>(collection)->addObject(object); },
            [](Object* collection, id object) { static_cast<Collection*>(collection)->removeObject(object); },
            [](Object* collection) { set(static_cast<Collection*>(collection)); },
            &walk<Collection>};
}

void setArray(NSMutableArray* array) { array->setArray(nullptr); }
template <class Set>
void setSet(Set* set) {
    set->setSet(nullptr);
}

const Kind kKinds[] = {
    kind<NSMutableArray, &setArray>("array"),
    kind<NSMutableSet, &setSet>("set"),
    kind<NSCountedSet, &setSet>("counted set"),
    {"dictionary", [] { return Retained<Object>(NSMutableDictionary::init()); },
     [](Object* dictionary, id object) {
         static_cast<NSMutableDictionary*>(dictionary)->setObject_forKey(object, object);
     },
     [](Object* dictionary, id key) {
         static_cast<NSMutableDictionary*>(dictionary)->removeObjectForKey(key);
     },
     [](Object* dictionary) { static_cast<NSMutableDictionary*>(dictionary)->setDictionary(nullptr); },
     &walk<NSMutableDictionary>},
};

// As the object ends, it walks over the collection, takes another one out and adds one.
void addRestlessPebble(const Kind& kind, Object* collection, int number) {
    auto pebble = Pebble::create(number);
    pebble->whenDestroyed = [&kind, collection, number] {
        kind.walk(collection);
        kind.remove(collection, Pebble::create(number + 1).get());
        kind.add(collection, num(100 + number));
    };
    kind.add(collection, pebble);
}

TEST(CollectionEnds, TheEndOfAnObjectMayUseItsCollection) {
    const std::pair<const char*, void (*)(const Kind&, Retained<Object>&)> actions[] = {
        {"one is removed", [](const Kind& kind, auto& all) { kind.remove(all, Pebble::create(0).get()); }},
        {"all are removed", [](const Kind&, auto& all) { send(all, "removeAllObjects"_sel); }},
        {"the contents are set", [](const Kind& kind, auto& all) { kind.set(all); }},
        {"the collection ends", [](const Kind&, auto& all) { all = nullptr; }},
    };
    for (const Kind& kind : kKinds)
        for (const auto& [name, act] : actions) {
            SCOPED_TRACE(std::string(kind.name) + ": " + name);
            expectPebblesBalance([&, act = act] {
                Retained<Object> collection = kind.make();
                for (int number = 0; number < 20; ++number) addRestlessPebble(kind, collection, number);
                act(kind, collection);
                EXPECT_TRUE(!collection || kind.walk(collection) == 20);
            });
        }
}

TEST(CollectionEnds, TheEndOfAReplacedObjectMayUseItsCollection) {
    expectPebblesBalance([] {
        auto array = NSMutableArray::init();
        auto dictionary = NSMutableDictionary::init();
        for (int number = 0; number < 6; ++number) addRestlessPebble(kKinds[0], array, number);
        array->replaceObjectAtIndex_withObject(2, num(1));
        EXPECT_EQ(listing(array), "0 1 1 105 104 103 102");
        array->replaceObjectsInRange_withObjectsFromArray({0, 1}, numbers({7, 8}));
        EXPECT_EQ(listing(array), "7 8 1 105 104 103 102 101 100");
        auto value = Pebble::create(1);
        value->whenDestroyed = [&] { dictionary->removeAllObjects(); };
        dictionary->setObject_forKey(value, u"a"_ns);
        value = nullptr;
        dictionary->setObject_forKey(num(3), u"a"_ns);
        EXPECT_EQ(dictionary->count(), 0u);
    });
}

}  // namespace
