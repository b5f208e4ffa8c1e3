// SPDX-License-Identifier: Apache-2.0
// The main function of every test program, and what tests share.
#include <optional>

#include "Prelude.h"

namespace pelvor {

extern Library testLibrary;
PELVOR_DEFINE_CLASS(Listener, testLibrary) { methods.instance<"hear:", &Listener::hear>(); }
constexpr Class* kClasses[] = {&Listener::classRecord};
constinit Library testLibrary{"Tests", {}, kClasses, {}};

Retained<Listener> Listener::to(NSString* name, Object* sender) {
    auto listener = make<Listener>();
    listener->listen(name, sender);
    return listener;
}

void Listener::listen(NSString* name, Object* sender) {
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(this, "hear:"_sel, name, sender);
}

void Listener::hear(NSNotification* notification) {
    heard.push_back(Retained<NSNotification>::retaining(notification));
    if (reaction) reaction();
}

namespace {

// Every test has a pool of its own.
class PoolOfTheTest : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override { _pool.emplace(); }
    void OnTestEnd(const ::testing::TestInfo&) override { _pool.reset(); }

    std::optional<AutoreleasePool> _pool;
};

}  // namespace
}  // namespace pelvor

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new pelvor::PoolOfTheTest);
    return RUN_ALL_TESTS();
}
