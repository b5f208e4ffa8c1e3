// SPDX-License-Identifier: Apache-2.0
#include "PBKeyboardInputMethod.h"

#include "EnvironmentScope.h"
#include "Foundation/NSNumber.h"
#include "Interface/NSImage.h"
#include "ModalUser.h"
#include "NSInputManager-PelvorAdditions.h"

namespace {

using Keyboards = NSInputManager_PelvorAdditions;

const BackendLayout kEnglish{0, "us", "English (US)", "eng", "us", true};
const BackendLayout kGerman{1, "de(nodeadkeys)", "German (no dead keys)", "deu", "de"};
const BackendLayout kRussian{2, "ru", "Russian", "rus", "ru"};
const BackendLayout kGreek{0, "gr", "", "ell", "gr"};

class PBKeyboardInputMethodTest : public testing::Test {
  protected:
    PBKeyboardInputMethodTest() {
        screen.backend->setLayouts({kEnglish, kGerman, kRussian});
        screen.backend->setKnownLayouts({kGreek});
    }
    static PBKeyboardInputMethod* available(NSUInteger index) {
        return static_cast<PBKeyboardInputMethod*>(
            Keyboards::availableKeyboardLayouts()->objectAtIndex(index));
    }
    static NSDictionary* stored(NSString* layout, std::int32_t script) {
        return NSDictionary::of(
            {{u"keyboardLayoutIdentifier"_ns, NSNumber::numberWithInt(keyboardLayoutIdentifier(layout))},
             {u"keyboardLayoutScriptCode"_ns, NSNumber::numberWithInt(script)},
             {u"keyboardLayoutDisplayName"_ns, u"Stored"_ns}});
    }
    static std::string shownMethod(PBKeyboardInputMethod* method) {
        return shown(method->description(), method->displayName()) +
               (method->keyboardLayoutRef() ? "" : " -");
    }
    static std::string idOf(NSString* name) { return std::to_string(keyboardLayoutIdentifier(name)); }

