// SPDX-License-Identifier: Apache-2.0
// NSTextStorage: a text with attributes that tells layout managers and observers of its edits.
#pragma once

#include <vector>

#include "Foundation/NSMutableAttributedString.h"

namespace pelvor {

class NSArray;

/// Posted with the text storage as object when edits end: first of these while observers may still edit.
extern PELVOR_EXPORT NSString* const NSTextStorageWillProcessEditingNotification;
/// Posted when the attributes have been fixed, before the layout managers are told.
extern PELVOR_EXPORT NSString* const NSTextStorageDidProcessEditingNotification;

/// What an edit changed; joined by "|".
enum : unsigned {
    NSTextStorageEditedAttributes = 1,
    NSTextStorageEditedCharacters = 2,
};

/// The text behind layout. Everybody may edit it as a mutable attributed string; edits between `beginEditing`
/// and its `endEditing` count as one:
///
///     auto storage = NSTextStorage::initWithString(u"Dear Anna,\nhow are you?"_ns);
///     storage->addLayoutManager(layoutManager);
///     storage->beginEditing();
///     storage->replaceCharactersInRange_withString({5, 4}, u"Berta"_ns);
///     storage->addAttribute_value_range(NSFontAttributeName, font, {0, storage->length()});
///     storage->endEditing();  // observers and layout managers hear of one edit
///
/// When edits end, they are processed: (1) NSTextStorageWillProcessEditingNotification; (2) attributes are
/// fixed, so that each paragraph has the paragraph style of its first unit and attachments stand on
/// NSAttachmentCharacter only; (3) NSTextStorageDidProcessEditingNotification; (4) the layout managers are
/// told, in the order in which they were added. Observers and layout managers may edit: edits of observers
/// join the edit that is processed; those of layout managers are processed when all layout managers have been
/// told, and a layout manager that was not yet told of the first edit is told of both as one. If an observer
/// or a layout manager raises, the others are told all the same, and the first exception then reaches the
/// caller.
///
/// One thread at a time.
class PELVOR_EXPORT NSTextStorage : public NSMutableAttributedString {
    PELVOR_CLASS(NSTextStorage, NSMutableAttributedString);
    PELVOR_CREATORS(initWithString_attributes, initWithString_runs, initWithAttributedString, initWithCoder);
    PELVOR_INHERITED_CREATORS(init, initWithString);

  public:
    // Creation; attributes are fixed at once.

    static Retained<NSTextStorage> initWithString_attributes(NSString* string, NSDictionary* attributes,
                                                             Class* cls = classObject());
    static Retained<NSTextStorage> initWithAttributedString(NSAttributedString* other,
                                                            Class* cls = classObject());
    static Retained<NSTextStorage> initWithCoder(NSCoder* coder, Class* cls = classObject());

    // C++ only
    static Retained<NSTextStorage> initWithString_runs(NSString* string, std::span<const AttributeRun> runs,
                                                       Class* cls = classObject());

    // Layout managers: NSLayoutManager or whatever else takes the two messages "setTextStorage:" and
    //
    //     textStorage:edited:range:changeInLength:invalidatedRange:
    //
    // whose arguments are the storage, the mask, the edited range as it is now, how much longer the text
    // became, and the range in which layout depends on the edit: the edited range and whatever was fixed.

    /// The storage keeps the layout manager. Adding one again does nothing. Raises NSInvalidArgumentException
    /// for null and for an object without these messages.
    void addLayoutManager(id layoutManager);
    /// Does nothing for one that was not added.
    void removeLayoutManager(id layoutManager);
    /// Borrowed.
    NSArray* layoutManagers();

    // Editing

    /// Brackets may be nested; the outermost `endEditing` processes the edits. One too many does nothing.
    void beginEditing() override;
    void endEditing() override;
    /// For a subclass that changes what belongs to the text but is not in it: the range before the change.
    /// Outside brackets the edit is processed at once. Raises NSRangeException for a range that cannot have
    /// been in the text.
    void edited_range_changeInLength(unsigned mask, NSRange range, NSInteger changeInLength);

    // The edit that is to be processed, for observers. Without one 0, {NSNotFound, 0} and 0.

    unsigned editedMask() { return _edit.mask; }
    /// Where the edit is now: it replaced `changeInLength` units less.
    NSRange editedRange() { return _edit.range; }
    NSInteger changeInLength() { return _edit.change; }

    // C++ only
    /// Whether characters changed, and the layout manager has not been told yet.
    bool hasUntoldChangesFor(id layoutManager) const;

    /// What processing does with attributes around an edited range, for subclasses with rules of their own.
    virtual void fixAttributesInRange(NSRange range);
    /// Gives each paragraph that the range touches the paragraph style of its first unit.
    void fixParagraphStyleAttributeInRange(NSRange range);
    /// Removes attachments from units of the range other than NSAttachmentCharacter.
    void fixAttachmentAttributeInRange(NSRange range);

  protected:
    NSTextStorage() = default;
    ~NSTextStorage();

    void didEdit(unsigned mask, NSRange range, NSInteger changeInLength) override;

  private:
    // Edits as one, in places of the text as it is now.
    struct Edit {
        void add(unsigned addedMask, NSRange edited, NSInteger added);
        void addFixed(NSRange fixed);

        unsigned mask = 0;
        NSRange range{NSNotFound, 0};
        NSInteger change = 0;
        NSRange invalidated{NSNotFound, 0};
    };
    struct Listening {
        Retained<Object> layoutManager;
        Edit untold;
        bool isTold = false;
    };

    static Retained<NSTextStorage> fixed(Retained<NSAttributedString> made);
    void processEditing();
    void fixEdited();
    bool tellNext();
    bool isOneParagraphStyleAround(NSRange range);

    Edit _edit;
    std::vector<Listening> _listening;
    unsigned _brackets = 0;
    bool _isProcessing = false;
    bool _isFixing = false;
};

}  // namespace pelvor
