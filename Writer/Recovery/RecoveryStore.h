// SPDX-License-Identifier: Apache-2.0
// RecoveryStore: the folder of the recovery files.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Foundation/NSDate.h"
#include "Foundation/NSMutableAttributedString.h"
#include "Writer/Recovery/RecoveryOrigin.h"

namespace pelvor {

class RecoveryFile;

/// How the file of a recovered document compares with the file that the document was read from.
enum class RecoveredFileState : std::uint8_t { unchanged, changed, missing, neverThere };

/// A document that was changed when its Writer was killed. While this object or the journal that took over
/// its file lives, no other Writer sees the document. Letting go of it leaves the document for the next
/// start.
struct AbandonedDocument {
    RecoveryOrigin origin;
    Retained<NSMutableAttributedString> text;  ///< with the formats as they were in the text storage
    NSUInteger place;                          ///< in the text: where the last edit was
    Retained<NSDate> date;                     ///< of the last record
    std::shared_ptr<RecoveryFile> file;        ///< for `WRRecoveryJournal::create`

    RecoveredFileState fileState() const;
    /// Removes the recovery file: the user does not want the document. The text stays as it is.
    void discard();
};

/// The folder with a recovery file for each document that is changed. Main thread.
///
///     for (AbandonedDocument& document : RecoveryStore::ofUser().abandonedDocuments()) {
///         auto storage = NSTextStorage::initWithAttributedString(document.text);
///         …  // a window for the storage; the origin has path, reader and settings
///         journal = WRRecoveryJournal::create(storage, document.origin, document.file);
///     }
class RecoveryStore {
  public:
    static constexpr std::size_t kMost = 50;

    /// pelvor-writer/recovery in $XDG_STATE_HOME, or in ~/.local/state.
    static RecoveryStore ofUser();
    explicit RecoveryStore(std::string folder) : _folder(std::move(folder)) {}

    const std::string& folder() const { return _folder; }
    /// What a crash left, the latest first, and of that no more than `kMost`: each document is a window and
    /// keeps files open. What is left over waits for the next call. Documents of other processes that live
    /// are passed over. Recovery files that hold no text get the extension "damaged", and the log says why.
    std::vector<AbandonedDocument> abandonedDocuments() const;
    /// A file for a document that has none. It is made when something is written.
    std::shared_ptr<RecoveryFile> newFile() const;

  private:
    std::string _folder;
};

}  // namespace pelvor
