// SPDX-License-Identifier: Apache-2.0
#include "LettersLibrary.h"

#include "BaseLibrary.h"
#include "LTVowelCounter.h"
#include "NSString-Letters.h"

namespace letters {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&LTCharacterCounter::classRecord, &LTVowelCounter::classRecord};
constexpr const Category* kCategories[] = {&NSString_Letters_category};

}  // namespace

constinit Library lettersLibrary{"Letters", kDependencies, kClasses, kCategories};

}  // namespace letters

PELVOR_PLUGIN(letters::lettersLibrary)
