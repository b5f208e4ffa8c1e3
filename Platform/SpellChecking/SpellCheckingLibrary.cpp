// SPDX-License-Identifier: Apache-2.0
#include "SpellChecking/SpellCheckingLibrary.h"

#include "Foundation/FoundationLibrary.h"
#include "SpellChecking/NSSpellChecker.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&foundationLibrary};

// clang-format off
constexpr Class* kClasses[] = {
    &NSSpellChecker::classRecord,
};
// clang-format on

}  // namespace

constinit Library spellCheckingLibrary{"PelvorSpellChecking", kDependencies, kClasses, {}};

}  // namespace pelvor
