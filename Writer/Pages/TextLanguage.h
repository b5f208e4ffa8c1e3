// SPDX-License-Identifier: Apache-2.0
// The language of a stretch of text.
#pragma once

#include "Foundation/NSAttributedString.h"

namespace pelvor {

/// The name of the language of text with these attributes, "de-AT": the value of NSLanguageAttributeName,
/// else the identifier of the language object, or of that of the system; null if there is neither. The
/// attributes may be null. Borrowed.
PELVOR_EXPORT NSString* languageOfAttributes(NSDictionary* attributes);

/// The same for the text at the index. The stretch around it inside the limit that is in this language is
/// written to the pointer, which may be null.
PELVOR_EXPORT NSString* languageInText(NSAttributedString* text, NSUInteger index, NSRange* stretch,
                                       NSRange limit);

/// The attributes of text in the language of that name. Borrowed.
PELVOR_EXPORT NSDictionary* attributesOfLanguage(NSString* name);

}  // namespace pelvor
