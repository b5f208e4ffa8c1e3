// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSControl.h"

#include "ActionTarget.h"
#include "EnvironmentScope.h"
#include "Interface/InterfaceLibrary.h"
#include "Interface/NSButton.h"
#include "Interface/NSSegmentedControl.h"
#include "Interface/NSTableHeaderCell.h"
#include "Interface/NSText.h"
#include "Interface/NSTextField.h"
#include "InterfaceScope.h"
#include "TableRows.h"

namespace pelvor {

extern Library controlTestLibrary;
PELVOR_DEFINE_CLASS(ActionTarget, controlTestLibrary) { methods.instance<"act:", &ActionTarget::act>(); }
constexpr Library* kDependencies[] = {&interfaceLibrary};
constinit Library controlTestLibrary{"TestControls", kDependencies, kClassesOf<ActionTarget>, {}};

}  // namespace pelvor

namespace {

// A window with controls that have one target.
class ControlTest : public testing::Test {
  protected:
    template <class Control>
    Retained<Control> added(NSRect frame) {
        auto control = Control::initWithFrame(frame);
        control->setTarget(target);
        control->setAction("act:"_sel);
        window->contentView()->addSubview(control);
        screen.turn();
        return control;
    }

    InterfaceScope screen;
    Retained<NSWindow> window = screen.window({{100, 100}, {300, 200}});
    Retained<ActionTarget> target = make<ActionTarget>();
};

// A key may be bound to a command that only the application's delegate has.
TEST_F(ControlTest, CommandsThatNoViewTakesReachTheApplication) {
    window->doCommandBySelector("act:"_sel);
    EXPECT_EQ(target->count, 0);
    screen.app->setDelegate(target);
    window->doCommandBySelector("act:"_sel);
    EXPECT_EQ(target->count, 1);
}

// MARK: Cells

TEST_F(ControlTest, ShowsValuesOfAllKindsAsText) {
    auto cell = NSCell::initTextCell(u"12 apples"_ns);
    EXPECT_EQ(cell->intValue(), 12);
    cell->setObjectValue(NSNumber::numberWithDouble(2.5));
    EXPECT_EQ(shown(cell->stringValue(), cell->doubleValue(), cell->intValue()), "2.5 2.5 2");
    cell->setAttributedStringValue(NSAttributedString::initWithString(u"3 of 4"_ns).get());
    EXPECT_EQ(shown(cell->stringValue(), cell->intValue()), "3 of 4 3");
    cell->setObjectValue(nullptr);
    EXPECT_EQ(shown(cell->stringValue(), cell->hasValidObjectValue()), " 0");
    cell->takeStringValueFrom(NSCell::initTextCell(u"taken"_ns).get());
    EXPECT_EQ(shown(cell->title()), "taken");
}

TEST_F(ControlTest, CopiesCellsOfEveryClassWithoutTheirControl) {
    auto button = added<NSButton>({{0, 0}, {80, 26}});
    button->setTitle(u"Go"_ns);
    button->setKeyEquivalent(u"g"_ns);
    auto* cell = static_cast<NSButtonCell*>(button->cell());
    cell->setAllowsMixedState(true);
    cell->setState(NSMixedState);
    auto copy = cast<NSButtonCell>(cell->copy());
    EXPECT_EQ(shown(copy->title(), copy->keyEquivalent(), copy->state()), "Go g -1");
    EXPECT_EQ(copy->target(), target);
    EXPECT_EQ(copy->controlView(), nullptr);
    auto field = NSTextFieldCell::initTextCell(u"x"_ns);
    field->setTextColor(NSColor::redColor());
    EXPECT_EQ(cast<NSTextFieldCell>(field->copy())->textColor(), NSColor::redColor());
}

// MARK: Buttons

TEST_F(ControlTest, SendsItsActionWhenItIsReleasedInside) {
    auto button = added<NSButton>({{20, 20}, {80, 26}});
    const std::uint32_t before = screen.pixel(button, {40, 3});
    screen.click(button, {40, 13});
    EXPECT_EQ(target->count, 1);
    EXPECT_EQ(target->last, button);
    screen.drag(button, {40, 13}, {200, 100});
    EXPECT_EQ(target->count, 1) << "released outside";
    screen.drag(window->contentView(), {5, 5}, {40, 30});
    EXPECT_EQ(target->count, 1) << "pressed outside";
    EXPECT_EQ(screen.pixel(button, {40, 3}), before) << "no longer pressed";
    button->setEnabled(false);
    screen.click(button, {40, 13});
    button->performClick(nullptr);
    EXPECT_EQ(target->count, 1) << "cannot be used";
}

TEST_F(ControlTest, SwitchesBoxesThroughTheirStatesAndRadioButtonsByGroups) {
    auto box = added<NSButton>({{20, 20}, {80, 20}});
    box->setButtonType(NSSwitchButton);
    box->setAllowsMixedState(true);
    std::string states;
    for (int i = 0; i < 4; ++i) {
        screen.click(box, {7, 10});
        states += std::to_string(box->state()) + " ";
    }
    EXPECT_EQ(states, "-1 1 0 -1 ");
    const auto titleX = [&] { return NSMinX(box->cell()->titleRectForBounds(box->bounds())); };
    EXPECT_GT(titleX(), 0);
    {
        LanguageScope language("he");
        EXPECT_EQ(titleX(), 0) << "the mark is at the right";
    }

    auto first = added<NSButton>({{20, 60}, {80, 20}}), second = added<NSButton>({{20, 90}, {80, 20}});
    for (NSButton* radio : {first.get(), second.get()}) radio->setButtonType(NSRadioButton);
    screen.click(first, {7, 10});
    screen.click(second, {7, 10});
    screen.click(second, {7, 10});
    EXPECT_EQ(shown(first->state(), second->state(), box->state()), "0 1 -1");
    second->setAction("other:"_sel);
    screen.click(first, {7, 10});
    EXPECT_EQ(shown(first->state(), second->state()), "1 1") << "another action, another group";
}

TEST_F(ControlTest, TakesKeys) {
    auto button = added<NSButton>({{20, 20}, {80, 26}});
    button->setKeyEquivalent(u"k"_ns);
    button->setKeyEquivalentModifierMask(NSCommandKeyMask);
    screen.press(u'k', NSCommandKeyMask);
    EXPECT_EQ(target->count, 1);
    screen.press(u'k', NSCommandKeyMask | NSShiftKeyMask);
    EXPECT_EQ(target->count, 1) << "another shortcut";
    screen.click(button, {40, 13});
    EXPECT_NE(window->firstResponder(), button) << "a click leaves the keys where they are";
    window->makeFirstResponder(button);
    screen.press(u' ');
    EXPECT_EQ(target->count, 3);

    auto beside = added<NSButton>({{190, 20}, {80, 26}}), between = added<NSButton>({{105, 20}, {80, 26}});
    const auto below = added<NSButton>({{60, 60}, {80, 26}});  // in another row
    screen.press(NSRightArrowFunctionKey);
    EXPECT_EQ(window->firstResponder(), between);
    between->setEnabled(false);
    window->makeFirstResponder(beside);
    for (int i = 0; i < 2; ++i) screen.press(NSLeftArrowFunctionKey);
    EXPECT_EQ(window->firstResponder(), button) << "there is none beside it";
}

TEST_F(ControlTest, SendsAgainAndAgainWhileItIsHeld) {
    auto button = added<NSButton>({{20, 20}, {80, 26}});
    button->setContinuous(true);
    button->setPeriodicDelay_interval(0.5f, 0.25f);
    button->sendActionOn(NSPeriodicMask);
    screen.backend->movePointer(screen.placeOf(button, {40, 13}));
    screen.backend->pressButton(1);
    for (int i = 0; i < 3; ++i)
        screen.app->postEvent_atStart(
            NSEvent::
                otherEventWithType_location_modifierFlags_timestamp_windowNumber_context_subtype_data1_data2(
                    NSPeriodic, {}, 0, 0, 0, nullptr, 0, 0, 0),
            false);
    screen.backend->releaseButton(1);
    screen.turn();
    EXPECT_EQ(target->count, 3);
}

TEST_F(ControlTest, SurvivesWhatItsActionDoes) {
    auto button = added<NSButton>({{20, 20}, {80, 26}});
    target->reaction = [&] {
        button->removeFromSuperview();
        button = nullptr;
        target->last = nullptr;
    };
    NSButton* kept = button;
    screen.click(kept, {40, 13});
    EXPECT_EQ(target->count, 1);

    auto raising = added<NSButton>({{20, 20}, {80, 26}});
    target->reaction = [] { throw NSException(NSGenericException, "no"); };
    LogLines log;
    screen.click(raising, {40, 13});
    EXPECT_FALSE(raising->cell()->isHighlighted());
    EXPECT_THAT(joined(log.lines), HasSubstr("no")) << "reported";

    auto orphan = added<NSButton>({{20, 20}, {80, 26}});
    target = nullptr;
    EXPECT_EQ(orphan->target(), nullptr) << "targets are not kept";
}

// MARK: Segments

class SegmentTest : public ControlTest {
  protected:
    SegmentTest() {
        control->setSegmentCount(3);
        for (int i = 0; i < 3; ++i) {
            control->setLabel_forSegment(NSString::stringWithFormat(u"S%d"_ns, i), i);
            control->setWidth_forSegment(50, i);
        }
    }
    std::string selection() {
        std::string text;
        for (int i = 0; i < control->segmentCount(); ++i)
            text += control->isSelectedForSegment(i) ? '1' : '0';
        return text + " " + std::to_string(control->selectedSegment());
    }

