// SPDX-License-Identifier: Apache-2.0
// Names of classes and selectors as strings.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// The registered class with this name, or the class that poses under the name; null if there is no such
/// class, and for a null name. Any thread.
PELVOR_EXPORT Class* NSClassFromString(NSString* name);
/// The name of the class, borrowed; null for a null class. Any thread.
PELVOR_EXPORT NSString* NSStringFromClass(Class* cls);

/// The selector with this name, which is made if it does not exist yet. A null or empty name gives the null
/// selector. Any thread.
PELVOR_EXPORT SEL NSSelectorFromString(NSString* name);
/// The name of the selector, borrowed; null for the null selector. Any thread.
PELVOR_EXPORT NSString* NSStringFromSelector(SEL selector);

}  // namespace pelvor
