// SPDX-License-Identifier: Apache-2.0
// WRLanguageFinder: tells the languages of a document's paragraphs.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

class NSDictionary;

/// Counts the paragraphs in each language. The languages are the registered profiles of that kind; a
/// paragraph is in the language that has most of its words under "common words".
class WRLanguageFinder : public NSObject {
    PELVOR_CLASS(WRLanguageFinder, NSObject);

  public:
    NSDictionary* examineDocument(id document);

  protected:
    WRLanguageFinder() = default;
    ~WRLanguageFinder() = default;
};

}  // namespace pelvor
