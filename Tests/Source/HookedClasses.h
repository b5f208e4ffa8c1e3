// SPDX-License-Identifier: Apache-2.0
// Classes with load-time hooks, made while a test runs, and a journal of what the hooks did.
#pragma once

#include <cstdio>
#include <cstdlib>

#include "Prelude.h"

namespace pelvor::testing {

/// What happened, in order. A test that reads it begins by emptying it.
inline std::vector<std::string>& journal() {
    static std::vector<std::string> lines;
    return lines;
}
inline void note(std::string line) { journal().push_back(std::move(line)); }

using Lines = std::vector<std::string>;

/// The implementation that a function without captures gives.
inline IMP hookOf(void (*function)(Object*, SEL)) {
    return {reinterpret_cast<void (*)()>(function), &SignatureFor<void>::object, nullptr};
}

inline void addHook(Class* cls, const char* selector, IMP implementation) {
    cls->metaclass()->addMethods({"Hooks", {{registerSelector(selector), implementation}}, nullptr});
}

/// A new class whose class operation `selector` is the function. The post-loader calls a function once in
/// the life of the process, so every place that makes a class needs a lambda of its own.
inline Class* classWithHook(const char* name, const char* selector, void (*function)(Object*, SEL),
                            Class* superclass = NSObject::classObject()) {
    Class* cls = Class::createSubclass(name, superclass);
    addHook(cls, selector, hookOf(function));
    return cls;
}

/// "Lamp didLoad", for the journal.
inline void noteCall(Object* self, SEL selector) {
    note(std::string(static_cast<Class*>(self)->name()) + " " + selector.name());
}

/// Ends the process; the journal goes to standard error, ready to be compared with `journalOf`.
[[noreturn]] inline void exitWithJournal() {
    for (const std::string& line : journal()) std::fprintf(stderr, "[%s]", line.c_str());
    std::exit(0);
}

/// Exactly these lines, as a regular expression; the lines may be some.
inline std::string journalOf(std::initializer_list<std::string> lines) {
    std::string text;
    for (const std::string& line : lines) text += "\\[" + line + "\\]";
    return "^" + text + "$";
}

}  // namespace pelvor::testing