    Retained<NSSegmentedControl> control = added<NSSegmentedControl>({{20, 20}, {150, 24}});
};

TEST_F(SegmentTest, SelectsAsItsModeSays) {
    auto* cell = static_cast<NSSegmentedCell*>(control->cell());
    screen.click(control, {75, 12});
    screen.click(control, {125, 12});
    EXPECT_EQ(selection(), "001 2");
    cell->setTrackingMode(NSSegmentSwitchTrackingSelectAny);
    screen.click(control, {25, 12});
    screen.click(control, {125, 12});
    EXPECT_EQ(selection(), "100 0");
    cell->setTrackingMode(NSSegmentSwitchTrackingMomentary);
    std::string during;
    target->reaction = [&] { during = selection(); };
    screen.click(control, {75, 12});
    EXPECT_EQ(during + ", " + selection(), "110 1, 100 -1");
    EXPECT_EQ(target->count, 5);
}

TEST_F(SegmentTest, TakesOnlyReleasesOnTheSegmentThatWasPressed) {
    control->setEnabled_forSegment(false, 2);
    screen.drag(control, {25, 12}, {75, 12});
    screen.click(control, {125, 12});
    EXPECT_EQ(selection(), "000 -1");
    EXPECT_EQ(target->count, 0);
}

TEST_F(SegmentTest, MovesByKeysRoundTheEndAndPastWhatCannotBeUsed) {
    control->setEnabled_forSegment(false, 1);
    window->makeFirstResponder(control);
    std::string order;
    for (unichar key : {NSRightArrowFunctionKey, NSRightArrowFunctionKey, NSRightArrowFunctionKey,
                        NSLeftArrowFunctionKey}) {
        screen.press(key);
        order += std::to_string(control->selectedSegment());
    }
    EXPECT_EQ(order, "0202");
}

TEST_F(SegmentTest, RunsAsTheLanguageDoesUnlessToldOtherwise) {
    auto header = NSTableHeaderCell::init();
    const auto segmentAtLeft = [&] {
        screen.click(control, {25, 12});
        return control->selectedSegment();
    };
    const auto indicatorX = [&] { return NSMinX(header->sortIndicatorRectForBounds({{}, {100, 22}})); };
    LanguageScope language("he");
    EXPECT_EQ(segmentAtLeft(), 2);
    EXPECT_LT(indicatorX(), 50);
    window->makeFirstResponder(control);
    screen.press(NSRightArrowFunctionKey);
    EXPECT_EQ(control->selectedSegment(), 1);
    control->setBaseWritingDirection(NSWritingDirectionLeftToRight);
    header->setBaseWritingDirection(NSWritingDirectionLeftToRight);
    EXPECT_EQ(segmentAtLeft(), 0);
    EXPECT_GT(indicatorX(), 50);
}

TEST_F(SegmentTest, RefusesSegmentsThatDoNotExist) {
    EXPECT_EQ(RAISED(control->labelForSegment(3)),
              "NSRangeException: labelForSegment: index (3) beyond bounds (3)");
    EXPECT_THAT(RAISED(control->setSegmentCount(-1)), StartsWith("NSRangeException: setSegmentCount:"));
    control->setSelectedSegment(2);
    control->setSegmentCount(2);
    EXPECT_EQ(selection(), "00 -1");
}

// MARK: Text fields

class FieldTest : public ControlTest {
  protected:
    FieldTest() {
        field->setStringValue(u"Anna"_ns);
        field->setDelegate(listener);
        screen.turn();
    }
    std::string selection() {
        NSText* editor = field->currentEditor();
        return editor ? shown(editor->selectedRange()) : "none";
    }

