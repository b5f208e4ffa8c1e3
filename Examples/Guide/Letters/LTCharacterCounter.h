// SPDX-License-Identifier: Apache-2.0
// LTCharacterCounter: a service that counts characters of a set.
#pragma once

#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSString.h"

namespace letters {

using namespace pelvor;

/// Counts the units of a text that are in a set of characters. Main thread.
class LTCharacterCounter : public NSObject {
    PELVOR_CLASS(LTCharacterCounter, NSObject);
    PELVOR_CREATORS(init, initWithCharacters);

  public:
    /// Counts letters.
    static Retained<LTCharacterCounter> init(Class* cls = classObject());
    /// Counts the members of the set, which is copied.
    static Retained<LTCharacterCounter> initWithCharacters(NSCharacterSet* characters,
                                                           Class* cls = classObject());

    /// The message of a service.
    NSUInteger countInText(NSString* text);

  protected:
    LTCharacterCounter() = default;
    ~LTCharacterCounter() = default;

  private:
    Retained<NSCharacterSet> _characters;
};

}  // namespace letters
