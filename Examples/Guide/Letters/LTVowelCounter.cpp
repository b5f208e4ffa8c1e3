// SPDX-License-Identifier: Apache-2.0
#include "LTVowelCounter.h"

#include "LettersLibrary.h"

namespace letters {

PELVOR_DEFINE_CLASS(LTVowelCounter, lettersLibrary) { methods.creator<"init", &LTVowelCounter::init>(); }

Retained<LTVowelCounter> LTVowelCounter::init(Class* cls) {
    auto* vowels = NSCharacterSet::characterSetWithCharactersInString(u"aeiouAEIOU"_ns);
    return cast<LTVowelCounter>(LTCharacterCounter::initWithCharacters(vowels, cls));
}

}  // namespace letters
