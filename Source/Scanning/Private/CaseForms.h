// SPDX-License-Identifier: Apache-2.0
// The two case forms of a text, unit by unit; for scanner and trie.
#pragma once

#include <string>

#include "Foundation/NSString.h"

namespace pelvor {

/// Two forms of one length. If the platform's form of the text is longer or shorter than the text, it is
/// replaced by the forms of the text's single units.
struct CaseForms {
    std::u16string lower;
    std::u16string upper;
};
/// The forms of the text itself.
CaseForms caseFormsOf(NSString* text);
/// The upper-case form of the text, and the lower-case form of this upper-case form.
CaseForms foldedFormsOf(NSString* text);

}  // namespace pelvor
