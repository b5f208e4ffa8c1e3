// SPDX-License-Identifier: Apache-2.0
// What must hold for every registered class, whoever wrote it.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "Runtime/Registry.h"

namespace pelvor::testing {

inline std::vector<Class*> registeredClasses() {
    std::vector<Class*> classes(classList(nullptr, 0));
    classes.resize(std::min(classes.size(), classList(classes.data(), classes.size())));
    return classes;
}

inline std::string methodText(Class* cls, const Method& method) {
    return std::string(cls->isMetaclass() ? "+[" : "-[") + cls->name() + " " + method.selector.name() + "]";
}

inline bool isLegalSelector(const std::string& name) {
    if (name.empty() || !(std::isalpha(static_cast<unsigned char>(name[0])) || name[0] == '_')) return false;
    bool hasColon = name.find(':') != std::string::npos;
    if (hasColon && name.back() != ':') return false;
    for (char c : name)
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_' && c != ':') return false;
    return true;
}

/// One selector has one meaning: a method has the types of the one that it overrides.
inline void checkOverride(Class* cls, const Method& method) {
    if (!cls->superclass()) return;
    const Method* inherited = cls->superclass()->instanceMethod(method.selector);
    if (!inherited) return;
    EXPECT_STREQ(method.implementation.signature->types(), inherited->implementation.signature->types())
        << methodText(cls, method) << " has other types than the method that it overrides";
}

inline void checkMethods(Class* cls) {
    cls->attachPendingCategories();
    for (const MethodGroup* group = cls->methodGroups(); group; group = group->next) {
        std::set<std::string> seen;
        for (const Method& method : group->methods) {
            std::string text = methodText(cls, method);
            EXPECT_TRUE(isLegalSelector(method.selector.name())) << text;
            EXPECT_TRUE(seen.insert(method.selector.name()).second) << text << " is registered twice";
            ASSERT_TRUE(method.implementation) << text;
            EXPECT_EQ(method.implementation.signature->argumentCount(),
                      static_cast<std::uint32_t>(method.selector.argumentCount()))
                << text;
            Class* receiver = method.implementation.receiver;
            EXPECT_TRUE(!receiver || cls->isNativeSubclassOf(receiver)) << text << " needs another receiver";
            checkOverride(cls, method);
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
    checkMethods(cls);
    checkMethods(cls->metaclass());
}

}  // namespace pelvor::testing
