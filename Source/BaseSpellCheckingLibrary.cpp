// SPDX-License-Identifier: Apache-2.0
#include "BaseSpellCheckingLibrary.h"

#include "BaseLibrary.h"
#include "SpellChecking/SpellCheckingLibrary.h"
#include "Spelling/NSSpellChecker-PelvorAdditions.h"
#include "Spelling/PBSpellCheckerLanguage.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary, &spellCheckingLibrary};

// clang-format off
constexpr Class* kClasses[] = {
    &PBSpellCheckerLanguage::classRecord,
};
constexpr const Category* kCategories[] = {
    &NSSpellChecker_PelvorAdditions_category,
};
// clang-format on

}  // namespace

constinit Library baseSpellCheckingLibrary{"PelvorBaseSpellChecking", kDependencies, kClasses, kCategories};

}  // namespace pelvor
