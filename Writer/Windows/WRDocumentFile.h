// SPDX-License-Identifier: Apache-2.0
// WRDocumentFile: the file of the document in a window.
#pragma once

#include <cstdint>
#include <optional>

#include "Interface/NSResponder.h"
#include "Writer/Recovery/RecoveryOrigin.h"

namespace pelvor {

class NSAttributedString;
class NSNotification;
class NSUndoManager;
class PBProfile;
class RecoveryFile;
class WRDocument;
class WRDocumentSaver;
class WRDocumentWindow;
class WRFileSentry;
class WRRecoveryJournal;
struct AbandonedDocument;
struct StyledDocument;

/// Knows whether a window's document has changes that are in no file; saves it, reads it again, and watches
/// what other programs do to its file. Follows the document's window in the chain of responders. What fails
/// is told to the user, and the document stays as it is, with its changes. Main thread.
class WRDocumentFile : public NSResponder {
    PELVOR_CLASS(WRDocumentFile, NSResponder);

  public:
    // C++ only
    /// The window, which keeps this object, has its document and its view.
    static Retained<WRDocumentFile> create(WRDocumentWindow* window);
    /// The document that a crash left, without its journal.
    static Retained<WRDocument> documentOf(const AbandonedDocument& abandoned);
    /// The document is one that a crash left: goes on with its journal, and tells the user.
    void takeAbandoned(const AbandonedDocument& abandoned);

    /// Whether there is something in the window that is in no file.
    bool isEdited() { return _isEdited || _isFileGone; }
    /// Asks the user what becomes of the changes, if there are any, and saves them if that is requested.
    /// Returns whether the window may close.
    bool mayClose();
    /// The user no longer wants the document: the window closes, or Writer quits.
    void close();
    /// Nobody can be asked any more: what is in no file is kept for the next start.
    void leave();

    /// Both return whether the document is in its file. The second one asks for the file; a writer's profile
    /// is the kind to begin with, and may be null.
    bool save();
    bool saveAs(PBProfile* writer);
    /// Writes the document into the file, which becomes its own. Null stands for the document's encoding.
    bool writeToPath(NSString* path, NSString* encodingName);
    /// Puts what is in the file in the place of the text and the page settings, in one step that can be
    /// undone. Null stands for the document's encoding. Returns null, or what went wrong, as a sentence for
    /// the user.
    Retained<NSString> readAgain(NSString* encodingName = nullptr);
    /// Does so if the user agrees to leave unsaved changes, and tells what went wrong.
    void revertWithEncoding(NSString* encodingName);

    // Commands

    void saveDocument(id sender);
    void saveDocumentAs(id sender);
    void revertDocumentToSaved(id sender);
    void moveDocumentToTrash(id sender);
    bool validateMenuItem(id item);
    bool validateRevertDocumentToSaved(id item);
    bool validateMoveDocumentToTrash(id item);

    /// Observe the document and the undo manager.
    void documentDidChange(NSNotification* notification);
    void undoManagerDidAct(NSNotification* notification);
    /// The message of the sentry.
    void fileDidChange();

  protected:
    WRDocumentFile() = default;
    ~WRDocumentFile();

  private:
    void setEdited(bool isEdited);
    void showState();
    void documentIsInFile();
    void watchFile();
    void keepJournal(std::shared_ptr<RecoveryFile> file, NSUInteger place = 0);
    void noteOrigin();
    RecoveryOrigin origin();
    std::optional<bool> resultWithoutReplacing(NSString* path);
    std::optional<bool> resultWithoutFormats(WRDocumentSaver* saver, NSString* path, NSString* encodingName);
    bool handleFailure(WRDocumentSaver* saver, NSString* path);
    void beginStep();
    void replaceContent(const StyledDocument& styled, NSDictionary* ownSettings, NSString* actionName);
    bool replaceText(NSAttributedString* text);
    void takeLook();
    void showWithoutFormats();
    void keepInJournal();
    void keepMine(const FileIdentity& file);
    NSUndoManager* undoManager() override;

    Unretained<WRDocumentWindow> _owner = nullptr;
    Retained<WRDocument> _document;
    Retained<WRFileSentry> _sentry;
    Retained<WRRecoveryJournal> _journal;
    std::optional<std::uint64_t> _savedState = 0;  // of the undo manager when text and file were one
    bool _isEdited = false;
    bool _isFileGone = false;  // no file of that name can be read
    bool _journaledFormats = false;
    Retained<NSDictionary> _journaledSettings;
};

}  // namespace pelvor
