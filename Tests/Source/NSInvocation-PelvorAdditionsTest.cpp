// SPDX-License-Identifier: Apache-2.0
#include "NSInvocation-PelvorAdditions.h"

#include "Prelude.h"

namespace {

using Additions = NSInvocation_PelvorAdditions;

TEST(InvocationAdditions, MakeOneFromAClassOrATargetThatAnswersTheMessage) {
    Class *set = NSSet::classObject(), *cls = NSNumber::classObject();
    auto* ofClass = Additions::invocationWithTargetClass_selector(set, "containsObject:"_sel);
    EXPECT_EQ(
        shown(ofClass->target(), ofClass->selector().name(), ofClass->methodSignature()->methodReturnType()),
        "(null) containsObject: B");
    NSNumber* number = NSNumber::numberWithInt(5);
    NSInvocation* invocation = Additions::invocationWithTarget_selector(number, "intValue"_sel);
    EXPECT_EQ(invocation->target(), number);
    invocation->invoke();
    EXPECT_EQ(invocation->returnValue<int>(), 5);
    EXPECT_EQ(Additions::invocationWithTarget_selector(cls, "numberWithInt:"_sel)->target(), cls);
}

TEST(InvocationAdditions, AnswerTheResultOnlyIfItIsAnObject) {
    auto returnOf = [](id target, SEL selector) {
        NSInvocation* invocation = Additions::invocationWithTarget_selector(target, selector);
        invocation->invoke();
        return returnObject(invocation);
    };
    NSNumber* number = NSNumber::numberWithInt(5);
    EXPECT_EQ(returnOf(number, "self"_sel), number);
    EXPECT_TRUE(returnOf(number, "stringValue"_sel)->isEqual(u"5"_ns));
    EXPECT_EQ(returnOf(number, "intValue"_sel), nullptr);
    EXPECT_EQ(returnOf(number, "class"_sel), nullptr) << "a class record is no plain object";
    EXPECT_EQ(returnOf(NSMutableSet::set(), "removeAllObjects"_sel), nullptr);
}

}  // namespace
