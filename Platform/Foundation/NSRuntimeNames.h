// SPDX-License-Identifier: Apache-2.0
// Names of classes and selectors as strings.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// The registered class of that name, or what poses under it; none when there is none. Any thread.
PELVOR_EXPORT Class* NSClassFromString(NSString* name);
/// None for no class.
PELVOR_EXPORT NSString* NSStringFromClass(Class* cls);

/// The selector of that name, made on first demand; none for no name or an empty one. Any thread.
PELVOR_EXPORT SEL NSSelectorFromString(NSString* name);
/// None for no selector.
PELVOR_EXPORT NSString* NSStringFromSelector(SEL selector);

}  // namespace pelvor
