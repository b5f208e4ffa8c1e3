// SPDX-License-Identifier: Apache-2.0
// WRWordCounter: how many words a text has while it is written.
#pragma once

#include <functional>
#include <optional>

#include "Writer/Windows/TextPieces.h"
#include "Writer/Windows/WRTextWork.h"

namespace pelvor {

/// Counts the words of a text, and those of its selection, when the main loop is idle. After an edit only the
/// words around it are counted again.
class WRWordCounter : public WRTextWork {
    PELVOR_CLASS(WRWordCounter, WRTextWork);

  public:
    // C++ only
    /// The function is called when the count is another one, or has become complete.
    static Retained<WRWordCounter> create(NSTextStorage* storage, std::function<void()> didCount);

    /// As far as words are counted.
    NSUInteger count() { return _count.words; }
    /// How many words are selected, wholly or in part, once all of the text is counted; no value without a
    /// selection.
    std::optional<NSUInteger> selectedCount() { return _count.selected; }
    void setSelection(NSRange selection);
    /// Whether all of the text was counted when work was last done.
    bool isComplete() { return _count.isComplete; }
    /// Whether the count is that of the text as it is now.
    bool isUpToDate() { return _count.isComplete && !_isEdited; }
    void stop() override;

  protected:
    WRWordCounter() = default;
    ~WRWordCounter() = default;

    void textDidChange(unsigned mask, NSRange range, NSInteger change) override;
    bool workABit() override;
    void didWork() override;

  private:
    struct Words {
        NSUInteger count = 0;
        void append(const Words& next, NSUInteger) { count += next.count; }
        void edit(NSRange, NSInteger) {}
    };
    struct Count {
        NSUInteger words = 0;
        bool isComplete = true;
        std::optional<NSUInteger> selected;
        bool operator==(const Count&) const = default;
    };

    NSUInteger countSelection();

    TextPieces<Words> _pieces;
    NSRange _selection;
    std::function<void()> _didCount;
    Count _count{0, false, {}};
    bool _isEdited = false;  // since the last count
};

}  // namespace pelvor
