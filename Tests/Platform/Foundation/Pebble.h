// SPDX-License-Identifier: Apache-2.0
// Objects for the tests of collections, and short ways to write their contents.
#pragma once

#include "Prelude.h"

namespace pelvor::testing {

/// An object that equals those of the same number and hashes as it is told; it can do something when it is
/// compared, copied or destroyed. A copy is the object itself.
class Pebble : public NSObject {
    PELVOR_CLASS(Pebble, NSObject);

  public:
    static Retained<Pebble> create(int number, std::uintptr_t hash);
    static Retained<Pebble> create(int number) { return create(number, static_cast<unsigned>(number)); }
    /// How many exist.
    static int alive() { return aliveCount; }

    int number() { return _number; }
    NSComparisonResult compare(Pebble* other);
    bool isEqual(id other) override;
    std::uintptr_t hash() override { return _hash; }
    NSString* description() override;
    Retained<Object> copyWithZone(void* zone) override;

    std::function<void()> whenCompared, whenCopied, whenDestroyed;

  protected:
    Pebble() { ++aliveCount; }
    ~Pebble();

  private:
    static inline int aliveCount = 0;
    int _number = 0;
    std::uintptr_t _hash = 0;
};

/// Expects that the work leaves as many pebbles as there were.
template <class Work>
void expectPebblesBalance(Work work) {
    const int before = Pebble::alive();
    {
        AutoreleasePool pool;
        work();
    }
    EXPECT_EQ(Pebble::alive(), before);
}

/// The objects' descriptions with blanks between them.
template <class Objects>
std::string listing(const Objects& objects) {
    AutoreleasePool pool;
    std::string text;
    for (id object : objects) text += (text.empty() ? "" : " ") + object->description()->toUTF8();
    return text;
}

inline NSNumber* num(int value) { return NSNumber::numberWithInt(value); }
NSArray* numbers(std::initializer_list<int> values);

}  // namespace pelvor::testing
using namespace pelvor::testing;
