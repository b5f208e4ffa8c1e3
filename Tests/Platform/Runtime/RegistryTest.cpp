// SPDX-License-Identifier: Apache-2.0
#include "Runtime/Registry.h"

#include "Creatures.h"

namespace {

TEST(RegistryTest, ListsClassesAndFindsThemByName) {
    registerLibrary(creatureLibrary);
    std::size_t count = classList(nullptr, 0);
    std::vector<Class*> classes(count);
    EXPECT_EQ(classList(classes.data(), 2), count);
    EXPECT_EQ(classes[2], nullptr);
    classList(classes.data(), count);
    auto position = [&](Class* cls) { return std::find(classes.begin(), classes.end(), cls); };
    auto positions = {position(Animal::classObject()), position(Dog::classObject()),
                      position(Puppy::classObject()), classes.end()};
    EXPECT_TRUE(std::is_sorted(positions.begin(), positions.end(), std::less_equal<>()));
    EXPECT_EQ(classNamed("Animal"), Animal::classObject());
    for (const char* stranger : {"Unicorn", ""}) EXPECT_EQ(classNamed(stranger), nullptr);
}

// Two records of one name, as two plug-ins may bring them.
constinit Library intruderLibrary{"Intruder", {}, {}, {}};
constinit Class intruderMeta(Class::Metaclass{}, "Animal", nullptr, &NSObject::metaclassRecord);
constinit Class intruder("Animal", &intruderMeta, &NSObject::classRecord, {}, &intruderLibrary);

TEST(RegistryTest, RecordsThatCannotBeUsedAreRefusedBeforeAnythingIsRegistered) {
    registerLibrary(creatureLibrary);
    std::size_t before = classList(nullptr, 0);
    static Class* const classes[] = {&intruder};
    intruderLibrary.classes = classes;
    EXPECT_EQ(RAISED(registerLibrary(intruderLibrary)),
              invalid("registerLibrary: the class Animal of the library Intruder is refused: the library " +
                      std::string(creatureLibrary.name) + " has a class of that name"));
    EXPECT_EQ(classList(nullptr, 0), before);
    EXPECT_EQ(classNamed("Animal"), Animal::classObject());
    EXPECT_FALSE(intruderLibrary.isRegistered);
    Library library("Elder", {}, {}, {});
    library.interfaceVersion = kInterfaceVersion - 1;
    EXPECT_EQ(RAISED(registerLibrary(library)),
              invalid(shown("registerLibrary: the library was compiled with interface version",
                            kInterfaceVersion - 1) +
                      shown(", this platform with version", kInterfaceVersion)));
    library.mark = 0;
    EXPECT_EQ(RAISED(registerLibrary(library)),
              invalid("registerLibrary: the record is not that of a library"));
}

// A library whose second class cannot be defined at first, and one that it needs.
bool isFailing = true;
extern Library neededLibrary, brokenLibrary;

int answer() { return 42; }

class Needed : public NSObject {
    PELVOR_CLASS(Needed, NSObject);
};
PELVOR_DEFINE_CLASS(Needed, neededLibrary) {}

class Broken : public Needed {
    PELVOR_CLASS(Broken, Needed);
};
PELVOR_DEFINE_CLASS(Broken, brokenLibrary) {
    if (isFailing) throw NSException("Broken", "not today");
    methods.classLevelAs<"answer", &answer>();
}

constexpr Library* kDependencies[] = {&neededLibrary};
constinit Library neededLibrary{"Needed", {}, kClassesOf<Needed>, {}};
constinit Library brokenLibrary{"Broken", kDependencies, kClassesOf<Broken>, {}};

TEST(RegistryTest, ALibraryThatCannotBeDefinedLeavesNothingBehind) {
    std::size_t before = classList(nullptr, 0);
    EXPECT_EQ(RAISED(registerLibrary(brokenLibrary)), "Broken: not today");
    EXPECT_EQ(classList(nullptr, 0), before);
    EXPECT_EQ(classNamed("Needed"), nullptr);
    EXPECT_FALSE(neededLibrary.isRegistered || brokenLibrary.isRegistered);

    isFailing = false;
    registerLibrary(brokenLibrary);
    EXPECT_EQ(send<int>(Broken::classObject(), "answer"_sel), 42);
    EXPECT_EQ(classNamed("Needed"), Needed::classObject());
}

TEST(SelectorTest, IsInternedAndKnowsItsArguments) {
    EXPECT_EQ(registerSelector("move:by:"), "move:by:"_sel);
    EXPECT_NE("move:by:"_sel, "move:"_sel);
    EXPECT_EQ("move:by:"_sel.argumentCount(), 2);
    EXPECT_EQ("count"_sel.argumentCount(), 0);
    EXPECT_STREQ(SEL().name(), "");
    EXPECT_FALSE(findSelector("neverHeardOf:"));
    for (int i = 0; i < 3000; ++i) registerSelector("selector" + std::to_string(i));
    EXPECT_STREQ(findSelector("selector2999").name(), "selector2999");
}

struct Unnamed {
    double a;
    void* b;
    Object* c;
};

TEST(TypeEncodingTest, IsDeduced) {
    EXPECT_EQ(shown(typeEncoding<int>.text, typeEncoding<unsigned long>.text, typeEncoding<long long>.text,
                    typeEncoding<bool>.text, typeEncoding<char16_t>.text, typeEncoding<Mood>.text),
              "i Q q B S C");
    EXPECT_EQ(shown(typeEncoding<Retained<Animal>>.text, typeEncoding<Class*>.text, typeEncoding<SEL>.text,
                    typeEncoding<const char*>.text, typeEncoding<int (*)(int)>.text),
              "@ # : * ^?");
    EXPECT_EQ(shown(typeEncoding<NSRange*>.text, typeEncoding<Unnamed>.text,
                    SignatureFor<void, id, NSRange>::kTypes.text),
              "^{_NSRange=II} {Unnamed=d^v@} v@:@{_NSRange=II}");
}

}  // namespace