    Retained<NSTextField> field = added<NSTextField>({{20, 20}, {120, 24}});
    Retained<NSTextField> other = added<NSTextField>({{20, 60}, {120, 24}});
    Retained<TableRows> listener = TableRows::of({});
};

TEST_F(FieldTest, EditsWhatIsTypedAndSendsItsActionForReturn) {
    window->makeFirstResponder(field);
    EXPECT_EQ(selection(), "{0, 4}");
    screen.type(u"Berta");
    EXPECT_EQ(shown(field->stringValue(), target->count, listener->take()), "Berta 0 begun ");
    screen.press(NSCarriageReturnCharacter);
    EXPECT_EQ(shown(field->stringValue(), target->count, listener->take()), "Berta 1 ended ");
    EXPECT_EQ(selection(), "{0, 5}") << "goes on with all of it selected";
    screen.type(u"x");
    screen.press(NSEscapeCharacter);
    EXPECT_EQ(shown(field->stringValue()), "Berta");
    screen.press(NSTabCharacter);
    EXPECT_EQ(selection(), "none");
    EXPECT_NE(other->currentEditor(), nullptr);
}

TEST_F(FieldTest, ShowsAValueThatIsSetWhileTheTextIsEdited) {
    window->makeFirstResponder(field);
    screen.type(u"Ber");
    field->setStringValue(u"Clara"_ns);
    EXPECT_EQ(shown(field->stringValue(), selection()), "Clara {5, 0}");
    screen.type(u"!");
    other->setStringValue(u"12"_ns);
    field->takeStringValueFrom(field);
    EXPECT_EQ(shown(field->stringValue(), other->stringValue(), selection()), "Clara! 12 {6, 0}");
    field->setIntValue(7);
    send(field->currentEditor(), "undo:"_sel, id(nullptr));
    screen.press(NSEscapeCharacter);
    EXPECT_EQ(shown(field->stringValue(), selection()), "7 {0, 1}");
}

// In a dialog Return and Escape are buttons' keys, also while a field without an action is edited.
TEST_F(FieldTest, LeavesKeysToButtons) {
    auto pressed = [&](NSString* key) {
        auto button = added<NSButton>({{200, 20}, {80, 26}});
        button->setKeyEquivalent(key);
        window->makeFirstResponder(field);
        const int before = target->count;
        screen.press(key->characterAtIndex(0));
        button->removeFromSuperview();
        return target->count - before;
    };
    EXPECT_EQ(pressed(u"\r"_ns), 1) << "the field has an action of its own";
    field->setAction(SEL());
    EXPECT_EQ(pressed(u"\r"_ns), 1);
    EXPECT_EQ(pressed(u"\x1B"_ns), 1);
    EXPECT_EQ(selection(), "{0, 4}");
}

TEST_F(FieldTest, PutsTheCaretWhereItIsClicked) {
    screen.click(field, {118, 12});
    EXPECT_EQ(selection(), "{4, 0}");
    screen.type(u"s");
    screen.click(other, {60, 12});
    EXPECT_EQ(shown(field->stringValue(), selection()), "Annas none");
    const std::uint32_t face = screen.pixel(field, {110, 5});
    field->setEnabled(false);
    screen.click(field, {60, 12});
    EXPECT_EQ(selection(), "none");
    EXPECT_NE(screen.pixel(field, {110, 5}), face) << "one sees that it takes no keys";
}

TEST_F(FieldTest, ShowsTheTextAtThePlaceWhereItIsEdited) {
    const auto darkest = [&] {
        float leftmost = 120;
        for (float x = 0; x < 120; ++x)
            for (float y = 6; y < 18; ++y)
                if ((screen.pixel(field, {x, y}) & 0xFF) < 0x60) leftmost = std::min(leftmost, x);
        return leftmost;
    };
    const float before = darkest();
    window->makeFirstResponder(field);
    field->currentEditor()->setSelectedRange({4, 0});
    screen.turn();
    EXPECT_EQ(darkest(), before);
}

TEST_F(FieldTest, SurvivesItsEndWhileItIsEdited) {
    window->makeFirstResponder(field);
    screen.type(u"x");
    target->reaction = [&] {
        field->removeFromSuperview();
        field = nullptr;
        target->last = nullptr;
    };
    screen.press(NSCarriageReturnCharacter);
    EXPECT_EQ(target->count, 1);
    screen.type(u"x");
    window->makeFirstResponder(other);
    other->removeFromSuperview();
    screen.type(u"x");
}

}  // namespace
