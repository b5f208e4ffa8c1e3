// SPDX-License-Identifier: Apache-2.0
// The two case forms of a text, unit by unit; for scanner and trie.
#pragma once

#include <string>

#include "Foundation/NSString.h"

namespace pelvor {

/// Forms of one length. Where the platform's form of the text is longer or shorter than the text, the forms
/// of its single units stand in.
struct CaseForms {
    std::u16string lower;
    std::u16string upper;
};
/// The forms of the text itself.
CaseForms caseFormsOf(NSString* text);
/// The upper-case form, and the lower-case form of that.
CaseForms foldedFormsOf(NSString* text);

}  // namespace pelvor
