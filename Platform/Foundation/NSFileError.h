// SPDX-License-Identifier: Apache-2.0
// NSFileError: why a file could not be read, written, copied, moved or removed.
#pragma once

#include "Foundation/NSString.h"
#include "Runtime/Class.h"

namespace pelvor {

/// What was done with a file. It decides what a missing path means: a reader lacks the file, a writer the
/// folder that the file is to lie in.
enum class FileUse : unsigned char { reading, writing };

/// The reason for a number that `errno` had, in English: "there is no room left on the disk".
PELVOR_EXPORT const char* reasonOfFileError(int code, FileUse use = FileUse::reading);

/// Why an operation on a file failed. All operations of Foundation that read, write, copy, move or remove
/// files (those of NSData, NSString, property lists and NSFileManager) leave the reason in `errno`; the error
/// is made directly behind the operation:
///
///     if (!data->writeToFile_atomically(path, true))
///         complain(NSFileError::lastWriteErrorAtPath(path)->localizedReason());
///     // "there is no room left on the disk", in French "il n’y a plus de place sur le disque"
///
/// Immutable. Any thread.
class PELVOR_EXPORT NSFileError : public NSObject {
    PELVOR_CLASS(NSFileError, NSObject);
    PELVOR_CREATORS(errorWithCode_path_isWriting, lastReadErrorAtPath, lastWriteErrorAtPath);

  public:
    /// Returns an error with that number of the system; 0 stands for what is no regular file. ENOENT of a
    /// writer means the file if the folder of the path exists at this moment (a copy without a source, the
    /// removal of what is not there), else the folder.
    static NSFileError* errorWithCode_path_isWriting(int code, NSString* path, bool isWriting,
                                                     Class* cls = classObject());
    /// These return an error with the number that `errno` has: the first for what only reads, the second for
    /// all else. The path of a copy or a move is the destination.
    static NSFileError* lastReadErrorAtPath(NSString* path, Class* cls = classObject());
    static NSFileError* lastWriteErrorAtPath(NSString* path, Class* cls = classObject());

    /// Returns the number of the system: ENOSPC.
    int code() { return _code; }
    NSString* path() { return _path; }
    /// Returns the reason in English, "there is no room left on the disk", for logs.
    NSString* reason();
    /// Returns the reason in the user's language. It is a clause without a full stop; behind a colon it can
    /// end a message. A reason that is rare is in English.
    NSString* localizedReason();
    /// Returns the path and the reason in English: "/home/ann/letter.txt: permission was denied".
    NSString* description() override;

  protected:
    NSFileError() = default;
    ~NSFileError() = default;

  private:
    int _code = 0;
    FileUse _use = FileUse::reading;
    Retained<NSString> _path;
};

}  // namespace pelvor
