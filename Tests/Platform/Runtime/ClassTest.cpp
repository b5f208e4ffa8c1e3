// SPDX-License-Identifier: Apache-2.0
#include "Runtime/Class.h"

#include "Creatures.h"

namespace {

template <int N>
int answer(Animal*) {
    return N;
}
template <int N>
int classAnswer() {
    return N;
}
template <int N>
void defineAnswer(MethodTable<Animal>& methods) {
    methods.instanceAs<"answer", &answer<N>>();
    methods.classLevelAs<"classAnswer", &classAnswer<N>>();
}
template <int N>
const auto kAnswer = &implementation<"answer", &answer<N>>;

// Registers a library of one category of that class, which returns the number.
template <int N>
void registerCategory(const char* className, const char* name = "Answers") {
    static Category category = Category::of<Animal, defineAnswer<N>>(name);
    category.className = className;
    static const Category* const categories[] = {&category};
    static Library library{name, {}, {}, categories};
    registerLibrary(library);
}

MethodGroup oneMethod(SEL selector, IMP implementation) {
    return {nullptr, {{selector, implementation}}, nullptr};
}

TEST(ClassTest, InitializeRunsOnceBeforeTheFirstMessageSuperclassFirst) {
    journal().clear();
    Class* first = Class::createSubclass("InitializedFirst", Animal::classObject());
    Class* second = Class::createSubclass("InitializedSecond", first);
    EXPECT_EQ(send<Class*>(second, "kind"_sel), second);
    send<Class*>(second, "kind"_sel);
    (void)instanceOf(second);
    EXPECT_THAT(joined(journal()),
                EndsWith("initialize InitializedFirst, initialize InitializedSecond, end of 0"));
}

std::atomic<int> slowInitializations = 0;
void initializeSlowly(Class*) {
    std::this_thread::yield();
    ++slowInitializations;
}

TEST(ClassTest, ThreadsWaitForAnInitializeThatIsRunning) {
    Class* slow = Class::createSubclass("SlowlyInitialized", Animal::classObject());
    slow->metaclass()->addMethods(
        oneMethod("initialize"_sel, classImplementation<"initialize", &initializeSlowly>()));
    std::atomic<int> early = 0;
    onThreads(8, [&](int) {
        send<Class*>(slow, "kind"_sel);
        if (slowInitializations != 1) ++early;
    });
    EXPECT_EQ(slowInitializations, 1);
    EXPECT_EQ(early, 0);
}

TEST(ClassTest, TheNewestCategoryGoesFirstAndCachedLookUpsFollow) {
    auto puppy = Animal::initWithLegs(4, Puppy::classObject());
    EXPECT_FALSE(puppy->respondsToSelector("answer"_sel));
    registerCategory<1>("Animal");
    auto answers = [&] {
        return shown(send<int>(puppy, "answer"_sel), send<int>(Puppy::classObject(), "classAnswer"_sel));
    };
    EXPECT_EQ(answers(), "1 1");
    registerCategory<2>("Animal");
    EXPECT_TRUE(puppy->respondsToSelector("answer"_sel));
    EXPECT_EQ(answers(), "2 2");
    const MethodGroup* newest = Animal::classRecord.methodGroups();
    ASSERT_TRUE(newest->next && newest->next->next);
    EXPECT_STREQ(newest->category, "Answers");
    EXPECT_EQ(newest->methods[0].implementation, kAnswer<2>());
    EXPECT_EQ(newest->next->next->category, nullptr);
    // A category may arrive before its class.
    registerCategory<3>("LateCreature");
    Class* late = Class::createSubclass("LateCreature", Animal::classObject());
    EXPECT_EQ(late->methodGroups(), nullptr);
    EXPECT_EQ(send<int>(late, "classAnswer"_sel), 3);
    EXPECT_NE(late->methodGroups(), nullptr);
}

TEST(ClassTest, AReplacedImplementationIsSeenByEverySubclass) {
    Class* base = Class::createSubclass("ReplacedBase", Animal::classObject());
    base->addMethods(oneMethod("answer"_sel, kAnswer<10>()));
    Class* sub = Class::createSubclass("ReplacedSub", base);
    auto object = instanceOf(sub);
    EXPECT_EQ(send<int>(object, "answer"_sel), 10);
    IMP previous = sub->replaceImplementation("answer"_sel, kAnswer<11>());
    EXPECT_EQ(send<int>(object, "answer"_sel), 11);
    EXPECT_EQ(send<int>(instanceOf(base).get(), "answer"_sel), 11);
    EXPECT_EQ(sub->replaceImplementation("answer"_sel, previous), kAnswer<11>());
    EXPECT_EQ(send<int>(object, "answer"_sel), 10);
    EXPECT_FALSE(sub->replaceImplementation("noSuchMethod"_sel, previous));
    // One of other types or for other receivers is refused.
    IMP legs = Animal::classRecord.instanceMethod("legs"_sel)->implementation;
    EXPECT_EQ(RAISED(sub->replaceImplementation("mood"_sel, legs)),
              invalid("the new code for mood of ReplacedSub must be a method that takes () and returns an "
                      "unsigned char"));
    IMP fetch = Dog::classRecord.instanceMethod("fetch"_sel)->implementation;
    EXPECT_EQ(RAISED(base->replaceImplementation("legs"_sel, fetch)),
              invalid("code that needs a receiver of class Dog cannot be a method of Animal"));
    EXPECT_EQ(RAISED(NSObject::classRecord.addMethods(oneMethod("legs"_sel, legs))),
              invalid("code that needs a receiver of class Animal cannot be a method of NSObject"));
}

TEST(ClassTest, APosingClassIsWhatIsMadeFoundAndInherited) {
    Class* original = Class::createSubclass("Posed", Dog::classObject());
    Class* sibling = Class::createSubclass("PosedSibling", original);
    Class* poser = Class::createSubclass("Poser", original);
    poser->addMethods(oneMethod("fetch"_sel, implementation<"fetch", &answer<99>>()));
    auto before = instanceOf(original);
    auto child = instanceOf(sibling);
    EXPECT_EQ(send<int>(child, "fetch"_sel), 7);

    poser->poseAsClass(original);
    EXPECT_EQ(instanceOf(original)->isa(), poser);
    EXPECT_TRUE(classNamed("Posed") == poser && classNamed("%Posed") == original);
    EXPECT_STREQ(original->name(), "%Posed");
    EXPECT_EQ(send<int>(child, "fetch"_sel), 99);
    EXPECT_TRUE(child->isKindOfClass(poser));
    EXPECT_EQ(send<int>(before, "fetch"_sel), 7);
}

TEST(ClassTest, APosingClassStandsForAllNamesThatLedToTheOneItReplaced) {
    Class* chair = Class::createSubclass("Chair", Animal::classObject());
    registerCategory<4>("Chair", "Early");
    Class* armchair = Class::createSubclass("Armchair", chair);
    armchair->poseAsClass(chair);
    Class* sofa = Class::createSubclass("Sofa", armchair);
    sofa->poseAsClass(armchair);
    EXPECT_TRUE(classNamed("Chair") == sofa && classNamed("Armchair") == sofa &&
                classNamed("%Chair") == chair);
    registerCategory<5>("Chair", "Late");
    for (Class* cls : {chair, armchair, sofa}) cls->attachPendingCategories();
    EXPECT_STREQ(chair->methodGroups()->category, "Early");
    EXPECT_EQ(armchair->methodGroups(), nullptr);
    EXPECT_STREQ(sofa->methodGroups()->category, "Late");
}

// A sheep, a lamb that is one, and a wolf that poses as one with code for wolves only.
class Sheep : public Animal {
    PELVOR_CLASS(Sheep, Animal);

