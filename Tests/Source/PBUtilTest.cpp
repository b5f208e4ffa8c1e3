// SPDX-License-Identifier: Apache-2.0
#include "PBUtil.h"

#include <set>

#include "Foundation/NSBundle.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/PlatformVersion.h"
#include "Foundation/SystemVersion.h"
#include "HookedClasses.h"
#include "PBPostLoader.h"
#include "Prelude.h"

namespace pelvor::testing {
namespace {

// MARK: Method replacement

IMP answering(int (*function)(Object*, SEL)) {
    return {reinterpret_cast<void (*)()>(function), &SignatureFor<int>::object, nullptr};
}

void addMethod(Class* cls, SEL selector, IMP implementation) {
    cls->addMethods({"Test", {{selector, implementation}}, nullptr});
}

// A class whose instances answer 1 to "one", a subclass of it, and an instance of each.
struct Family {
    explicit Family(const std::string& name)
        : parent(Class::createSubclass(name.c_str(), NSObject::classObject())),
          child(Class::createSubclass(("Sub" + name).c_str(), parent)) {
        addMethod(parent, "one"_sel, answering([](Object*, SEL) { return 1; }));
        ofParent = instanceOf(parent);
        ofChild = instanceOf(child);
    }

    Class* parent;
    Class* child;
    Retained<Object> ofParent;
    Retained<Object> ofChild;
};

TEST(MethodReplacement, KeepsTheOldBehaviourUnderASecondSelectorInAGroupOfItsOwn) {
    Family family("Aliased");
    IMP found = PBRegisterInstanceMethodWithSelector(family.child, "one"_sel, "plainOne"_sel);
    EXPECT_EQ(found, family.parent->instanceMethod("one"_sel)->implementation);
    const MethodGroup* group = family.child->methodGroups();
    ASSERT_EQ(group->methods.size(), 1u);
    EXPECT_EQ(group->methods[0].implementation.signature, &SignatureFor<int>::object);

    addMethod(family.child, "one"_sel,
              answering([](Object* self, SEL) { return 10 + send<int>(self, "plainOne"_sel); }));
    EXPECT_EQ(send<int>(family.ofChild, "one"_sel), 11);
    EXPECT_FALSE(family.ofParent->respondsToSelector("plainOne"_sel)) << "added to the class alone";
}

TEST(MethodReplacement, ChangesTheRecordOfTheSuperclassThatHasTheMethod) {
    Family family("Inherited");
    IMP two = answering([](Object*, SEL) { return 2; });
    IMP previous = PBReplaceMethodImplementation(family.child, "one"_sel, two);
    EXPECT_EQ(send<int>(family.ofParent, "one"_sel), 2);
    EXPECT_EQ(PBReplaceMethodImplementation(family.child, "one"_sel, previous), two);
    EXPECT_EQ(send<int>(family.ofChild, "one"_sel), 1);
}

TEST(MethodReplacement, TakesTheNewCodeFromASelectorOfTheSameOrAnotherClass) {
    Family family("Exchanged"), other("Lending");
    addMethod(family.parent, "three"_sel, answering([](Object*, SEL) { return 3; }));
    addMethod(other.parent, "four"_sel, answering([](Object*, SEL) { return 4; }));
    PBReplaceMethodImplementationWithSelector(family.parent, "one"_sel, "three"_sel);
    EXPECT_EQ(send<int>(family.ofParent, "one"_sel), 3);
    PBReplaceMethodImplementationWithSelectorOnClass(family.parent, "one"_sel, other.parent, "four"_sel);
    EXPECT_EQ(send<int>(family.ofParent, "one"_sel), 4);
}

TEST(MethodReplacement, WorksOnClassOperationsThroughTheMetaclass) {
    Family family("Meta");
    Class* meta = family.parent->metaclass();
    addMethod(meta, "count"_sel, answering([](Object*, SEL) { return 5; }));
    EXPECT_EQ(send<int>(family.child, "count"_sel), 5);
    PBReplaceMethodImplementation(meta, "count"_sel, answering([](Object*, SEL) { return 6; }));
    EXPECT_EQ(send<int>(family.child, "count"_sel), 6);
}

TEST(MethodReplacement, ChangesNothingWithoutTheMethod) {
    Family family("Lacking");
    IMP other = answering([](Object*, SEL) { return 9; });
    EXPECT_FALSE(PBRegisterInstanceMethodWithSelector(family.child, "none"_sel, "nothing"_sel));
    EXPECT_FALSE(PBReplaceMethodImplementation(family.child, "none"_sel, other));
    EXPECT_FALSE(PBReplaceMethodImplementationWithSelector(family.child, "none"_sel, "one"_sel));
    EXPECT_FALSE(family.ofChild->respondsToSelector("nothing"_sel));

    EXPECT_THROW(PBReplaceMethodImplementationWithSelector(family.child, "one"_sel, "none"_sel), NSException);
    EXPECT_EQ(send<int>(family.ofChild, "one"_sel), 1);
}

// MARK: The process and its system

struct VersionScope {
    ~VersionScope() {
        setPlatformVersion(1000.0);
        setSystemVersionCode(0);
        PBSetIsRunPoofs(false);
    }
};

TEST(RunPoofs, NeedsTheHostsWishAndAPlatformThatCan) {
    VersionScope scope;
    EXPECT_FALSE(PBIsRunPoofs());
    PBSetIsRunPoofs(true);
    const std::pair<double, bool> cases[] = {{1000.0, true}, {743.0, true}, {742.99, false}, {0, false}};
    for (auto [version, canRun] : cases) {
        setPlatformVersion(version);
        EXPECT_EQ(PBIsRunPoofs(), canRun) << version;
    }
}

TEST(SystemVersion, IsPrintedFromItsDigits) {
    VersionScope scope;
    const std::pair<int, const char*> cases[] = {{0x1049, "10.4.9"}, {0x1039, "10.3.9"}, {0x0610, "6.1.0"}};
    for (auto [code, text] : cases) {
        setSystemVersionCode(code);
        EXPECT_EQ(PBSystemVersion()->toUTF8(), text);
    }
}

TEST(RandomNumbers, StayInTheirRangesAndDiffer) {
    std::set<int> seen;
    for (int i = 0; i < 1000; ++i) {
        int number = *seen.insert(PBRandomInt()).first;
        float fraction = PBRandomFloat();
        EXPECT_GE(number, 0);
        EXPECT_TRUE(fraction >= 0 && fraction <= 1) << fraction;
    }
    EXPECT_GT(seen.size(), 1u);
}

TEST(RandomNumbers, AreSeededOnce) {
    PBRandomInt();
    srandom(17);
    long expected = random();
    srandom(17);
    EXPECT_EQ(PBRandomInt(), expected);
    srandom(17);
    EXPECT_EQ(PBRandomFloat(), static_cast<float>(expected) * 4.656612873e-10f);
}

TEST(FeedbackController, IsRetainedOnce) {
    auto controller = make<NSObject>();
    for (int i = 0; i < 2; ++i) PBSetSharedFeedbackController(controller);
    EXPECT_EQ(PBSharedFeedbackController(), controller.get());
    EXPECT_EQ(controller->retainCount(), 2u);
    PBSetSharedFeedbackController(nullptr);
    EXPECT_EQ(PBSharedFeedbackController(), nullptr);
    EXPECT_EQ(controller->retainCount(), 1u);
}

// MARK: Localisation

NSBundle* bundleOfTests(const char* name) {
    std::string path = std::string(PELVOR_TEST_PLUGINS) + "/" + name + ".bundle";
    return NSBundle::bundleWithPath(NSString::ofUTF8(path));
}

class Localisation : public ::testing::Test {
  protected:
    void SetUp() override {
        bundleOfTests("Toolbox");
        phrases = bundleOfTests("Phrases")->classNamed(u"Phrases"_ns);
        ASSERT_TRUE(phrases);
    }
    void TearDown() override { PBSetToolboxBundleIdentifier(nullptr); }

