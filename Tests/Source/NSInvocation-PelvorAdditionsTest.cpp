// SPDX-License-Identifier: Apache-2.0
#include "NSInvocation-PelvorAdditions.h"

#include "BaseLibrary.h"
#include "Prelude.h"

namespace pelvor {
namespace {

using Additions = NSInvocation_PelvorAdditions;

TEST(InvocationAdditions, MakeOneFromAClassWithoutATarget) {
    NSInvocation* invocation =
        Additions::invocationWithTargetClass_selector(NSSet::classObject(), "containsObject:"_sel);
    EXPECT_EQ(invocation->target(), nullptr);
    EXPECT_EQ(invocation->selector(), "containsObject:"_sel);
    EXPECT_STREQ(invocation->methodSignature()->methodReturnType(), "B");
}

TEST(InvocationAdditions, MakeOneFromATargetOrAClassAsTheTarget) {
    NSNumber* number = NSNumber::numberWithInt(5);
    NSInvocation* invocation = Additions::invocationWithTarget_selector(number, "intValue"_sel);
    EXPECT_EQ(invocation->target(), number);
    invocation->invoke();
    EXPECT_EQ(invocation->returnValue<int>(), 5);
    Class* cls = NSNumber::classObject();
    EXPECT_EQ(Additions::invocationWithTarget_selector(cls, "numberWithInt:"_sel)->target(), cls);
}

TEST(InvocationAdditions, RaiseForAMessageThatNobodyAnswers) {
    EXPECT_THROW(Additions::invocationWithTargetClass_selector(NSSet::classObject(), "unknown"_sel),
                 NSException);
    EXPECT_THROW(Additions::invocationWithTarget_selector(nullptr, "hash"_sel), NSException);
}

id returnOf(id target, SEL selector) {
    NSInvocation* invocation = Additions::invocationWithTarget_selector(target, selector);
    invocation->invoke();
    return returnObject(invocation);
}

TEST(InvocationAdditions, AnswerTheResultOnlyIfItIsAnObject) {
    NSNumber* number = NSNumber::numberWithInt(5);
    EXPECT_EQ(returnOf(number, "self"_sel), number);
    EXPECT_TRUE(returnOf(number, "stringValue"_sel)->isEqual(u"5"_ns));
    EXPECT_EQ(returnOf(number, "intValue"_sel), nullptr);
    EXPECT_EQ(returnOf(number, "class"_sel), nullptr) << "a class record is no plain object";
    EXPECT_EQ(returnOf(NSMutableSet::set(), "removeAllObjects"_sel), nullptr);
}

TEST(InvocationAdditions, AnswerBySelector) {
    registerLibrary(baseLibrary);
    NSNumber* number = NSNumber::numberWithInt(5);
    auto* invocation = send<NSInvocation*>(NSInvocation::classObject(), "invocationWithTarget:selector:"_sel,
                                           number, "self"_sel);
    invocation->invoke();
    EXPECT_EQ(send<id>(invocation, "returnObject"_sel), number);
}

}  // namespace
}  // namespace pelvor