  public:
    int bleat() { return 1; }
};
class Lamb : public Sheep {
    PELVOR_CLASS(Lamb, Sheep);

  protected:
    double _weight = 3;
};
class Wolf : public Sheep {
    PELVOR_CLASS(Wolf, Sheep);

  public:
    int bleat() { return -1; }
};
extern Library flockLibrary;
PELVOR_DEFINE_CLASS(Sheep, flockLibrary) { methods.instance<"bleat", &Sheep::bleat>(); }
PELVOR_DEFINE_CLASS(Lamb, flockLibrary) {}
PELVOR_DEFINE_CLASS(Wolf, flockLibrary) { methods.instance<"bleat", &Wolf::bleat>(); }
constinit Library flockLibrary{"Flock", {}, kClassesOf<Sheep, Lamb, Wolf>, {}};

TEST(ClassTest, APosersOwnCodeIsKeptFromOtherSubclasses) {
    auto lamb = Animal::initWithLegs(4, Lamb::classObject());
    auto sheep = make<Sheep>();
    Wolf::classRecord.poseAsClass(Sheep::classObject());
    EXPECT_EQ(send<int>(Animal::initWithLegs(1, Sheep::classObject()).get(), "bleat"_sel), -1);
    EXPECT_EQ(make<Sheep>()->isa(), Wolf::classObject());
    for (id other : {id(lamb), id(sheep)}) EXPECT_EQ(send<int>(other, "bleat"_sel), 1);
    EXPECT_EQ(cast<Wolf>(lamb.get()), nullptr);
    EXPECT_THROW(Wolf::classRecord.poseAsClass(Sheep::classObject()), NSException);
    // Posing is for direct subclasses without fields.
    EXPECT_THROW(Lamb::classRecord.poseAsClass(Sheep::classObject()), NSException);
    for (Class* cls : {Animal::classObject(), static_cast<Class*>(nullptr)})
        EXPECT_THROW(Wolf::classRecord.poseAsClass(cls), NSException);
    EXPECT_EQ(classNamed("Animal"), Animal::classObject());
}

TEST(ClassTest, ClassesWithoutInstancesSaySo) {
    registerLibrary(creatureLibrary);
    EXPECT_EQ(
        RAISED(Class::classRecord.createInstance()),
        invalid("Class has no instances of its own: it is abstract, or its constructor takes arguments"));
    EXPECT_EQ(RAISED(make<Dog>(Animal::classObject())), invalid("Animal is no subclass of Dog"));
    EXPECT_EQ(RAISED(Class::createSubclass("Animal", NSObject::classObject())),
              invalid("createSubclass: the class Animal cannot be made: the library " +
                      std::string(creatureLibrary.name) + " has a class of that name"));
}

TEST(ClassTest, MessagesAndNewMethodsFromManyThreads) {
    Class* busy = Class::createSubclass("Busy", Animal::classObject());
    const IMP codes[] = {kAnswer<20>(), kAnswer<21>()};
    busy->addMethods(oneMethod("answer"_sel, codes[0]));
    std::atomic<bool> isWrong = false;
    onThreads(7, [&](int number) {
        auto object = instanceOf(busy);
        for (int i = 0; i < 2000; ++i)
            if (number == 0)
                busy->replaceImplementation("answer"_sel, codes[i % 2]);
            else if (int seen = send<int>(object, "answer"_sel); seen != 20 && seen != 21)
                isWrong = true;
    });
    EXPECT_FALSE(isWrong);
}

}  // namespace
