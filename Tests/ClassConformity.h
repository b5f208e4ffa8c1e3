// SPDX-License-Identifier: Apache-2.0
// What must hold for every registered class, whoever wrote it.
#pragma once

#include <gmock/gmock.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "Runtime/AutoreleasePool.h"
#include "Runtime/NSException.h"
#include "Runtime/NSInvocation.h"
#include "Runtime/Registry.h"

namespace pelvor {

inline std::vector<Class*> registeredClasses() {
    std::vector<Class*> classes(classList(nullptr, 0));
    classes.resize(std::min(classes.size(), classList(classes.data(), classes.size())));
    return classes;
}

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

/// By message a creator returns an object of the receiving class, or null, or raises, whatever its arguments;
/// here they are zeros.
inline void checkCreators(Class* cls) {
    std::set<std::string> seen;
    for (Class* level = cls->metaclass(); level; level = level->superclass())
        for (const MethodGroup* group = level->methodGroups(); group; group = group->next)
            for (const Method& method : group->methods) {
                if (!method.isCreator || !seen.insert(method.selector.name()).second) continue;
                SCOPED_TRACE("+" + std::string(method.selector.name()));
                AutoreleasePool pool;
                auto invocation = NSInvocation::initWithMethodSignature(method.implementation.signature);
                invocation->setSelector(method.selector);
                try {
                    invocation->invokeWithTarget(cls);
                    Object* made = invocation->returnValue<Object*>();
                    EXPECT_TRUE(!made || made->isa()->isSubclassOfClass(cls)) << made->isa()->name();
                } catch (const NSException& exception) {
                    EXPECT_NE(exception.reason(), "");
                }
            }
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
    checkCreators(cls);
}

}  // namespace pelvor
