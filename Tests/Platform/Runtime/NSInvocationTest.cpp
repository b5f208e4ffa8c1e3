// SPDX-License-Identifier: Apache-2.0
#include "Runtime/NSInvocation.h"

#include "Creatures.h"

namespace {

Retained<NSInvocation> invocationFor(Object* object, SEL selector) {
    auto invocation = NSInvocation::initWithMethodSignature(object->methodSignatureForSelector(selector));
    invocation->setSelector(selector);
    return invocation;
}

struct NSInvocationTest : ::testing::Test {
    Retained<Animal> animal = Animal::initWithLegs(4);
};

TEST_F(NSInvocationTest, CarriesArgumentsAndResult) {
    auto invocation = invocationFor(animal, "sum:and:and:"_sel);
    invocation->setArgument(2, 1);
    std::int64_t second = 20;
    invocation->setArgument_atIndex(&second, 3);
    invocation->setArgument(4, 300.0f);
    invocation->invokeWithTarget(animal);
    EXPECT_EQ(invocation->returnValue<int>(), 321);
    int first = 0;
    invocation->getArgument_atIndex(&first, 2);
    EXPECT_EQ(first, 1);

    auto spans = invocationFor(animal, "span:"_sel);
    spans->setArgument(2, NSRange{1, 2});
    spans->invokeWithTarget(animal);
    EXPECT_EQ(spans->returnValue<Span>(), (Span{{1, 2}, {2, 1}}));
    invocation->invokeWithTarget(nullptr);
    EXPECT_EQ(invocation->returnValue<int>(), 0);
}

TEST_F(NSInvocationTest, RefusesWrongIndexesAndTypes) {
    auto invocation = invocationFor(animal, "setLegs:"_sel);
    for (int index : {1, 3})
        EXPECT_EQ(RAISED(invocation->setArgument(index, 1)),
                  invalid("argument index " + std::to_string(index) + " is outside the message setLegs:"));
    EXPECT_EQ(RAISED(invocation->setArgument(2, 1.5)),
              invalid("the argument at index 2 of setLegs: is an int, not a double"));
    invocation->setTarget(animal);
    EXPECT_EQ(RAISED(invocation->returnValue<int>()),
              invalid("the result of -[Animal setLegs:] is nothing, not an int"));
    EXPECT_EQ(RAISED(invocation->setArgument_atIndex(nullptr, 2)),
              invalid("setArgument:atIndex: the buffer is null"));
    EXPECT_EQ(RAISED((void)NSInvocation::initWithMethodSignature(nullptr)),
              invalid("initWithMethodSignature: the signature is null"));
}

TEST_F(NSInvocationTest, KeepsWhatItIsToldToKeep) {
    Animal::classRecord.initializeIfNeeded();
    journal().clear();
    {
        auto animal = Animal::initWithLegs(4);
        auto invocation = invocationFor(animal, "mate:"_sel);
        {
            auto other = Animal::initWithLegs(2);
            invocation->setArgument(2, other.get());
            EXPECT_EQ(other->retainCount(), 1u);
            invocation->retainArguments();
            EXPECT_EQ(other->retainCount(), 2u);
            invocation->invokeWithTarget(animal);
            EXPECT_EQ(other->retainCount(), 3u);  // argument and result
        }
        EXPECT_EQ(animal->retainCount(), 2u);
        invocation->setArgument<id>(2, nullptr);
        EXPECT_TRUE(journal().empty());
        invocation->invoke();
        EXPECT_EQ(journal().back(), "end of 2");
    }
    EXPECT_EQ(journal().back(), "end of 4");
    // Of texts it keeps copies.
    auto labels = invocationFor(animal, "label:"_sel);
    std::string text = "before";
    labels->setArgument(2, text.c_str());
    labels->retainArguments();
    text = "after!";
    labels->invokeWithTarget(animal);
    EXPECT_STREQ(labels->returnValue<const char*>(), "before");
}

TEST_F(NSInvocationTest, AProxyPassesMessagesOnWithTheirResults) {
    Animal::classRecord.initializeIfNeeded();
    journal().clear();
    auto shadow = Shadow::initWithTarget(animal);
    EXPECT_EQ(send<int>(shadow, "sum:and:and:"_sel, 1, 2, 3.0), 6);
    EXPECT_EQ(send<Span>(shadow, "span:"_sel, NSRange{4, 5}), (Span{{4, 5}, {5, 4}}));
    EXPECT_EQ(send<id>(shadow, "mate:"_sel, animal), animal);
    EXPECT_EQ(journal().size(), 3u);
    EXPECT_TRUE(shadow->respondsToSelector("legs"_sel) && !shadow->respondsToSelector("fly"_sel));
    EXPECT_THAT(RAISED(send(shadow, "fly"_sel)), StartsWith(invalid("-[Shadow fly]: unrecognized")));
    EXPECT_EQ(shown(shadow->isProxy(), shadow->retainCount()), "1 1");
}

TEST(NSMethodSignatureTest, TellsTypesAndSizes) {
    NSMethodSignature* signature = Animal::classRecord.signatureOfInstanceMethod("span:"_sel);
    EXPECT_STREQ(signature->types(), "{Span={_NSRange=II}{_NSRange=II}}@:{_NSRange=II}");
    const char* arguments[] = {"@", ":", "{_NSRange=II}"};
    ASSERT_EQ(signature->numberOfArguments(), 3u);
    for (NSUInteger i = 0; i < 3; ++i) EXPECT_STREQ(signature->getArgumentTypeAtIndex(i), arguments[i]);
    EXPECT_EQ(signature->methodReturnLength(), 16u);
    EXPECT_THROW((void)signature->getArgumentTypeAtIndex(3), NSException);
    EXPECT_EQ(NSMethodSignature::signatureWithObjCTypes("i@:iqf")->methodReturnLength(), 4u);
    EXPECT_EQ(NSMethodSignature::signatureWithObjCTypes("nonsense"), nullptr);
}

}  // namespace
