// SPDX-License-Identifier: Apache-2.0
// Classes that are made while a test runs, of functions whose first parameter is the receiver.
#pragma once

#include "Prelude.h"

namespace pelvor {

/// Answers the class.
template <FixedString Selector, auto Function>
Class* addMethod(Class* cls) {
    cls->addMethods(
        {"Test", {{registerSelector(Selector.view()), implementation<Selector, Function>()}}, nullptr});
    return cls;
}

/// A new class that has the method.
template <FixedString Selector, auto Function>
Class* makeClass(const char* name) {
    return addMethod<Selector, Function>(Class::createSubclass(name, NSObject::classObject()));
}

}  // namespace pelvor
