// SPDX-License-Identifier: Apache-2.0
// What must hold for every class of every library.
#pragma once

#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <set>

#include "Prelude.h"
#include "Runtime/NSInvocation.h"

namespace pelvor {

inline void checkMethod(Class* cls, const Method& method) {
    const IMP& code = method.implementation;
    EXPECT_THAT(method.selector.name(), ::testing::MatchesRegex("[A-Za-z_]([A-Za-z0-9_]*|[A-Za-z0-9_:]*:)"));
    ASSERT_TRUE(code);
    EXPECT_EQ(static_cast<int>(code.signature->argumentCount()), method.selector.argumentCount());
    EXPECT_TRUE(!code.receiver || cls->isNativeSubclassOf(code.receiver)) << "it needs another receiver";
    // One selector has one meaning: a method has the types of the one that it overrides.
    const Method* inherited =
        cls->superclass() ? cls->superclass()->instanceMethod(method.selector) : &method;
    if (!inherited) return;
    EXPECT_STREQ(code.signature->types(), inherited->implementation.signature->types());
}

inline void checkMethods(Class* cls) {
    cls->attachPendingCategories();
    for (const MethodGroup* group = cls->methodGroups(); group; group = group->next) {
        std::set<std::string> seen;
        for (const Method& method : group->methods) {
            SCOPED_TRACE((cls->isMetaclass() ? "+" : "-") + std::string(method.selector.name()));
            EXPECT_TRUE(seen.insert(method.selector.name()).second) << "it is registered twice";
            checkMethod(cls, method);
        }
    }
}

/// The methods that the class has, its own first, each selector once.
inline std::vector<const Method*> methodsOf(Class* cls) {
    std::vector<const Method*> methods;
    std::set<std::string> seen;
    for (Class* level = cls; level; level = level->superclass())
        for (const MethodGroup* group = level->methodGroups(); group; group = group->next)
            for (const Method& method : group->methods)
                if (seen.insert(method.selector.name()).second) methods.push_back(&method);
    return methods;
}

/// A message for the method: all arguments are zero; or, with an object, objects are that object, and texts,
/// selectors, classes and integers are something simple.
inline Retained<NSInvocation> messageFor(const Method& method, Object* object = nullptr) {
    NSMethodSignature* types = method.implementation.signature;
    auto message = NSInvocation::initWithMethodSignature(types);
    message->setSelector(method.selector);
    for (std::uint32_t i = 0; object && i < types->argumentCount(); ++i) {
        std::byte* place = message->frame() + types->argument(i).offset;
        const char type = types->argument(i).encoding[0];
        if (type == '@')
            ::new (place) Object*(object);
        else if (type == '#')
            ::new (place) Object*(NSString::classObject());
        else if (type == ':')
            ::new (place) SEL("description"_sel);
        else if (type == '*')
            ::new (place) const char*("abc");
        else if (std::strchr("cCsSiIlLqQB", type))
            *place = std::byte{1};
    }
    return message;
}

struct Step {
    std::string name;
    std::function<void()> run;
};

/// A call of the function with all arguments zero.
template <class R, class... A>
Step zeroCall(const char* name, R (*function)(A...)) {
    return {name, [function] { (void)function(A()...); }};
}
#define ZERO_CALL(function) zeroCall(#function, &function)

/// Where a child process is in its steps.
struct Progress {
    bool isOver;
    std::size_t next;
    char name[200];
};

/// Steps leave behind what they make, and of some of it, such as queues for file events, the system has few
/// for all processes.
inline bool hasManyDescriptors() {
    const int lowestFree = dup(STDERR_FILENO);
    if (lowestFree >= 0) close(lowestFree);
    return lowestFree > 64;
}

/// The whole life of a child process. Another one goes on where it ends.
[[noreturn]] inline void runSteps(Progress* progress,
                                  const std::function<std::vector<Step>()>& makeSteps) noexcept {
    std::strcpy(progress->name, "The making of samples");
    signal(SIGALRM, SIG_DFL);
    alarm(60);
    const std::vector<Step> steps = makeSteps();
    while (progress->next < steps.size()) {
        const auto& [name, run] = steps[progress->next++];
        std::strncpy(progress->name, name.c_str(), sizeof progress->name - 1);
        ualarm(300'000, 0);
        AutoreleasePool pool;
        try {
            run();
        } catch (const NSException& exception) {
            if (exception.reason().empty()) std::abort();
        }
        if (hasManyDescriptors()) _exit(0);
    }
    progress->isOver = true;
    _exit(0);
}

/// Runs the steps in a child process, and goes on behind a step at which it ended: a step may raise, exit or
/// wait, but not die.
inline bool expectSurvival(const std::function<std::vector<Step>()>& makeSteps) {
    auto* progress = static_cast<Progress*>(
        mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    bool survives = true;
    for (std::size_t first = 1; !progress->isOver && progress->next != first;) {
        first = progress->next;
        if (fork() == 0) runSteps(progress, makeSteps);
        int status = 0;
        wait(&status);
        if (status == 0 || (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM)) continue;
        ADD_FAILURE() << progress->name << " ends the process: "
                      << (WIFSIGNALED(status) ? strsignal(WTERMSIG(status)) : "a sanitizer");
        survives = false;
    }
    EXPECT_TRUE(progress->isOver);
    munmap(progress, sizeof(Progress));
    return survives;
}

/// An object of the class that the class method returns for zeros or for such an argument, or null.
inline Object* sampleOf(Class* cls, const Method& source, Object* argument) {
    auto message = messageFor(source, argument);
    message->invokeWithTarget(cls);
    Object* sample = message->returnValue<Object*>();
    if (!sample || sample->isa()->isSubclassOfClass(cls)) return sample;
    if (source.isCreator) std::abort();
    return nullptr;
}

/// By message a creator returns an object of the receiving class, or null, or raises, whatever its arguments;
/// and no method dies where arguments are null or, in a category, the receiver is.
inline void checkNullArguments(Class* cls) {
    AutoreleasePool pool;
    NSString* text = u"abc"_ns;
    const id arguments[] = {nullptr,
                            text,
                            NSArray::of({text}),
                            NSDictionary::of({{text, text}}),
                            NSData::dataWithBytes_length("abc", 3),
                            NSNumber::numberWithInt(1),
                            text->methodSignatureForSelector("characterAtIndex:"_sel)};
    std::vector<std::pair<const Method*, id>> sources;
    std::vector<Step> steps;
    for (const Method* method : methodsOf(cls->metaclass()))
        if (method->isCreator) {
            for (id argument : arguments) sources.push_back({method, argument});
        } else {
            steps.push_back({"+" + std::string(method->selector.name()),
                             [=] { messageFor(*method)->invokeWithTarget(cls); }});
            // What NSObject's `alloc` and `new` return is not yet an object of the class.
            if (std::strcmp(method->implementation.signature->types(), "@@:") == 0 &&
                !NSObject::classObject()->classMethod(method->selector))
                sources.push_back({method, nullptr});
        }
    for (Class* level : {cls, cls->metaclass()})
        for (const MethodGroup* group = level->methodGroups(); group; group = group->next)
            for (const Method& method : group->methods)
                if (group->category && !method.isCreator)
                    steps.push_back(
                        {method.selector.name() + std::string(" with a null receiver"), [&method] {
                             auto message = messageFor(method);
                             method.implementation.signature->invoke(method.implementation.function, nullptr,
                                                                     method.selector, message->frame(),
                                                                     message->result());
                         }});
    bool areSamplesMade = expectSurvival([&] {
        for (auto [source, argument] : sources)
            steps.push_back(
                {"+" + std::string(source->selector.name()),
                 [cls, source = source, argument = argument] { sampleOf(cls, *source, argument); }});
        return steps;
    });
    if (!areSamplesMade) return;
    expectSurvival([&] {
        std::vector<Step> messages;
        std::set<std::pair<Class*, id>> seen;
        for (auto [source, argument] : sources) {
            Object* sample = nullptr;
            try {
                sample = sampleOf(cls, *source, argument);
            } catch (const NSException&) {
            }
            if (!sample || !seen.insert({sample->isa(), argument}).second) continue;
            for (const Method* method : methodsOf(cls))
                messages.push_back({"-" + std::string(method->selector.name()),
                                    [cls, source = source, argument = argument, method] {
                                        if (Object* target = sampleOf(cls, *source, argument))
                                            messageFor(*method)->invokeWithTarget(target->retain());
                                    }});
        }
        return messages;
    });
}

inline void checkClass(Class* cls) {
    SCOPED_TRACE(cls->name());
    ASSERT_TRUE(cls->metaclass() && cls->metaclass()->isMetaclass());
    EXPECT_FALSE(cls->isMetaclass());
    EXPECT_STREQ(cls->metaclass()->name(), cls->name());
    EXPECT_EQ(classNamed(cls->name()), cls);
    bool isRoot = !cls->superclass();
    EXPECT_EQ(isRoot, !std::strcmp(cls->name(), "NSObject") || !std::strcmp(cls->name(), "NSProxy"));
    if (!isRoot) {
        EXPECT_GE(cls->instanceSize(), cls->superclass()->instanceSize());
        EXPECT_EQ(classNamed(cls->superclass()->name()), cls->superclass());
        EXPECT_EQ(cls->metaclass()->superclass(), cls->superclass()->metaclass());
    }
    for (Class* level : {cls, cls->metaclass()}) checkMethods(level);
    checkNullArguments(cls);
}

}  // namespace pelvor
