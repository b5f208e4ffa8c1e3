// SPDX-License-Identifier: Apache-2.0
// A few classes for the tests of the object model.
#pragma once

#include "Foundation/NSRange.h"
#include "Prelude.h"
#include "Runtime/NSInvocation.h"
#include "Runtime/NSProxy.h"
#include "Runtime/RuntimeLibrary.h"

namespace pelvor::testing {

extern Library creatureLibrary;

/// What RAISED says of a wrong argument.
inline std::string invalid(const std::string& reason) {
    return std::string("NSInvalidArgumentException: ") + reason;
}

/// What happened, in order; every test begins by emptying it.
std::vector<std::string>& journal();
/// Adds a line to the journal. Any thread.
void note(std::string line);

struct Span {
    NSRange first;
    NSRange second;
    friend bool operator==(const Span&, const Span&) = default;
};

enum class Mood : unsigned char { calm = 1, wild = 2 };

class Animal : public NSObject {
    PELVOR_CLASS(Animal, NSObject);

  public:
    static Retained<Animal> initWithLegs(int legs, Class* cls = classObject());
    static Class* kind(Class* cls = classObject()) { return cls; }
    static void initialize(Class* cls);

    int legs() { return _legs; }
    void setLegs(int legs) { _legs = legs; }
    virtual int loudness(int distance) { return 100 - distance; }
    double scaled(double factor) { return _legs * factor; }
    int sum_and_and(int a, std::int64_t b, float c) { return static_cast<int>(a + b + c); }
    Span span_(NSRange range) { return {range, {range.length, range.location}}; }
    Mood mood() { return Mood::wild; }
    Animal* mate(Animal* other) { return other; }
    Retained<Object> offspring() { return initWithLegs(_legs, class_()); }
    const char* label(const char* text) { return text; }
    Class* classOf(Object* object) { return object ? object->class_() : nullptr; }
    bool isSelector(SEL selector) { return static_cast<bool>(selector); }
    void fail() { throw NSException("AnimalException", "bitten"); }

  protected:
    Animal() = default;
    ~Animal() { note("end of " + std::to_string(_legs)); }

    int _legs = 0;
};

class Dog : public Animal {
    PELVOR_CLASS(Dog, Animal);

  public:
    int loudness(int distance) override { return 2 * Animal::loudness(distance); }
    int fetch() { return 7; }
};

class Puppy : public Dog {
    PELVOR_CLASS(Puppy, Dog);

  protected:
    double _weeks = 8;
};

/// Stands in for an object and writes down what is asked of it.
class Shadow : public NSProxy {
    PELVOR_CLASS(Shadow, NSProxy);

  public:
    static Retained<Shadow> initWithTarget(Object* target, Class* cls = classObject());
    NSMethodSignature* methodSignatureForSelector(SEL selector) override;
    void forwardInvocation(NSInvocation* invocation) override;

  protected:
    Retained<Object> _target;
};

/// Writes down when its last reference goes and when it does; may have lives left by then.
class Counted : public NSObject {
    PELVOR_CLASS(Counted, NSObject);

  public:
    static Retained<Counted> initWithName(std::string name);

    int lives = 1;

  protected:
    Counted() { setRecycles(); }
    ~Counted() { note("~" + _name); }
    bool recycle() noexcept override;
    std::string _name;
};

}  // namespace pelvor::testing
using namespace pelvor::testing;
