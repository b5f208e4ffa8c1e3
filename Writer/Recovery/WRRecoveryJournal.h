// SPDX-License-Identifier: Apache-2.0
// WRRecoveryJournal: keeps the unsaved changes of a document on the disk.
#pragma once

#include <functional>
#include <future>
#include <memory>

#include "Text/NSTextStorage.h"
#include "Writer/Recovery/RecoveryOrigin.h"

namespace pelvor {

class NSData;
class NSTimer;
class RecoveryFile;

/// Writes what changes in a text storage to a recovery file: at first the whole text, then, once a second
/// while there are changes, the changed range. Another thread does the writing, on a copy of the text, so
/// that typing never waits for the disk.
///
///     auto journal = WRRecoveryJournal::create(storage, RecoveryOrigin::of(path, reader, answer),
///                                              RecoveryStore::ofUser().newFile());
///     …                                                             // the user types
///     journal->documentIsInFile(RecoveryOrigin::of(path, reader, answer));  // after each saving
///     journal->close();                                             // the window has gone
///
/// The journal stands among the storage's layout managers and ends with `close` or `leave`. It passes over
/// changes that an attribute's value makes in itself, as the storage does. Main thread.
class WRRecoveryJournal : public NSObject {
    PELVOR_CLASS(WRRecoveryJournal, NSObject);

  public:
    // C++ only

    /// Begins to listen. The file is a new one, or that of an abandoned document, which is then written anew
    /// at once: the old content stays until the new one is on the disk. The last edit was at `place`.
    static Retained<WRRecoveryJournal> create(NSTextStorage* storage, RecoveryOrigin origin,
                                              std::shared_ptr<RecoveryFile> file, NSUInteger place = 0);

    /// Called once, with a sentence for the user, when the changes cannot be written. The journal goes on
    /// trying.
    void setProblemHandler(std::function<void(NSString*)> handler) { _problemHandler = std::move(handler); }
    /// Edits of attributes that are told of while the function returns false are no changes of the document.
    void setFilter(std::function<bool()> countsEdit) { _countsEdit = std::move(countsEdit); }
    /// The document has other settings or another path than before, or its file is gone: what is in the
    /// storage is in no file.
    void setOrigin(RecoveryOrigin origin);
    /// The text is that of the document's file: it was saved, read again, or all changes were undone. Removes
    /// the recovery file.
    void documentIsInFile(RecoveryOrigin origin);

    /// Writes all changes and waits until they are on the disk. Returns whether they are.
    bool writeNow();
    /// Stops listening and removes the recovery file: the document was closed by the user's will.
    void close();
    /// Writes all changes, stops listening and leaves the file for the next start: Writer has to end and
    /// cannot ask.
    void leave();

    // Messages of the text storage and of the timer

    void setTextStorage(NSTextStorage* storage);
    void textStorage_edited_range_changeInLength_invalidatedRange(NSTextStorage* storage, unsigned mask,
                                                                  NSRange range, NSInteger changeInLength,
                                                                  NSRange invalidated);
    void writeChanges(NSTimer* timer);

  protected:
    WRRecoveryJournal() = default;
    ~WRRecoveryJournal();

  private:
    bool isTextSettled();
    void addChange(NSRange range, NSInteger changeInLength);
    void startWriting();
    void takeOutcome();
    void writeIn(double seconds);
    void tellProblem(int code);
    void forgetChanges();
    void stopListening();

    Unretained<NSTextStorage> _storage = nullptr;  // which keeps this object
    RecoveryOrigin _origin;
    Retained<NSData> _archivedOrigin;  // made when it is first needed
    std::shared_ptr<RecoveryFile> _file;
    std::function<void(NSString*)> _problemHandler;
    std::function<bool()> _countsEdit;
    Retained<NSTimer> _timer;

    // What has changed since the last writing began. The range is in the text as it is now.
    bool _isChanged = false;
    bool _isWholeDue = true;
    NSRange _changed{NSNotFound, 0};
    NSInteger _changeInLength = 0;
    NSUInteger _place = 0;  // the end of the last edit

    std::future<int> _writing;              // an errno value; not valid while nothing is written
    Retained<NSAttributedString> _written;  // kept, so that its objects do not end on the other thread
};

}  // namespace pelvor
