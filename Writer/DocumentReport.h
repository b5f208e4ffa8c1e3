// SPDX-License-Identifier: Apache-2.0
// The sections of Writer's report that are about its document.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;
class WRDocument;
class WRDocumentOpener;
class WRDocumentSaver;
class WRReport;
struct TextCount;

/// The text for the key in the user's language, with the arguments in place. Borrowed.
template <class... Arguments>
NSString* localizedFormat(NSString* key, const Arguments&... arguments);
NSString* localized(NSString* key);

/// What the document is, and why this reader read it.
void reportDocument(WRReport* report, WRDocument* document, WRDocumentOpener* opener);
/// What was counted in it.
void reportCount(WRReport* report, const TextCount& count);
/// The word or quantity and the paragraph at the position, and the word together with the one before it. The
/// position must not be behind the end.
void reportCaret(WRReport* report, WRDocument* document, NSUInteger position);
/// What a writer answered who wrote it to the path.
void reportWriting(WRReport* report, NSString* path, WRDocumentSaver* saver, NSDictionary* answer);

template <class... Arguments>
NSString* localizedFormat(NSString* key, const Arguments&... arguments) {
    return NSString::stringWithFormat(localized(key), arguments...);
}

}  // namespace pelvor
