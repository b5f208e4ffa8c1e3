// SPDX-License-Identifier: Apache-2.0
// Writes documents in pages to files. What is returned is an answer of a page setter, borrowed.
#pragma once

#include "Runtime/Object.h"

namespace pelvor {

class NSDictionary;
class NSNumber;
class NSString;
class PageDocument;

/// Writes a PDF document at the path. The title may be null.
NSDictionary* writePDF(PageDocument& document, NSString* title, NSString* path);

/// Writes an image for each page, with so many pixels an inch; null stands for 96. A single page is written
/// at the path; several pages get their numbers before the extension, all with equally many digits:
/// "letter-01.png" to "letter-12.png".
NSDictionary* writeImages(PageDocument& document, NSNumber* resolution, NSString* path);

}  // namespace pelvor
