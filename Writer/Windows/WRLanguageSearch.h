// SPDX-License-Identifier: Apache-2.0
// WRLanguageSearch: finds the languages of a document that is shown.
#pragma once

#include <functional>

#include "Writer/ParagraphLanguages.h"
#include "Writer/Windows/WRTextWork.h"

namespace pelvor {

/// Gives the paragraphs of a document that was opened their languages (ParagraphLanguages): those at the
/// front at once, so that the first page need not be set twice, the others when the main loop is idle, what
/// is seen first. What is written meanwhile keeps the language that it is written in.
class WRLanguageSearch : public WRTextWork {
    PELVOR_CLASS(WRLanguageSearch, WRTextWork);

  public:
    // C++ only
    /// To be made before anything else hears of edits of the storage.
    static Retained<WRLanguageSearch> create(NSTextStorage* storage);
    void setVisibleRange(std::function<NSRange()> function) { _visibleRange = std::move(function); }

    /// Whether the edit that is told of is one of the search, by which nobody has changed the document.
    bool isEditing() { return _isEditing; }
    void stop() override;

  protected:
    WRLanguageSearch();
    ~WRLanguageSearch() = default;

    void textDidChange(unsigned mask, NSRange range, NSInteger change) override;
    bool workABit() override;

  private:
    NSUInteger addTo(NSTextStorage* storage, NSRange range);

    ParagraphLanguages _languages;
    std::function<NSRange()> _visibleRange;
    NSRange _lastVisible;
    NSUInteger _done = 0;  // the paragraphs before this unit have been looked at
    bool _isEditing = false;
};

}  // namespace pelvor
