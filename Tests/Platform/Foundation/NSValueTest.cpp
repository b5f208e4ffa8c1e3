// SPDX-License-Identifier: Apache-2.0
// Tests of boxed values, of the one null object, and of the sizes of encodings.
#include "Foundation/NSValue.h"

#include "Platform/Foundation/Pebble.h"

namespace {

struct Cell {
    NSRange row;
    NSRange column;
    friend bool operator==(const Cell&, const Cell&) = default;
};

TEST(NSValueTest, GivesBackWhatWasPutIn) {
    EXPECT_EQ(send<NSRange>(NSValue::valueWithRange({3, 4}), "rangeValue"_sel), NSMakeRange(3, 4));
    EXPECT_EQ(NSValue::valueWithPoint({1, 2.5f})->pointValue(), NSMakePoint(1, 2.5f));
    EXPECT_EQ(NSValue::valueWithSize({1, 2})->sizeValue(), NSMakeSize(1, 2));
    EXPECT_EQ(NSValue::valueWithRect({{1, 2}, {3, 4}})->rectValue(), NSMakeRect(1, 2, 3, 4));
    int local = 0;
    EXPECT_EQ(NSValue::valueWithPointer(&local)->pointerValue(), &local);
    auto object = make<NSObject>();
    EXPECT_EQ(NSValue::valueWithNonretainedObject(object)->nonretainedObjectValue(), object);
    EXPECT_EQ(object->retainCount(), 1u);
}

TEST(NSValueTest, TakesAnyPlainStructureAndEqualsByTypeAndBytes) {
    NSValue* cell = NSValue::of(Cell{{1, 2}, {3, 4}});
    EXPECT_STREQ(cell->objCType(), "{Cell={_NSRange=II}{_NSRange=II}}");
    EXPECT_EQ(cell->as<Cell>(), (Cell{{1, 2}, {3, 4}}));
    char type[] = "{Cell={_NSRange=II}{_NSRange=II}}";
    Cell content{{1, 2}, {3, 4}};
    NSValue* same = NSValue::valueWithBytes_objCType(&content, type);
    type[1] = 'X';
    EXPECT_TRUE(same->isEqual(cell) && same->hash() == cell->hash());
    EXPECT_FALSE(same->isEqual(NSValue::of(Cell{{1, 2}, {3, 5}})));
    EXPECT_THROW(num(1)->rangeValue(), NSException);
    NSValue* range = NSValue::valueWithRange({1, 2});
    EXPECT_TRUE(range->isEqualToValue(NSValue::valueWithRange({1, 2})));
    EXPECT_FALSE(range->isEqual(NSValue::valueWithRange({2, 1})));
    NSUInteger words[] = {1, 2};
    EXPECT_FALSE(range->isEqual(NSValue::valueWithBytes_objCType(words, "{Pair=II}")));
    int one = 1;
    NSValue* plain = NSValue::valueWithBytes_objCType(&one, "i");
    EXPECT_FALSE(plain->isEqual(num(1)) || num(1)->isEqual(plain));
}

TEST(NSValueTest, DescribesItselfAsTheOneNullDoes) {
    EXPECT_EQ(shown(NSValue::valueWithRange({1, 2}), NSValue::valueWithPoint({0.1f, -2}),
                    NSValue::valueWithRect({{1, 2}, {3, 4}}),
                    NSValue::valueWithBytes_objCType("\x01\x02\x03\x04\x05", "[5C]"), NSNull::null()),
              "{1, 2} {0.1, -2} {{1, 2}, {3, 4}} <01020304 05> <null>");
    EXPECT_TRUE(NSNull::null() == NSNull::null() && NSNull::null()->copy().get() == NSNull::null());
}

TEST(NSValueTest, KnowsTheSizesOfTypes) {
    expectAll({"c -> 1 1", "i -> 4 4", "d -> 8 8", "@ -> 8 8", "^{Node} -> 8 8", "^? -> 8 8", "^^i -> 8 8",
               "r* -> 8 8", "{_NSRange=II} -> 8 4", "{Mixed=cdS} -> 24 8", "[3{Odd=Sc}] -> 12 2",
               "(Either=dC) -> 8 8"},
              [](const std::string& type) {
                  NSUInteger size = 0, alignment = 0;
                  EXPECT_STREQ(NSGetSizeAndAlignment(type.c_str(), &size, &alignment), "") << type;
                  return shown(size, alignment);
              });
    EXPECT_STREQ(NSGetSizeAndAlignment("{_NSRange=II}@:", nullptr, nullptr), "@:");
    std::string deep(1000, '^');
    for (const char* bad :
         {"", "x", "{Open=i", "[i]", "[3i", "[99999999999d]", "[-1i]", "{a={b}", deep.c_str()})
        EXPECT_THROW(NSGetSizeAndAlignment(bad, nullptr, nullptr), NSException) << bad;
}

}  // namespace
