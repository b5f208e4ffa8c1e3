// SPDX-License-Identifier: Apache-2.0
// The main function of every test program, and what tests share.
#include <optional>

#include "Prelude.h"

#include "Sanitizers.h"
#include "StuckTest.h"

#if PELVOR_ADDRESS_SANITIZER
// fontconfig forgets a little of what its rules for standing in make.
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig"; }
#endif

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

Retained<Listener> Listener::doing(std::function<void(id)> task) {
    auto listener = make<Listener>();
    listener->task = std::move(task);
    return listener;
}

void Listener::listen(NSString* name, Object* sender) {
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(this, "hear:"_sel, name, sender);
}

void Listener::hear(id what) {
    if (auto own = task) return own(what);  // a copy, since the task may end the listener
    heard.push_back(Retained<NSNotification>::retaining(static_cast<NSNotification*>(what)));
    if (reaction) reaction();
}

namespace {

// Every test has a pool of its own, and tells where it waits if it does not end.
class FrameOfTheTest : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override {
        _pool.emplace();
        StuckTest::begin();
    }
    void OnTestEnd(const ::testing::TestInfo&) override {
        _pool.reset();
        StuckTest::end();
    }

    std::optional<AutoreleasePool> _pool;
};

}  // namespace
}  // namespace pelvor

int main(int argc, char** argv) {
    testing::InitGoogleMock(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new pelvor::FrameOfTheTest);
    return RUN_ALL_TESTS();
}
