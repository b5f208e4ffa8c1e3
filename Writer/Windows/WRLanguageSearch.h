// SPDX-License-Identifier: Apache-2.0
// WRLanguageSearch: finds the languages of a document that is shown.
#pragma once

#include <optional>

#include "Writer/ParagraphLanguages.h"
#include "Writer/Windows/WRTextWork.h"

namespace pelvor {

class WRPageView;

/// Gives the paragraphs of a document that was opened their languages (ParagraphLanguages): those at the
/// front at once, so that the first page need not be set twice, the others when the main loop is idle, what
/// is seen first. Paragraphs that are written get theirs when the caret has left them, or when they are
/// clear, but never while an input method composes.
class WRLanguageSearch : public WRTextWork {
    PELVOR_CLASS(WRLanguageSearch, WRTextWork);

  public:
    // C++ only
    /// To be made before anything else hears of edits of the storage.
    static Retained<WRLanguageSearch> create(NSTextStorage* storage);
    /// The view that the text is written in, which outlives this object or is null.
    void setView(WRPageView* view) { _view = view; }
    void caretDidMove();

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
    bool lookAtWritten();
    bool wasJustJudged(NSRange contents);
    void setLanguage(WRLanguage* language, NSRange range);
    void writeOnIn(WRLanguage* language);

    ParagraphLanguages _languages;
    Unretained<WRPageView> _view = nullptr;
    NSRange _lastVisible;
    std::optional<NSRange> _written;  // where paragraphs have been written since they were looked at
    NSRange _judged{NSNotFound, 0};   // the paragraph that was judged last while it was written
    NSUInteger _done = 0;             // the paragraphs before this unit have been looked at
    bool _isEditing = false;
};

}  // namespace pelvor
