// SPDX-License-Identifier: Apache-2.0
#include "Platform/Foundation/OwnCollections.h"

namespace pelvor::testing {
extern Library pebbleLibrary;
PELVOR_DEFINE_CLASS(Pebble, pebbleLibrary) {
    methods.instance<"number", &Pebble::number>();
    methods.instance<"compare:", &Pebble::compare>();
}
PELVOR_DEFINE_CLASS(OwnArray, pebbleLibrary) {}
PELVOR_DEFINE_CLASS(SparseString, pebbleLibrary) {}
PELVOR_DEFINE_CLASS(Tally, pebbleLibrary) {}
constinit Library pebbleLibrary{"Pebbles", {}, kClassesOf<Pebble, OwnArray, SparseString, Tally>, {}};

Retained<Pebble> Pebble::create(int number, std::uintptr_t hash) {
    auto pebble = make<Pebble>();
    pebble->_number = number;
    pebble->_hash = hash;
    return pebble;
}

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

unichar SparseString::characterAtIndex(NSUInteger index) {
    if (index >= length())
        raiseException(NSRangeException, u"characterAtIndex: index (%d) beyond bounds (%d)"_ns, index,
                       length());
    return text[index];
}

std::vector<NSString*> everyKindOfString(std::u16string_view text) {
    auto* units = static_cast<unichar*>(std::malloc((text.size() + 1) * sizeof(unichar)));
    std::copy(text.begin(), text.end(), units);
    auto external = NSString::initWithCharactersNoCopy_length_freeWhenDone(
        units, static_cast<NSUInteger>(text.size()), true);
    auto sparse = make<SparseString>();
    sparse->text = text;
    return {NSString::of(text), NSMutableString::of(text), std::move(external).autorelease(),
            std::move(sparse).autorelease()};
}

}  // namespace pelvor::testing
