// SPDX-License-Identifier: Apache-2.0
// Writes documents in pages to files. What is returned is an answer of a page setter, borrowed.
#pragma once

#include "Foundation/NSRange.h"
#include "Runtime/Object.h"

namespace pelvor {

class NSArray;
class NSDictionary;
class NSNumber;
class NSString;
class PageDocument;

/// Writes a PDF document at the path. The title may be null.
NSDictionary* writePDF(PageDocument& document, NSString* title, NSString* path);

/// The paths of the images of so many pages: a single page is written at the path; several pages get their
/// numbers before the extension, all with equally many digits: "letter-01.png" to "letter-12.png". Borrowed.
NSArray* pathsOfImages(NSString* path, NSUInteger count);

/// The pixels a point of images with so many pixels an inch; null stands for 96.
float scaleOfResolution(NSNumber* resolution);
/// Whether an image of the page can have so many pixels a point.
bool hasImageOfScale(const PageDocument& document, float scale);
/// Writes an image for each page, with so many pixels a point, to the path of its number.
NSDictionary* writeImages(PageDocument& document, float scale, NSArray* paths);

}  // namespace pelvor
