// SPDX-License-Identifier: Apache-2.0
// Has documents set in pages.
#pragma once

#include "Runtime/Object.h"

namespace pelvor {

class NSDictionary;
class NSString;
class PBProfileSet;
class WRArguments;
class WRDocument;
class WRReport;

/// How the arguments want pages of any document to be set: options of page setters. Borrowed.
NSDictionary* pageWishes(WRArguments* arguments);

/// How the wishes and the document want its pages to be set: options of page setters. Borrowed.
PELVOR_EXPORT NSDictionary* pageOptions(WRDocument* document, NSDictionary* wishes);
/// The same, and the paragraphs of the text have the languages that can be told, which takes a while for a
/// long text.
PELVOR_EXPORT NSDictionary* pageOptionsWithLanguages(WRDocument* document, NSDictionary* wishes,
                                                     PBProfileSet* profiles);

/// If the arguments request pages in the format, "pdf" or "png", has a page setter of the profiles write them
/// and reports what was written. Returns null, or what went wrong, as a sentence for the user; borrowed.
NSString* writePages(WRDocument* document, NSString* format, WRArguments* arguments, PBProfileSet* profiles,
                     WRReport* report);

}  // namespace pelvor
