// SPDX-License-Identifier: Apache-2.0
// NSPasteboard: what was copied, selected or dragged, for this program and others.
#pragma once

#include <vector>

#include "Foundation/NSData.h"
#include "Foundation/NSPasteboardTypes.h"
#include "Runtime/WeakHandle.h"

namespace pelvor {

class InterfaceBackend;
class NSArray;

/// What copy and paste use.
extern PELVOR_EXPORT NSString* const NSGeneralPboard;
/// What was selected last, in whichever program; the middle mouse button pastes it.
extern PELVOR_EXPORT NSString* const NSSelectionPboard;
/// What is being dragged.
extern PELVOR_EXPORT NSString* const NSDragPboard;
/// The text that was searched for last.
extern PELVOR_EXPORT NSString* const NSFindPboard;
/// The font that was copied.
extern PELVOR_EXPORT NSString* const NSFontPboard;
/// The paragraph style that was copied.
extern PELVOR_EXPORT NSString* const NSRulerPboard;

/// Carries data from one place to another, in as many types as the owner has:
///
///     NSPasteboard* board = NSPasteboard::generalPasteboard();
///     board->declareTypes_owner(NSArray::of({NSRTFPboardType, NSStringPboardType}), this);
///     board->setString_forType(text, NSStringPboardType);
///     // void pasteboard:provideDataForType: of the owner is called if somebody asks for the other type
///
///     if (NSString* type = board->availableTypeFromArray(wanted)) data = board->dataForType(type);
///
/// The general, the selection and the drag pasteboard are shared with other programs, all others belong to
/// this program. Reading what another program owns waits for that program, two seconds at most; events that
/// come meanwhile are handled later. Main thread.
class PELVOR_EXPORT NSPasteboard : public NSObject {
    PELVOR_CLASS(NSPasteboard, NSObject);

  public:
    // Pasteboards, borrowed; a pasteboard exists as long as the process, one with a unique name until
    // `releaseGlobally`.

    static NSPasteboard* generalPasteboard();
    /// Raises NSInvalidArgumentException for null.
    static NSPasteboard* pasteboardWithName(NSString* name);
    static NSPasteboard* pasteboardWithUniqueName();

    NSString* name() { return _name; }
    /// Grows when somebody else becomes the owner, as far as this program hears of that.
    NSInteger changeCount() { return _changeCount; }

    // Writing

    /// Empties the pasteboard and declares what it will hold, the best type first. The owner, which may be
    /// null and is not kept alive, may have these two operations:
    ///
    ///     void pasteboard:(NSPasteboard*) provideDataForType:(NSString*)   somebody wants declared data
    ///     void pasteboardChangedOwner:(NSPasteboard*)                      nobody will want it any more
    ///
    /// Returns the new change count. Raises NSInvalidArgumentException if the array is null or holds
    /// something else than strings.
    NSInteger declareTypes_owner(NSArray* types, id owner);
    /// Declares more types of the same content.
    NSInteger addTypes_owner(NSArray* types, id owner);
    // Return false if the type was not declared, or the content changed hands since; null takes the data of
    // a type away. A null type raises NSInvalidArgumentException.

    bool setData_forType(NSData* data, NSString* type);
    bool setString_forType(NSString* string, NSString* type);
    bool setPropertyList_forType(id list, NSString* type);

    // Reading. Results are borrowed; null if there is nothing of the type. A null argument raises
    // NSInvalidArgumentException.

    /// The types of the content, the best first; never null.
    NSArray* types();
    /// The first of the types that the content has.
    NSString* availableTypeFromArray(NSArray* wanted);
    NSData* dataForType(NSString* type);
    /// The data of the type as text in UTF-8.
    NSString* stringForType(NSString* type);
    id propertyListForType(NSString* type);

    /// Forgets the content and, if the pasteboard's name was unique, the pasteboard.
    void releaseGlobally();

    // C++ only
    /// Another program has taken over what this pasteboard offered; the owner hears of it a moment later.
    void contentLost();

  protected:
    NSPasteboard() = default;
    ~NSPasteboard() = default;

  private:
    struct Entry {
        Retained<NSString> type;
        Retained<NSData> data;
        WeakHandle owner;
    };
    using TypeNames = std::vector<Retained<NSString>>;

    static Retained<NSPasteboard> withName(NSString* name);
    NSInteger add(NSArray* types, id owner, const char* operation);
    Entry* entryOf(NSString* type);
    NSData* ownData(NSString* type);
    void forgetContent();
    std::vector<Entry> takeContent();
    void tellOwners(const std::vector<Entry>& gone);
    InterfaceBackend* backend();
    void offer();
    const TypeNames& foreignTypes();
    NSData* foreignData(NSString* type);

    Retained<NSString> _name;
    std::vector<Entry> _entries;
    NSInteger _changeCount = 0;
    int _selection = -1;    // the back end's selection; -1 for none
    bool _isOwner = false;  // of that selection
    TypeNames _foreignTypes;
    double _foreignTypesUntil = 0;  // the moment when the types have to be asked for again
};

}  // namespace pelvor