    Class* phrases = nullptr;
};

TEST_F(Localisation, FindsTheToolboxBundleByItsIdentifierAndKeepsIt) {
    PBSetToolboxBundleIdentifier(u"pelvor.test.Nobody"_ns);
    EXPECT_EQ(_PBDoToolboxBundle(), nullptr);
    PBSetToolboxBundleIdentifier(u"pelvor.test.Toolbox"_ns);
    for (int i = 0; i < 2; ++i) EXPECT_EQ(_PBDoToolboxBundle(), bundleOfTests("Toolbox"));
}

TEST_F(Localisation, AsksTheHostThenTheBundleOfTheObjectsClassThenAnswersTheKey) {
    auto object = instanceOf(phrases);
    struct {
        const char* toolbox;
        const char16_t* key;
        id object;
        const char* text;
    } const cases[] = {
        {"pelvor.test.Toolbox", u"_Host", nullptr, "The host"},
        {"pelvor.test.Toolbox", u"_Both", object, "Both, says the host"},
        {"pelvor.test.Toolbox", u"_Plug-in", object, "The plug-in"},
        {"pelvor.test.Toolbox", u"_Plug-in", phrases, "The plug-in"},
        {"pelvor.test.Toolbox", u"_Plug-in", nullptr, "_Plug-in"},
        {"pelvor.test.Toolbox", u"_Cancel", object, "_Cancel"},
        {"pelvor.test.Toolbox", u"_Marker", object, "__PBLocalizedStringNotFound__"},
        {"pelvor.test.Nobody", u"_Both", object, "Both, says the plug-in"},
        {"pelvor.test.Nobody", u"_Both", nullptr, "_Both"},
    };
    for (const auto& entry : cases) {
        PBSetToolboxBundleIdentifier(NSString::ofUTF8(entry.toolbox));
        EXPECT_EQ(_PBDoLocalize(NSString::of(entry.key), entry.object)->toUTF8(), entry.text);
    }
}

TEST_F(Localisation, AnswersAnUnknownKeyItself) {
    NSString* key = NSString::of(u"_Nobody knows this");
    for (Class* cls : {phrases, static_cast<Class*>(nullptr)}) EXPECT_EQ(_PBDoLocalize(key, cls), key);
}

// MARK: Shared character sets

int memberCount(NSCharacterSet* set) {
    int count = 0;
    for (unsigned unit = 0; unit < 0x10000; ++unit)
        count += set->characterIsMember(static_cast<unichar>(unit));
    return count;
}

TEST(SharedCharacterSets, AreMadeByTheLoadTimeSequence) {
    PBPostLoader::processClasses();
    EXPECT_EQ(_pbLettersCharacterSet, NSCharacterSet::letterCharacterSet());
    EXPECT_EQ(_pbWhitespaceCharacterSet, NSCharacterSet::whitespaceAndNewlineCharacterSet());
    EXPECT_EQ(_pbDecimalDigitCharacterSet, NSCharacterSet::decimalDigitCharacterSet());
    struct {
        NSCharacterSet* set;
        std::u16string_view members;
    } const cases[] = {{_pbMoneyCharacterSet, u"\x24\x20AC\xA3\xA5"},
                       {_pbDoubleQuotesCharacterSet, u"\x22\x201C\x201D\xAB\xBB"},
                       {_pbSingleQuotesCharacterSet, u"\x27\x2018\x2019"}};
    for (auto [set, members] : cases) {
        for (unichar member : members) EXPECT_TRUE(set->characterIsMember(member)) << int(member);
        EXPECT_EQ(memberCount(set), static_cast<int>(members.size()));
    }
}

// MARK: Abstract methods

TEST(AbstractMethod, NamesClassAndMethod) {
    Class* cls = Class::createSubclass("AbstractLamp", NSObject::classObject());
    auto lamp = instanceOf(cls);
    const char* name = "PBAbstractMethodException";
    EXPECT_EQ(reasonOf(name, [&] { PBAbstractMethodWasCalled(lamp, "lightAt:for:"_sel); }),
              "AbstractLamp must implement the abstract method -lightAt:for:");
    EXPECT_EQ(reasonOf(name, [&] { PBAbstractMethodWasCalled(cls, "lamp"_sel); }),
              "AbstractLamp must implement the abstract method +lamp");
}

}  // namespace
}  // namespace pelvor::testing
