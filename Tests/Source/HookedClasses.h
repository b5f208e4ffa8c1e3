// SPDX-License-Identifier: Apache-2.0
// Classes with load-time hooks, made while a test runs, and a journal of what the hooks did.
#pragma once

#include <cstdlib>

#include "Foundation/NSBundle.h"
#include "Prelude.h"

namespace pelvor {

/// What happened, in order. A test that reads it begins by emptying it.
inline std::vector<std::string>& journal() {
    static std::vector<std::string> lines;
    return lines;
}
inline void note(std::string line) { journal().push_back(std::move(line)); }

/// A hook that does this. The post-loader calls a function once in the life of the process, so every place
/// that makes a class has a function of its own.
#define HOOK(...) [](Object* self, SEL selector) { __VA_ARGS__; }
using HookFunction = void (*)(Object*, SEL);

inline IMP hookOf(HookFunction function) {
    return {reinterpret_cast<void (*)()>(function), &SignatureFor<void>::object, nullptr};
}
inline void addHook(Class* cls, SEL selector, IMP implementation) {
    cls->metaclass()->addMethods({"Hooks", {{selector, implementation}}, nullptr});
}

/// A new class with these class operations.
inline Class* classWithHooks(const char* name, std::initializer_list<std::pair<SEL, HookFunction>> hooks) {
    Class* cls = Class::createSubclass(name, NSObject::classObject());
    for (auto [selector, function] : hooks) addHook(cls, selector, hookOf(function));
    return cls;
}

/// "Lamp didLoad", for the journal.
inline void noteCall(Object* self, SEL selector) {
    note(shown(static_cast<Class*>(self)->name(), selector.name()));
}

/// Expects of the situation, in a process of its own, that the journal has exactly these lines.
inline void expectJournal(const std::string& lines, void (*situation)()) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto run = [&] {
        situation();
        std::fputs(joined(journal()).c_str(), stderr);
        std::exit(0);
    };
    EXPECT_EXIT(run(), ::testing::ExitedWithCode(0), "^" + lines + "$");
}

/// A plug-in of the tests.
inline NSBundle* plugIn(const std::string& name) {
    return NSBundle::bundleWithPath(NSString::ofUTF8(PELVOR_TEST_PLUGINS "/" + name + ".bundle"));
}

}  // namespace pelvor
