// SPDX-License-Identifier: Apache-2.0
// Names of classes and selectors as strings.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// The registered class of that name, or the class that poses under the name; null if there is none. Any
/// thread.
PELVOR_EXPORT Class* NSClassFromString(NSString* name);
/// Null for null.
PELVOR_EXPORT NSString* NSStringFromClass(Class* cls);

/// The selector of that name, which is made if it does not exist; the null selector for null and for an empty
/// name. Any thread.
PELVOR_EXPORT SEL NSSelectorFromString(NSString* name);
/// Null for the null selector.
PELVOR_EXPORT NSString* NSStringFromSelector(SEL selector);

}  // namespace pelvor
