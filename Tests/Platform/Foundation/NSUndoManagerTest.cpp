// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSUndoManager.h"

#include "Foundation/ClockScope.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSRunLoop.h"
#include "Prelude.h"
#include "TestClasses.h"

namespace {

std::string shown;
NSUndoManager* current = nullptr;

// Shows the text, and registers what shows the former one.
void show(Object* self, NSString* text) {
    current->registerUndoWithTarget_selector_object(self, "show:"_sel, NSString::ofUTF8(shown));
    shown = text->toUTF8();
}

struct NSUndoManagerTest : ::testing::Test {
    NSUndoManagerTest() {
        static Class* cls = makeClass<"show:", &show>("TestDisplay");
        display = instanceOf(cls);
        current = manager;
        shown = "";
    }
    void setText(const char* text) { send(display.get(), "show:"_sel, NSString::ofUTF8(text)); }
    void endTurn() { NSRunLoop::currentRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode); }

    ClockScope clock;
    AutoreleasePool pool;
    Retained<NSUndoManager> manager = NSUndoManager::init();
    Retained<Object> display;
};

TEST_F(NSUndoManagerTest, WhatATurnDoesIsTakenBackAsOne) {
    setText("a");
    setText("b");
    manager->setActionName(u"Typing"_ns);
    endTurn();
    setText("c");
    EXPECT_EQ(manager->groupingLevel(), 1u);
    manager->undo();
    EXPECT_EQ(shown, "b");
    EXPECT_EQ(manager->undoMenuItemTitle()->toUTF8(), "Undo Typing");
    manager->undo();
    EXPECT_EQ(shown, "");
    EXPECT_FALSE(manager->canUndo());
    manager->undo();
    manager->redo();
    EXPECT_EQ(shown, "b");
    EXPECT_EQ(manager->undoActionName()->toUTF8(), "Typing");
    EXPECT_TRUE(manager->canRedo());
    setText("d");
    EXPECT_FALSE(manager->canRedo());
    endTurn();
}

TEST_F(NSUndoManagerTest, NumbersTheStatesThatItLeadsTo) {
    setText("a");
    endTurn();
    const std::uint64_t saved = manager->stateNumber();
    setText("b");
    endTurn();
    EXPECT_NE(manager->stateNumber(), saved);
    manager->undo();
    EXPECT_EQ(manager->stateNumber(), saved);
    manager->undo();
    EXPECT_EQ(manager->stateNumber(), 0u);
    manager->redo();
    EXPECT_EQ(manager->stateNumber(), saved);
    manager->undo();
    setText("c");
    endTurn();
    EXPECT_NE(manager->stateNumber(), saved) << "another text, as many steps away from the first";
}

TEST_F(NSUndoManagerTest, GroupsNestAndAreLimited) {
    manager->setGroupsByEvent(false);
    EXPECT_THAT(reasonOf(NSInternalInconsistencyException, [&] { setText("x"); }),
                HasSubstr("no group is open"));
    manager->setLevelsOfUndo(2);
    for (const char* text : {"a", "b", "c"}) {
        manager->beginUndoGrouping();
        manager->beginUndoGrouping();
        setText(text);
        manager->endUndoGrouping();
        EXPECT_THAT(reasonOf(NSInternalInconsistencyException, [&] { manager->undo(); }), HasSubstr("open"));
        manager->endUndoGrouping();
    }
    for (int i = 0; i < 3; ++i) manager->undo();
    EXPECT_EQ(shown, "a");
    EXPECT_THAT(reasonOf(NSInternalInconsistencyException, [&] { manager->endUndoGrouping(); }),
                HasSubstr("no group is open"));
}

TEST_F(NSUndoManagerTest, TargetsMayEndAndBeForgotten) {
    auto other = instanceOf(display->isa());
    const std::uint32_t before = display->retainCount();
    {
        AutoreleasePool inner;
        send(manager->prepareWithInvocationTarget(display), "show:"_sel, u"prepared"_ns);
    }
    manager->registerUndoWithTarget_selector_object(other, "show:"_sel, u"other"_ns);
    manager->disableUndoRegistration();
    setText("unseen");
    manager->enableUndoRegistration();
    endTurn();
    other = nullptr;
    manager->undo();
    EXPECT_EQ(shown, "prepared");
    EXPECT_EQ(display->retainCount(), before);
    manager->removeAllActionsWithTarget(display);
    EXPECT_FALSE(manager->canRedo());
    bool isCalled = false;
    manager->registerUndo(display, [&] { isCalled = true; });
    manager->undo();
    EXPECT_TRUE(isCalled);
    setText("last");
    manager = nullptr;
    endTurn();
}

TEST_F(NSUndoManagerTest, WhatIsDroppedMayCallTheManager) {
    auto other = instanceOf(display->isa());
    int ended = 0;
    // An object that takes back its actions when it ends, and that only an action keeps.
    const auto keep = [&] {
        auto kept = atEnd([&] {
            ++ended;
            manager->removeAllActionsWithTarget(other);
        });
        manager->registerUndo(other, [kept] {});
        endTurn();
    };
    keep();
    keep();
    manager->removeAllActionsWithTarget(other);
    keep();
    manager->removeAllActions();
    manager->setLevelsOfUndo(1);
    keep();
    setText("a");
    endTurn();
    EXPECT_EQ(ended, 4);
    manager->undo();
    EXPECT_EQ(shown, "");

    setText("b");
    endTurn();
    auto dropper = Listener::doing([&](id) { manager->removeAllActions(); });
    NSNotificationCenter* centre = NSNotificationCenter::defaultCenter();
    centre->addObserver_selector_name_object(dropper, "hear:"_sel, NSUndoManagerWillUndoChangeNotification,
                                             manager);
    manager->undo();
    EXPECT_EQ(shown, "b");
    centre->addObserver_selector_name_object(dropper, "hear:"_sel, NSUndoManagerDidOpenUndoGroupNotification,
                                             manager);
    setText("c");
    centre->removeObserver(dropper);
    EXPECT_EQ(manager->groupingLevel(), 0u);
    EXPECT_FALSE(manager->canUndo());
}

TEST_F(NSUndoManagerTest, AnExceptionLeavesNoGroupOpen) {
    manager->registerUndo(display, [] { throw NSException(NSGenericException, "stuck"); });
    endTurn();
    EXPECT_EQ(reasonOf(NSGenericException, [&] { manager->undo(); }), "stuck");
    EXPECT_FALSE(manager->isUndoing());
    EXPECT_EQ(manager->groupingLevel(), 0u);
    setText("a");
    manager->undo();
    EXPECT_EQ(shown, "");
}

}  // namespace
