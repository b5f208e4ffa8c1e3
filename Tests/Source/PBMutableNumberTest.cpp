// SPDX-License-Identifier: Apache-2.0
#include "PBMutableNumber.h"

#include <climits>

#include "BaseLibrary.h"
#include "PBMutableIntNumber.h"
#include "Prelude.h"

namespace {

TEST(MutableNumber, IsMadeFromPlainNumbers) {
    EXPECT_EQ(PBMutableNumber::numberWithBool(true)->intValue(), 1);
    EXPECT_EQ(PBMutableNumber::numberWithUnsignedInt(0xFFFFFFFE)->intValue(), -2);
    auto* bySelector = send<id>(PBMutableNumber::classObject(), "numberWithInt:"_sel, -3);
    EXPECT_EQ(bySelector->class_(), PBMutableIntNumber::classObject());
    EXPECT_EQ(cast<NSNumber>(bySelector)->intValue(), -3);
}

TEST(MutableNumber, ReadsLikeAnyNumberAndCountsUpAndDownAndAround) {
    auto number = PBMutableIntNumber::initWithInt(-7);
    std::int32_t value = 0;
    number->getValue(&value);
    EXPECT_EQ(shown(value, number->objCType(), number->doubleValue(), number->stringValue()), "-7 i -7 -7");
    EXPECT_TRUE(number->isEqual(NSNumber::numberWithInt(-7)));
    EXPECT_EQ(number->hash(), NSNumber::numberWithInt(-7)->hash());
    EXPECT_EQ(send<int>(number, "increment"_sel), -6);
    EXPECT_EQ(number->decrement(), -7);
    number->setIntValue(INT_MAX);
    EXPECT_EQ(number->increment(), INT_MIN);
    EXPECT_EQ(number->decrement(), INT_MAX);
}

TEST(MutableNumber, IsCopiedAsAFixedNumberOrMutablyInItsOwnClass) {
    Class* cls = Class::createSubclass("CountingNumber", PBMutableIntNumber::classObject());
    auto number = PBMutableIntNumber::initWithInt(5, cls);
    Retained<Object> fixed = number->copy(), counting = number->mutableCopy();
    number->increment();
    EXPECT_EQ(cast<NSNumber>(fixed)->intValue(), 5);
    EXPECT_EQ(cast<PBMutableNumber>(fixed), nullptr);
    EXPECT_EQ(counting->isa(), cls);
    EXPECT_EQ(cast<PBMutableIntNumber>(counting)->decrement(), 4);
    EXPECT_EQ(number->intValue(), 6);
}

class HalfNumber : public PBMutableNumber, PBMutableNumber::HiddenCreators {
    PELVOR_CLASS(HalfNumber, PBMutableNumber);

  public:
    const char* objCType() override { return "d"; }
    void getValue(void* buffer) override { *static_cast<double*>(buffer) = 0.5; }
};

PELVOR_DEFINE_CLASS(HalfNumber, baseLibrary) {}

TEST(MutableNumber, LeavesCopiesToItsSubclasses) {
    auto half = make<HalfNumber>();
    EXPECT_TRUE(!half->copy() && !half->mutableCopy());
    EXPECT_EQ(half->doubleValue(), 0.5);
}

}  // namespace
