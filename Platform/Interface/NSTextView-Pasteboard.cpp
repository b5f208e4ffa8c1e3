// SPDX-License-Identifier: Apache-2.0
// Copying and pasting. Code that knows rich text is the program's: attributed strings that have the
// operations "RTFFromRange:documentAttributes:" and "initWithRTF:documentAttributes:" are copied with their
// attributes.
#include "Foundation/NSData.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableAttributedString.h"
#include "Interface/NSPasteboard.h"
#include "Interface/NSWindow.h"
#include "Interface/Texts/TextViewState.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

SEL writingRichText() { return "RTFFromRange:documentAttributes:"_sel; }
SEL readingRichText() { return "initWithRTF:documentAttributes:"_sel; }

bool canReadRichText() {
    return NSAttributedString::classObject()->classMethod(readingRichText()) != nullptr;
}

NSArray* textTypes(bool hasRichText) {
    return hasRichText ? NSArray::of({NSRTFPboardType, NSStringPboardType})
                       : NSArray::of({NSStringPboardType});
}

}  // namespace

NSArray* NSTextView::writablePasteboardTypes() {
    return textTypes(isRichText() && _state->storage &&
                     _state->storage->respondsToSelector(writingRichText()));
}

NSArray* NSTextView::readablePasteboardTypes() { return textTypes(isRichText() && canReadRichText()); }

// MARK: Writing

bool NSTextView::writeSelectionToPasteboard_types(NSPasteboard* pasteboard, NSArray* types) {
    requireArgument(pasteboard, "writeSelectionToPasteboard:types:", "the pasteboard");
    requireArgument(types, "writeSelectionToPasteboard:types:", "the array");
    if (_state->selection.length == 0 || types->count() == 0) return false;
    const auto alive = Retained<NSTextView>::retaining(this);
    pasteboard->declareTypes_owner(types, nullptr);
    bool isWritten = true;
    for (id type : types)
        if (auto name = cast<NSString>(type))
            isWritten = writeSelectionToPasteboard_type(pasteboard, name) && isWritten;
    return isWritten;
}

bool NSTextView::writeSelectionToPasteboard_type(NSPasteboard* pasteboard, NSString* type) {
    requireArgument(pasteboard, "writeSelectionToPasteboard:type:", "the pasteboard");
    requireArgument(type, "writeSelectionToPasteboard:type:", "the type");
    if (!_state->storage) return false;
    const NSRange range = _state->selection;
    if (type->isEqualToString(NSStringPboardType))
        return pasteboard->setString_forType(string()->substringWithRange(range), type);
    if (!type->isEqualToString(NSRTFPboardType) || !_state->storage->respondsToSelector(writingRichText()))
        return false;
    id data = send<id>(_state->storage.get(), writingRichText(), range, nullptr);
    return cast<NSData>(data) && pasteboard->setData_forType(cast<NSData>(data), type);
}

// Somebody wants what is selected.
void NSTextView::provideSelection(NSPasteboard* pasteboard, NSString* type) {
    if (pasteboard && type) writeSelectionToPasteboard_type(pasteboard, type);
}

// MARK: Reading

bool NSTextView::readSelectionFromPasteboard(NSPasteboard* pasteboard) {
    requireArgument(pasteboard, "readSelectionFromPasteboard:", "the pasteboard");
    const auto alive = Retained<NSTextView>::retaining(this);
    NSString* type = pasteboard->availableTypeFromArray(readablePasteboardTypes());
    return type && readSelectionFromPasteboard_type(pasteboard, type);
}

bool NSTextView::readSelectionFromPasteboard_type(NSPasteboard* pasteboard, NSString* type) {
    requireArgument(pasteboard, "readSelectionFromPasteboard:type:", "the pasteboard");
    requireArgument(type, "readSelectionFromPasteboard:type:", "the type");
    if (!isEditable()) return false;
    if (type->isEqualToString(NSRTFPboardType) && canReadRichText()) {
        NSData* data = pasteboard->dataForType(type);
        id text =
            data ? send<id>(NSAttributedString::classObject(), readingRichText(), data, nullptr) : nullptr;
        if (!cast<NSAttributedString>(text)) return false;
        insertText(text);
        return true;
    }
    NSString* text = pasteboard->stringForType(type);
    if (text) insertText(text);
    return text != nullptr;
}

// MARK: Commands

void NSTextView::copySelection(id) {
    if (isSelectable())
        writeSelectionToPasteboard_types(NSPasteboard::generalPasteboard(), writablePasteboardTypes());
}

void NSTextView::cutSelection(id) {
    if (!isEditable() || _state->selection.length == 0) return;
    const auto alive = Retained<NSTextView>::retaining(this);
    copySelection(nullptr);
    breakUndoCoalescing();
    deleteSelection(nullptr);
}

void NSTextView::paste(id) {
    const auto alive = Retained<NSTextView>::retaining(this);
    breakUndoCoalescing();
    if (!isEditable() || !readSelectionFromPasteboard(NSPasteboard::generalPasteboard())) NSBeep();
    breakUndoCoalescing();
}

void NSTextView::pasteAsPlainText(id) {
    const auto alive = Retained<NSTextView>::retaining(this);
    NSString* text =
        isEditable() ? NSPasteboard::generalPasteboard()->stringForType(NSStringPboardType) : nullptr;
    if (!text) return NSBeep();
    breakUndoCoalescing();
    insertText(text);
    breakUndoCoalescing();
}

}  // namespace pelvor
