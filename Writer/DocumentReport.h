// SPDX-License-Identifier: Apache-2.0
// The sections of Writer's report that are about its document.
#pragma once

#include "Foundation/NSString.h"
#include "Writer/LocalizedText.h"

namespace pelvor {

class NSDictionary;
class WRDocument;
class WRDocumentOpener;
class WRDocumentSaver;
class WRReport;
struct TextCount;

/// What the document is, and why this reader read it.
void reportDocument(WRReport* report, WRDocument* document, WRDocumentOpener* opener);
/// What was counted in the document.
void reportCount(WRReport* report, const TextCount& count);
/// The word or quantity and the paragraph at the position, and the word together with the one before it. The
/// position must not be behind the end.
void reportCaret(WRReport* report, WRDocument* document, NSUInteger position);
/// What became of writing the document to the path. `answer` is what the writer returned.
void reportWriting(WRReport* report, WRDocument* document, NSString* path, WRDocumentSaver* saver,
                   NSDictionary* answer);

}  // namespace pelvor
