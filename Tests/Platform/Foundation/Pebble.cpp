// SPDX-License-Identifier: Apache-2.0
#include "Platform/Foundation/Pebble.h"

#include "Foundation/FoundationLibrary.h"
#include "Platform/Foundation/OwnCollections.h"

namespace pelvor::testing {
namespace {

Library* const kDependencies[] = {&foundationLibrary};
Class* const kClasses[] = {&Pebble::classRecord, &Countdown::classRecord, &OwnArray::classRecord,
                           &Tally::classRecord};
constinit Library pebbleLibrary{"Pebbles", kDependencies, kClasses, {}};
int aliveCount = 0;

}  // namespace

PELVOR_DEFINE_CLASS(Pebble, pebbleLibrary) {
    methods.instance<"number", &Pebble::number>();
    methods.instance<"compare:", &Pebble::compare>();
}
PELVOR_DEFINE_CLASS(Countdown, pebbleLibrary) {}
PELVOR_DEFINE_CLASS(OwnArray, pebbleLibrary) {}
PELVOR_DEFINE_CLASS(Tally, pebbleLibrary) {}

Retained<Pebble> Pebble::create(int number, std::uintptr_t hash) {
    auto pebble = make<Pebble>();
    pebble->_number = number;
    pebble->_hash = hash;
    return pebble;
}

int Pebble::alive() { return aliveCount; }

Pebble::Pebble() { ++aliveCount; }

Pebble::~Pebble() {
    --aliveCount;
    if (whenDestroyed) whenDestroyed();
}

NSComparisonResult Pebble::compare(Pebble* other) {
    return static_cast<NSComparisonResult>((_number > other->_number) - (_number < other->_number));
}

bool Pebble::isEqual(id other) {
    if (whenCompared) whenCompared();
    auto* pebble = cast<Pebble>(other);
    return pebble && pebble->_number == _number;
}

NSString* Pebble::description() { return NSString::ofUTF8(std::to_string(_number)); }

Retained<Object> Pebble::copyWithZone(void*) {
    if (whenCopied) whenCopied();
    return Retained<Object>::retaining(this);
}

NSArray* numbers(std::initializer_list<int> values) {
    std::vector<Object*> objects;
    for (int value : values) objects.push_back(num(value));
    return NSArray::arrayWithObjects_count(objects.data(), static_cast<NSUInteger>(objects.size()));
}

}  // namespace pelvor::testing
