// SPDX-License-Identifier: Apache-2.0
#include "Runtime/Message.h"

#include "Creatures.h"

namespace {

int louderLoudness(Dog* dog, int distance) {
    return 1000 + sendSuper<int>(classNamed("LouderDog"), dog, "loudness:"_sel, distance);
}

class MessageTest : public ::testing::Test {
  protected:
    Retained<Animal> animal = Animal::initWithLegs(4);
    Retained<Animal> dog = Animal::initWithLegs(3, Dog::classObject());
};

TEST_F(MessageTest, AnswersWithTheMethodOfTheReceiversClassAndOfNullWithZero) {
    EXPECT_EQ(shown(send<int>(animal, "legs"_sel), send<int>(animal, "loudness:"_sel, 10),
                    send<int>(dog, "loudness:"_sel, 10)),
              "4 90 180");
    auto puppy = send<Retained<Animal>>(Puppy::classObject(), "initWithLegs:"_sel, 2);
    EXPECT_EQ(shown(puppy->isa(), puppy->legs()), "Puppy 2");
    EXPECT_EQ(puppy->retainCount(), 2u);  // ours, and the pool's
    EXPECT_EQ(send<id>(puppy, "offspring"_sel)->isa(), Puppy::classObject());
    EXPECT_EQ(send<int>(nullptr, "legs"_sel), 0);
    EXPECT_EQ(send<id>(nullptr, "mate:"_sel, dog), nullptr);
    EXPECT_EQ(send<Span>(nullptr, "span:"_sel, NSRange{1, 1}), Span{});
}

TEST_F(MessageTest, CarriesEveryKindOfValueAndConvertsUnlikeNumbers) {
    NSRange range{3, 5};
    EXPECT_EQ(send<Span>(animal, "span:"_sel, range), (Span{{3, 5}, {5, 3}}));
    EXPECT_EQ(send<Mood>(animal, "mood"_sel), Mood::wild);
    EXPECT_STREQ(send<const char*>(animal, "label:"_sel, "text"), "text");
    EXPECT_EQ(send<Class*>(animal, "classOf:"_sel, dog), Dog::classObject());
    EXPECT_TRUE(send<bool>(animal, "isSelector:"_sel, "legs"_sel));
    EXPECT_EQ(send<Animal*>(animal, "mate:"_sel, dog), dog);
    EXPECT_EQ(send<id>(animal, "mate:"_sel, nullptr), nullptr);
    EXPECT_EQ(shown(send<double>(animal, "legs"_sel), send<std::uint8_t>(animal, "legs"_sel) + 0,
                    send<bool>(animal, "legs"_sel), send<int>(animal, "scaled:"_sel, 2),
                    send<int>(animal, "sum:and:and:"_sel, 1.9, true, std::int8_t(-3))),
              "4 4 1 8 -1");
    send(animal, "setLegs:"_sel, -1e300);
    EXPECT_EQ(send<std::int64_t>(animal, "legs"_sel), INT32_MIN);
    EXPECT_EQ(send<std::uint8_t>(animal, "scaled:"_sel, 0x1p-23), 0);
}

TEST_F(MessageTest, OfWrongTypesIsRefusedByMethodArgumentAndTypes) {
    const std::pair<std::string, std::string> rows[] = {
        {RAISED(send(animal, "setLegs:"_sel, "four")),
         "setLegs:]: argument 1 is a C string where an int is expected"},
        {RAISED(send<int>(animal, "sum:and:and:"_sel, 1, dog, 2)),
         "sum:and:and:]: argument 2 is an object where a long is expected"},
        {RAISED(send<id>(animal, "legs"_sel)), "legs]: the result is an int where an object is expected"},
        {RAISED(send<int>(animal, "legs"_sel, 1)), "legs]: the method takes 0 arguments, not 1"},
        {RAISED(send<id>(animal, "mate:"_sel, make<NSObject>().get())),
         "mate:]: argument 1 is an object of class NSObject where one of class Animal is expected"},
        {RAISED(send<Dog*>(animal, "mate:"_sel, animal)),
         "mate:]: the result is an object of class Animal where one of class Dog is expected"},
        {RAISED(send<id>(animal, "classOf:"_sel, 3)),
         "classOf:]: argument 1 is an int where an object is expected"}};
    for (const auto& [raised, reason] : rows) EXPECT_EQ(raised, invalid("-[Animal " + reason));
    EXPECT_EQ(animal->legs(), 4);
    EXPECT_THAT(RAISED(send(animal, "fly"_sel)),
                StartsWith(invalid("-[Animal fly]: unrecognized selector sent to instance 0x")));
    EXPECT_THAT(RAISED(send(Animal::classObject(), "legs"_sel)),
                StartsWith(invalid("+[Animal legs]: unrecognized selector sent to class 0x")));
    EXPECT_THROW(send(animal, SEL()), NSException);
}

TEST_F(MessageTest, ClassesAnswerClassOperationsAndSuperSendTakesTheOverriddenMethod) {
    Class* cls = Dog::classObject();
    EXPECT_EQ(send<Class*>(cls, "kind"_sel), cls);
    EXPECT_EQ(send<id>(cls, "self"_sel), cls);
    EXPECT_TRUE(send<bool>(cls, "isKindOfClass:"_sel, NSObject::classObject()));
    EXPECT_TRUE(send<bool>(cls, "isSubclassOfClass:"_sel, Animal::classObject()));
    EXPECT_EQ(send<Class*>(Shadow::classObject(), "superclass"_sel), NSProxy::classObject());
    Class* louder = Class::createSubclass("LouderDog", Dog::classObject());
    Method louderMethod{"loudness:"_sel, implementation<"loudness:", &louderLoudness>()};
    louder->addMethods({nullptr, {louderMethod}, nullptr});
    EXPECT_EQ(send<int>(instanceOf(louder).get(), "loudness:"_sel, 0), 1200);
}

TEST_F(MessageTest, PerformAnswersObjectsAndDropsWhatTheMethodDoesNotTake) {
    EXPECT_EQ(animal->performSelector("self"_sel), animal);
    EXPECT_EQ(animal->performSelector("legs"_sel), nullptr);
    EXPECT_EQ(animal->performSelector_withObject("mate:"_sel, dog), dog);
    EXPECT_EQ(animal->performSelector("mate:"_sel), nullptr);
    EXPECT_EQ(animal->performSelector_withObject_withObject("mate:"_sel, dog, animal), dog);
    EXPECT_THROW((void)animal->performSelector_withObject("setLegs:"_sel, dog), NSException);
    EXPECT_THROW((void)animal->performSelector("sum:and:and:"_sel), NSException);
    // An exception passes through every road.
    EXPECT_EQ(RAISED(send(animal, "fail"_sel)), "AnimalException: bitten");
    EXPECT_EQ(RAISED(animal->performSelector("fail"_sel)), "AnimalException: bitten");
    EXPECT_EQ(RAISED(send(Shadow::initWithTarget(animal).get(), "fail"_sel)), "AnimalException: bitten");
}

}  // namespace
