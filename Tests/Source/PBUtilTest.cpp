// SPDX-License-Identifier: Apache-2.0
#include "PBUtil.h"

#include <set>

#include "Foundation/NSCharacterSet.h"
#include "Foundation/PlatformVersion.h"
#include "Foundation/SystemVersion.h"
#include "HookedClasses.h"
#include "PBPostLoader.h"
#include "TestClasses.h"

namespace {

// MARK: Method replacement

template <int N>
int answer(NSObject*) {
    return N;
}
template <int N>
const IMP kAnswering = implementation<"one", &answer<N>>();

// A class whose instances answer 1 to "one", a subclass of it, and an instance of each.
struct Family {
    explicit Family(const std::string& name)
        : parent(Class::createSubclass(name.c_str(), NSObject::classObject())),
          child(Class::createSubclass(("Sub" + name).c_str(), parent)) {
        addMethod<"one", &answer<1>>(parent);
        ofParent = instanceOf(parent);
        ofChild = instanceOf(child);
    }

    Class *parent, *child;
    Retained<Object> ofParent, ofChild;
};

TEST(MethodReplacement, KeepsTheOldBehaviourUnderASecondSelectorInAGroupOfItsOwn) {
    Family family("Aliased");
    IMP found = PBRegisterInstanceMethodWithSelector(family.child, "one"_sel, "plainOne"_sel);
    EXPECT_EQ(found, family.parent->instanceMethod("one"_sel)->implementation);
    const MethodGroup* group = family.child->methodGroups();
    ASSERT_EQ(group->methods.size(), 1u);
    EXPECT_EQ(group->methods[0].implementation.signature, &SignatureFor<int>::object);

    addMethod<"one", &answer<11>>(family.child);
    EXPECT_EQ(send<int>(family.ofChild, "one"_sel), 11);
    EXPECT_EQ(send<int>(family.ofChild, "plainOne"_sel), 1);
    EXPECT_FALSE(family.ofParent->respondsToSelector("plainOne"_sel)) << "added to the class alone";
}

TEST(MethodReplacement, ChangesTheRecordOfTheClassThatHasTheMethod) {
    Family family("Inherited"), other("Lending");
    addMethod<"three", &answer<3>>(family.parent);
    addMethod<"four", &answer<4>>(other.parent);
    addMethod<"count", &answer<5>>(family.parent->metaclass());
    IMP previous = PBReplaceMethodImplementation(family.child, "one"_sel, kAnswering<2>);
    EXPECT_EQ(send<int>(family.ofParent, "one"_sel), 2);
    EXPECT_EQ(PBReplaceMethodImplementation(family.child, "one"_sel, previous), kAnswering<2>);
    EXPECT_EQ(send<int>(family.ofChild, "one"_sel), 1);
    PBReplaceMethodImplementationWithSelector(family.parent, "one"_sel, "three"_sel);
    EXPECT_EQ(send<int>(family.ofParent, "one"_sel), 3);
    PBReplaceMethodImplementationWithSelectorOnClass(family.parent, "one"_sel, other.parent, "four"_sel);
    EXPECT_EQ(send<int>(family.ofParent, "one"_sel), 4);
    PBReplaceMethodImplementation(family.parent->metaclass(), "count"_sel, kAnswering<6>);
    EXPECT_EQ(send<int>(family.child, "count"_sel), 6) << "a class operation";
}

TEST(MethodReplacement, ChangesNothingWithoutTheMethod) {
    Family family("Lacking");
    EXPECT_FALSE(PBRegisterInstanceMethodWithSelector(family.child, "none"_sel, "nothing"_sel));
    EXPECT_FALSE(PBReplaceMethodImplementation(family.child, "none"_sel, kAnswering<9>));
    EXPECT_FALSE(PBReplaceMethodImplementationWithSelector(family.child, "none"_sel, "one"_sel));
    EXPECT_FALSE(family.ofChild->respondsToSelector("nothing"_sel));
    EXPECT_EQ(send<int>(family.ofChild, "one"_sel), 1);
}

// MARK: The process and its system

TEST(SystemVersion, IsPrintedFromItsDigitsAndDecidesWhetherPoofsRun) {
    for (auto [code, text] : {std::pair(0x1049, "10.4.9"), {0x1039, "10.3.9"}, {0x0610, "6.1.0"}}) {
        setSystemVersionCode(code);
        EXPECT_EQ(shown(PBSystemVersion()), text);
    }
    setSystemVersionCode(0);
    EXPECT_FALSE(PBIsRunPoofs());
    PBSetIsRunPoofs(true);
    for (auto [version, canRun] : {std::pair(742.99, false), {0, false}, {743, true}, {1000, true}}) {
        setPlatformVersion(version);
        EXPECT_EQ(PBIsRunPoofs(), canRun) << version;
    }
    PBSetIsRunPoofs(false);
}

TEST(RandomNumbers, AreThoseOfTheProcessAndSeededOnce) {
    std::set<int> seen;
    for (int i = 0; i < 100; ++i) seen.insert(PBRandomInt());
    EXPECT_GT(seen.size(), 1u);
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

struct Localisation : ::testing::Test {
    Localisation() { PBSetToolboxBundleIdentifier(u"pelvor.test.Toolbox"_ns); }
    ~Localisation() override { PBSetToolboxBundleIdentifier(nullptr); }

    NSBundle* toolbox = plugIn("Toolbox");
    Class* lamp = plugIn("LateLamp")->classNamed(u"LateLamp"_ns);
};

TEST_F(Localisation, FindsTheToolboxBundleByItsIdentifierAndKeepsIt) {
    for (int i = 0; i < 2; ++i) EXPECT_EQ(_PBDoToolboxBundle(), toolbox);
    PBSetToolboxBundleIdentifier(u"pelvor.test.Nobody"_ns);
    EXPECT_EQ(_PBDoToolboxBundle(), nullptr);
}

TEST_F(Localisation, AsksTheHostThenTheBundleOfTheObjectsClassThenAnswersTheKey) {
    auto made = instanceOf(lamp);
    auto localized = [](id object) {
        return [object](const std::string& key) { return _PBDoLocalize(NSString::ofUTF8(key), object); };
    };
    expectAll({"_Host -> The host", "_Plug-in -> _Plug-in"}, localized(nullptr));
    for (id object : {id(made), id(lamp)})
        expectAll({"_Both -> Both, says the host", "_Plug-in -> The plug-in", "_Nobody -> _Nobody",
                   "_Marker -> __PBLocalizedStringNotFound__"},
                  localized(object));
    PBSetToolboxBundleIdentifier(u"pelvor.test.Nobody"_ns);
    expectAll({"_Both -> Both, says the plug-in"}, localized(made));
    expectAll({"_Both -> _Both"}, localized(nullptr));
    NSString* unknown = NSString::of(u"_Nobody knows this");
    for (id object : {id(lamp), id()}) EXPECT_EQ(_PBDoLocalize(unknown, object), unknown);
}

// MARK: Shared character sets

TEST(SharedCharacterSets, AreMadeByTheLoadTimeSequence) {
    PBPostLoader::processClasses();
    EXPECT_EQ(_pbLettersCharacterSet, NSCharacterSet::letterCharacterSet());
    EXPECT_EQ(_pbWhitespaceCharacterSet, NSCharacterSet::whitespaceAndNewlineCharacterSet());
    EXPECT_EQ(_pbDecimalDigitCharacterSet, NSCharacterSet::decimalDigitCharacterSet());
    auto members = [](NSCharacterSet* set) {
        std::u16string units;
        for (unsigned unit = 0; unit < 0x10000; ++unit)
            if (set->characterIsMember(static_cast<unichar>(unit))) units += static_cast<unichar>(unit);
        return units;
    };
    EXPECT_EQ(members(_pbMoneyCharacterSet), u"\x24\xA3\xA5\x20AC");
    EXPECT_EQ(members(_pbDoubleQuotesCharacterSet), u"\x22\xAB\xBB\x201C\x201D");
    EXPECT_EQ(members(_pbSingleQuotesCharacterSet), u"\x27\x2018\x2019");
}

// MARK: Abstract methods

TEST(AbstractMethod, NamesClassAndMethod) {
    Class* cls = Class::createSubclass("AbstractLamp", NSObject::classObject());
    const std::string raised = "PBAbstractMethodException: AbstractLamp must implement the abstract method ";
    EXPECT_EQ(RAISED(PBAbstractMethodWasCalled(instanceOf(cls).get(), "lightAt:for:"_sel)),
              raised + "-lightAt:for:");
    EXPECT_EQ(RAISED(PBAbstractMethodWasCalled(cls, "lamp"_sel)), raised + "+lamp");
}

// MARK: Geometry

TEST(DisplayGeometry, ToleratesLessThanATenthInEachDirection) {
    struct Row {
        const char* name;
        NSRect rect;
        bool areOriginsEqual, areSizesEqual, areRectsEqual;
    };
    for (const Row& row : {Row{"just less", {{1.09f, 1.91f}, {10, 10}}, true, true, true},
                           Row{"a tenth in x", {{1.1f, 2}, {10, 10}}, false, true, false},
                           Row{"a tenth in y", {{1, 1.9f}, {10, 10}}, false, true, false},
                           Row{"a tenth in height", {{1, 2}, {10, 10.1f}}, true, false, false},
                           Row{"a sum over origin and size", {{1.06f, 2}, {9.94f, 10}}, true, true, false},
                           Row{"a sum of directions", {{1.06f, 2}, {10, 10.06f}}, true, true, true},
                           Row{"no number", {{NAN, 2}, {10, 10}}, false, true, false}}) {
        const NSRect other{{1, 2}, {10, 10}};
        EXPECT_EQ(PBEqualDisplayPoints(other.origin, row.rect.origin), row.areOriginsEqual) << row.name;
        EXPECT_EQ(PBEqualDisplaySizes(row.rect.size, other.size), row.areSizesEqual) << row.name;
        EXPECT_EQ(PBEqualDisplayRects(other, row.rect), row.areRectsEqual) << row.name;
    }
}

TEST(DisplayGeometry, PutsOriginsIntoTheMiddleOfPixels) {
    EXPECT_EQ(PBIntegralDisplayRect({{10.2f, 20.7f}, {100, 50}}), (NSRect{{10.5f, 20.5f}, {99, 50}}));
    EXPECT_EQ(PBIntegralDisplayRect({{10.5f, 20.5f}, {10, 10}}), (NSRect{{10.5f, 20.5f}, {10, 10}}));
    EXPECT_EQ(PBIntegralDisplayRect({{-0.25f, -1}, {1, 0.25f}}), (NSRect{{-0.5f, -0.5f}, {1, -1}}));
}

TEST(DisplayGeometry, PutsLinesOntoPixelsByTheirThickness) {
    struct Row {
        float coordinate, thickness, expected;
    };
    for (const Row& row : {Row{3, 1, 3.5f},
                           {3.995f, 1, 4.5f},
                           {3.4f, 1, 3.5f},
                           {3.4f, 2, 3},
                           {2.5f, 2, 2},
                           {3.5f, 2, 4},
                           {7.25f, 0, 7.5f},
                           {7.25f, 0.5f, 7},
                           {7.25f, 3.9f, 7.5f},
                           {7.25f, -1, 7},
                           {7.25f, 1e30f, 7},
                           {7.25f, NAN, 7},
                           {-2.3f, 1, -2.1f}})
        EXPECT_EQ(PBIntegralDisplayCoordinateForThickness(row.coordinate, row.thickness), row.expected)
            << row.coordinate << " with thickness " << row.thickness;
}

TEST(DisplayGeometry, ScalesByPercentagesAndSpansPoints) {
    EXPECT_EQ(PBScaleSize({200, 100}, 50, 0), (NSSize{100, 100}));
    EXPECT_EQ(PBScaleSize({200, 100}, 0, -150), (NSSize{200, -150}));
    EXPECT_EQ(PBRectEnclosingPoints({5, 1}, {2, 8}), (NSRect{{2, 1}, {3, 7}}));
    EXPECT_TRUE(std::signbit(PBRectEnclosingPoints({0, 0}, {-0.0f, 0}).origin.x)) << "of equals the second";
}

}  // namespace
