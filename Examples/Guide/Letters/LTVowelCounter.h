// SPDX-License-Identifier: Apache-2.0
// LTVowelCounter: a service that counts vowels.
#pragma once

#include "LTCharacterCounter.h"

namespace letters {

/// Counts vowels unless it is made with another set. Main thread.
class LTVowelCounter : public LTCharacterCounter {
    PELVOR_CLASS(LTVowelCounter, LTCharacterCounter);
    PELVOR_CREATORS(init);
    PELVOR_INHERITED_CREATORS(initWithCharacters);

  public:
    static Retained<LTVowelCounter> init(Class* cls = classObject());

  protected:
    LTVowelCounter() = default;
    ~LTVowelCounter() = default;
};

}  // namespace letters
