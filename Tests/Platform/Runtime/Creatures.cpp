// SPDX-License-Identifier: Apache-2.0
#include "Creatures.h"

#include <mutex>

namespace pelvor::testing {

std::vector<std::string>& journal() {
    static std::vector<std::string> lines;
    return lines;
}

void note(std::string line) {
    static std::mutex mutex;
    std::lock_guard guard(mutex);
    journal().push_back(std::move(line));
}

PELVOR_DEFINE_CLASS(Animal, creatureLibrary) {
    methods.classLevel<"initWithLegs:", &Animal::initWithLegs>();
    methods.classLevel<"kind", &Animal::kind>();
    methods.classLevel<"initialize", &Animal::initialize>();
    methods.instance<"legs", &Animal::legs>();
    methods.instance<"setLegs:", &Animal::setLegs>();
    methods.instance<"loudness:", &Animal::loudness>();
    methods.instance<"scaled:", &Animal::scaled>();
    methods.instance<"sum:and:and:", &Animal::sum_and_and>();
    methods.instance<"span:", &Animal::span_>();
    methods.instance<"mood", &Animal::mood>();
    methods.instance<"mate:", &Animal::mate>();
    methods.instance<"offspring", &Animal::offspring>();
    methods.instance<"label:", &Animal::label>();
    methods.instance<"classOf:", &Animal::classOf>();
    methods.instance<"isSelector:", &Animal::isSelector>();
    methods.instance<"fail", &Animal::fail>();
}
PELVOR_DEFINE_CLASS(Dog, creatureLibrary) { methods.instance<"fetch", &Dog::fetch>(); }
PELVOR_DEFINE_CLASS(Puppy, creatureLibrary) {}
PELVOR_DEFINE_CLASS(Shadow, creatureLibrary) {
    methods.classLevel<"initWithTarget:", &Shadow::initWithTarget>();
}
PELVOR_DEFINE_CLASS(Counted, creatureLibrary) {}

constexpr Library* kDependencies[] = {&runtimeLibrary};
// Subclasses first: the order of a list does not matter.
constinit Library creatureLibrary{
    "Creatures", kDependencies, kClassesOf<Puppy, Dog, Shadow, Counted, Animal>, {}};

Retained<Animal> Animal::initWithLegs(int legs, Class* cls) {
    auto animal = make<Animal>(cls);
    animal->_legs = legs;
    return animal;
}

void Animal::initialize(Class* cls) { note(std::string("initialize ") + cls->name()); }

Retained<Shadow> Shadow::initWithTarget(Object* target, Class* cls) {
    auto shadow = make<Shadow>(cls);
    shadow->_target.set(target);
    return shadow;
}

NSMethodSignature* Shadow::methodSignatureForSelector(SEL selector) {
    return _target->methodSignatureForSelector(selector);
}

void Shadow::forwardInvocation(NSInvocation* invocation) {
    note(std::string("forward ") + invocation->selector().name());
    invocation->invokeWithTarget(_target);
}

Retained<Counted> Counted::initWithName(std::string name) {
    auto counted = make<Counted>();
    counted->_name = std::move(name);
    return counted;
}

bool Counted::recycle() noexcept {
    note("last " + _name);
    return lives-- > 1;
}

}  // namespace pelvor::testing
