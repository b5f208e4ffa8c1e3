// SPDX-License-Identifier: Apache-2.0
// The names of the kinds of data that pasteboards carry.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

/// Plain text.
extern PELVOR_EXPORT NSString* const NSStringPboardType;
/// A list of paths.
extern PELVOR_EXPORT NSString* const NSFilenamesPboardType;
/// A page description with its bounds.
extern PELVOR_EXPORT NSString* const NSPostScriptPboardType;
/// Pictures of pixels.
extern PELVOR_EXPORT NSString* const NSTIFFPboardType;
/// Text with attributes.
extern PELVOR_EXPORT NSString* const NSRTFPboardType;
/// Text with attributes and attachments.
extern PELVOR_EXPORT NSString* const NSRTFDPboardType;
/// Text in cells, parted by tabs.
extern PELVOR_EXPORT NSString* const NSTabularTextPboardType;
/// The attributes of characters.
extern PELVOR_EXPORT NSString* const NSFontPboardType;
/// The attributes of paragraphs.
extern PELVOR_EXPORT NSString* const NSRulerPboardType;
/// The content of a file.
extern PELVOR_EXPORT NSString* const NSFileContentsPboardType;
extern PELVOR_EXPORT NSString* const NSColorPboardType;
extern PELVOR_EXPORT NSString* const NSHTMLPboardType;
/// Drawings as a list of operations.
extern PELVOR_EXPORT NSString* const NSPICTPboardType;
extern PELVOR_EXPORT NSString* const NSURLPboardType;
extern PELVOR_EXPORT NSString* const NSPDFPboardType;

}  // namespace pelvor
