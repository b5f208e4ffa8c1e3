// SPDX-License-Identifier: Apache-2.0
// WRLanguageFinder: tells the languages of a document's paragraphs.
#pragma once

#include <memory>

#include "Runtime/Class.h"

namespace pelvor {

class LanguageTable;
class NSDictionary;
class NSString;

/// Counts the paragraphs in each language. The languages are the registered profiles of that kind; a
/// paragraph is in the language that has most of its words under "common words".
class WRLanguageFinder : public NSObject {
    PELVOR_CLASS(WRLanguageFinder, NSObject);

  public:
    NSDictionary* examineDocument(id document);
    NSString* languageOfText(NSString* text);

  protected:
    WRLanguageFinder();
    ~WRLanguageFinder();

  private:
    std::unique_ptr<LanguageTable> _table;  // once somebody asks for the language of a text
};

}  // namespace pelvor
