// SPDX-License-Identifier: Apache-2.0
// What a recovered text was: its file, and how that was read.
#pragma once

#include "Foundation/NSDictionary.h"
#include "Foundation/NSString.h"
#include "Writer/FileIdentity.h"

namespace pelvor {

/// A document without its text.
struct RecoveryOrigin {
    /// The origin of a document that has just been read from the path or written to it. Every object may be
    /// null: a document without a file has no path, one that nobody read has no reader.
    static RecoveryOrigin of(NSString* path, NSString* reader, NSDictionary* answer);

    Retained<NSString> path;
    Retained<NSString> reader;      ///< the identifier of the profile of the reader
    Retained<NSDictionary> answer;  ///< the reader's answer (PlugInProtocol.h) without its texts
    FileIdentity file;              ///< when the document was last as in its file
};

}  // namespace pelvor
