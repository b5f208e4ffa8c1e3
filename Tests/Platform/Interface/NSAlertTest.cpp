// SPDX-License-Identifier: Apache-2.0
// Alerts: what is asked, by which keys it is answered, and who may be gone meanwhile.
#include "Interface/NSAlert.h"
#include "EnvironmentScope.h"
#include "Foundation/NSObject-DelayedPerforming.h"
#include "Interface/Events/ApplicationState.h"
#include "MenuTracking.h"

namespace {

TEST_F(MenuTracking, AsksInAlerts) {
    LogLines log;
    EXPECT_EQ(NSRunAlertPanel(u"Writer"_ns, u"%@ is missing."_ns, nullptr, nullptr, nullptr, u"It"_ns),
              NSAlertErrorReturn);  // nobody is there
    EXPECT_THAT(log.lines, ElementsAre("Writer: It is missing."));
    // Each key answers one alert.
    struct {
        char16_t key;
        NSString* alternate;
        NSInteger answer;
    } rows[] = {{u'\r', u"Cancel"_ns, NSAlertDefaultReturn},
                {0x1b, u"Cancel"_ns, NSAlertAlternateReturn},
                {0x1b, nullptr, NSAlertDefaultReturn}};
    for (const auto& row : rows) {
        NSInteger answer = 0;
        Retained<NSWindow> panel;
        auto asks = Listener::doing([&](id) {
            AutoreleasePool pool;
            plan({[&] {
                      panel.set(menuWindow());
                      EXPECT_EQ(panel->contentView()->superview()->subviews()->count(), 1u);
                  },
                  pressing(row.key)},
                 0.25, NSModalPanelRunLoopMode);  // without a menu bar
            answer =
                NSRunAlertPanel(u"Save?"_ns, u"Changes get lost."_ns, u"Save"_ns, row.alternate, nullptr);
            screen.app->stop(nullptr);
        });
        performSelector_withObject_afterDelay(asks, "hear:"_sel, nullptr, 0);
        screen.app->run();
        EXPECT_EQ(answer, row.answer) << int{row.key};
        EXPECT_FALSE(panel->performKeyEquivalent(screen.app->currentEvent())) << "that alert is gone";
    }
}

// Runs the application until an alert has returned.
NSInteger askWhileRunning(NSApplication* app) {
    NSInteger answer = 0;
    auto asks = Listener::doing([&](id) {
        answer = NSRunAlertPanel(u"Save?"_ns, u"It"_ns, nullptr, nullptr, nullptr);
        app->stop(nullptr);
    });
    performSelector_withObject_afterDelay(asks, "hear:"_sel, nullptr, 0);
    app->run();
    return answer;
}

TEST_F(MenuTracking, AsksNobodyWhoIsGone) {
    plan({[&] { screen.backend->lose("the server closed the connection"); },
          [] { ADD_FAILURE() << "the menu is still open"; }});
    screen.press(NSF10FunctionKey);
    plan({pressing(u'\r')}, 0.25, NSModalPanelRunLoopMode);  // would end an alert that is shown
    LogLines log;
    EXPECT_EQ(askWhileRunning(screen.app), NSAlertErrorReturn);
    EXPECT_THAT(log.lines, ElementsAre("Save?: It"));
}

TEST(NSAlertTest, AsksNobodyWithoutDisplay) {
    EnvironmentScope display("PELVOR_DISPLAY", "none");
    ApplicationState::end();
    AutoreleasePool pool;
    NSApplication* app = NSApplication::sharedApplication();
    app->setTerminatesProcess(false);
    LogLines log;
    EXPECT_EQ(askWhileRunning(app), NSAlertErrorReturn);
    EXPECT_THAT(log.lines, ElementsAre("Save?: It"));
    ApplicationState::end();
}

}  // namespace
