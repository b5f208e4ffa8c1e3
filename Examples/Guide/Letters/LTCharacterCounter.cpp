// SPDX-License-Identifier: Apache-2.0
#include "LTCharacterCounter.h"

#include "LettersLibrary.h"
#include "NSString-Letters.h"

namespace letters {

PELVOR_DEFINE_CLASS(LTCharacterCounter, lettersLibrary) {
    methods.creator<"init", &LTCharacterCounter::init>();
    methods.creator<"initWithCharacters:", &LTCharacterCounter::initWithCharacters>();
    methods.instance<"countInText:", &LTCharacterCounter::countInText>();
}

Retained<LTCharacterCounter> LTCharacterCounter::init(Class* cls) {
    return initWithCharacters(NSCharacterSet::letterCharacterSet(), cls);
}

Retained<LTCharacterCounter> LTCharacterCounter::initWithCharacters(NSCharacterSet* characters, Class* cls) {
    auto counter = make<LTCharacterCounter>(cls);
    counter->_characters = characters->copy();
    return counter;
}

NSUInteger LTCharacterCounter::countInText(NSString* text) {
    return countOfCharactersFromSet(text, _characters);
}

}  // namespace letters
