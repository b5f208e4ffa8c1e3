// SPDX-License-Identifier: Apache-2.0
#include "Spelling/NSSpellChecker-PelvorAdditions.h"

#include "Foundation/NSString.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSSpellChecker>& methods) {
    methods.classLevel<"pelvorSpellChecker", &NSSpellChecker_PelvorAdditions::pelvorSpellChecker>();
    methods.instance<"displayNameForLanguageName:", &displayNameForLanguageName>();
}

}  // namespace

constinit const Category NSSpellChecker_PelvorAdditions_category =
    Category::of<NSSpellChecker, defineAdditions>("PelvorAdditions");

NSSpellChecker* NSSpellChecker_PelvorAdditions::pelvorSpellChecker() {
    return NSSpellChecker::sharedSpellChecker();
}

NSString* displayNameForLanguageName(NSSpellChecker* checker, NSString* name) {
    requireArgument(checker, "displayNameForLanguageName:", "the receiver");
    requireArgument(name, "displayNameForLanguageName:", "the name");
    return checker->localizedNameForLanguage(name);
}

}  // namespace pelvor