    const LanguageScope english{"en"};
    InterfaceScope screen;
};

TEST_F(PBKeyboardInputMethodTest, ListsWhatTheUserHasAndSwitches) {
    NSArray* list = Keyboards::availableKeyboardLayouts();
    ASSERT_EQ(list->count(), 3u);
    EXPECT_EQ(shownMethod(available(1)), "PBKeyboardLayout \"de(nodeadkeys)\" [script=0, id=" +
                                             idOf(u"de(nodeadkeys)"_ns) + "] German (no dead keys)");
    EXPECT_EQ(Keyboards::availableKeyboardLayouts(), list);
    PBKeyboardInputMethod* first = Keyboards::currentKeyboardLayout();
    EXPECT_TRUE(first->isEqual(available(0)) && first == Keyboards::currentKeyboardLayout());
    EXPECT_TRUE(Keyboards::setCurrentKeyboardLayout(available(2)));
    EXPECT_EQ(Keyboards::currentKeySciptCode(), smCyrillic);
    EXPECT_TRUE(Keyboards::currentKeyboardLayout()->isEqual(available(2)));
    // Others: a list of its own, in which known layouts are the same objects.
    const auto russian = Retained<PBKeyboardInputMethod>::retaining(available(2));
    screen.backend->setLayouts({kRussian, kGreek});
    EXPECT_EQ(Keyboards::availableKeyboardLayouts()->count(), 2u);
    EXPECT_EQ(available(0), russian.get());
    screen.backend->setLayouts({});
    EXPECT_EQ(Keyboards::availableKeyboardLayouts()->count(), 0u);
    EXPECT_EQ(Keyboards::currentKeyboardLayout(), nullptr);
}

TEST_F(PBKeyboardInputMethodTest, StoresAndRestores) {
    const auto one = PBKeyboardInputMethod::initWithKeyboardLayoutRef(available(2)->keyboardLayoutRef());
    EXPECT_TRUE(one->isEqual(available(2)) && one->hash() == available(2)->hash());
    EXPECT_FALSE(one->isEqual(available(1)) || one->isEqual(u"ru"_ns) || one->isEqual(nullptr));
    EXPECT_TRUE(
        PBKeyboardInputMethod::inputMethodForDictionary(one->serializationDictionary())->isEqual(one));
    EXPECT_FALSE(one->isEqual(
        PBKeyboardInputMethod::initWithKeyboardLayoutRef_scriptCode(one->keyboardLayoutRef(), 0).get()));

    struct Row {
        const char* name;
        NSDictionary* dictionary;
        std::string expected;
    };
    auto* bare = NSDictionary::of(
        {{u"keyboardLayoutIdentifier"_ns, NSNumber::numberWithInt(one->keyboardLayoutID())}});
    auto* wrong = NSDictionary::of({{u"keyboardLayoutIdentifier"_ns, u"ru"_ns}});
    const std::string id = idOf(u"ru"_ns);
    auto* texts = NSDictionary::of(
        {{u"keyboardLayoutIdentifier"_ns, NSString::ofUTF8(id)}, {u"keyboardLayoutScriptCode"_ns, u"5"_ns}});
    for (const Row& row : {
             Row{"enabled", stored(u"ru"_ns, 7), "\"ru\" [script=7, id=" + id + "] Russian"},
             Row{"with its own script", bare, "\"ru\" [script=7, id=" + id + "] Russian"},
             Row{"with another script", stored(u"ru"_ns, 0), "\"ru\" [script=0, id=" + id + "] Russian"},
             Row{"as texts", texts, "\"ru\" [script=5, id=" + id + "] Russian"},
             Row{"not enabled", stored(u"gr"_ns, 6), "\"gr\" [script=6, id=" + idOf(u"gr"_ns) + "] (null)"},
             Row{"not installed", stored(u"martian"_ns, 4), "\"(null)\" [script=4, id=0] Stored -"},
             Row{"of other kinds", wrong, "\"(null)\" [script=0, id=0] (null) -"},
             Row{"nothing", nullptr, "\"(null)\" [script=0, id=0] (null) -"},
         })
        EXPECT_EQ(shownMethod(PBKeyboardInputMethod::inputMethodForDictionary(row.dictionary)),
                  "PBKeyboardLayout " + row.expected)
            << row.name;
    auto* nameless = PBKeyboardInputMethod::inputMethodForDictionary(stored(u"gr"_ns, 6));
    EXPECT_EQ(nameless->serializationDictionary()->count(), 2u);
    EXPECT_TRUE(nameless->displayIcon());
}

TEST_F(PBKeyboardInputMethodTest, TellsOnceThatALayoutCannotBeHad) {
    LogLines log;
    auto* greek = PBKeyboardInputMethod::inputMethodForDictionary(stored(u"gr"_ns, 6));
    auto* gone = PBKeyboardInputMethod::inputMethodForDictionary(stored(u"martian"_ns, 0));
    const auto alerts = [&] {
        screen.turn();
        return std::exchange(log.lines, {}).size();
    };
    EXPECT_FALSE(Keyboards::setCurrentKeyboardLayout(gone));
    EXPECT_TRUE(gone->isDisabled());
    NSRunLoop::mainRunLoop()->performReadyWorkForMode(NSEventTrackingRunLoopMode);
    EXPECT_TRUE(log.lines.empty());
    screen.turn();
    EXPECT_THAT(log.lines,
                ElementsAre(StartsWith("Unable to switch to the “Stored” keyboard layout.: To switch")));
    log.lines.clear();
    EXPECT_FALSE(Keyboards::setCurrentKeyboardLayout(gone));
    EXPECT_EQ(alerts(), 0u);
    EXPECT_FALSE(Keyboards::setCurrentKeyboardLayout(greek));
    EXPECT_EQ(alerts(), 1u) << "each layout has its alert";
    screen.backend->setLayouts({kEnglish, kGreek});
    EXPECT_TRUE(Keyboards::setCurrentKeyboardLayout(greek));
    EXPECT_FALSE(greek->isDisabled());
    screen.backend->setLayouts({kEnglish});
    EXPECT_FALSE(Keyboards::setCurrentKeyboardLayout(greek));
    EXPECT_EQ(alerts(), 1u) << "armed again by the success";
}

TEST_F(PBKeyboardInputMethodTest, OffersTheSettings) {
    const EnvironmentScope path("PATH", "/no/programs");
    std::vector<std::string> pressed;
    runWithUser(
        screen, [&] { Keyboards::showAlertForFailedKeyboardLayout(available(2)); },
        [&] {
            for (NSString* title : {u"Show Keyboard Settings"_ns, u"OK"_ns})
                if (auto* button = buttonIn(screen.app->modalWindow()->contentView(), title)) {
                    pressed.push_back(title->toUTF8());
                    return button->performClick(nullptr);
                }
        });
    EXPECT_EQ(joined(pressed), "Show Keyboard Settings, OK");  // and is told that there are none
}

}  // namespace
