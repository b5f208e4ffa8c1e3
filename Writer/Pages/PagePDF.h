// SPDX-License-Identifier: Apache-2.0
// Makes PDF documents of documents in pages.
#pragma once

#include "Writer/Pages/PageDocument.h"

namespace pelvor {

class NSData;
class NSString;

/// A PDF document with these pages of the document, borrowed. The title may be null. Null if it could not be
/// made; the reason is then a clause for the user.
PELVOR_EXPORT NSData* pdfOfPages(PageDocument& document, NSString* title, NSRange pages, NSString** reason);

}  // namespace pelvor
