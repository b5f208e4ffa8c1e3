// SPDX-License-Identifier: Apache-2.0
// The keys that profiles use, and the types of profiles.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

// Keys of a profile's dictionary. After each name stands the text that declaration files use. The library
// itself reads the first three. What the other keys mean is between a host and its plug-ins; below stands
// what their names suggest. A profile may have keys of its own as well.

/// "type": what the profile describes. One of the types below or a type of the host's own, an array of types,
/// or "*" for every type. `PBProfile::type` and `PBProfileSet::profilesOfType` read it.
extern PELVOR_EXPORT NSString* const PBProfileTypeKey;
/// "class": the name of the class that implements the plug-in, a string. `PBProfile::profileClass` reads it.
extern PELVOR_EXPORT NSString* const PBProfileClassKey;
/// "strings": the name of a strings table in the profile's bundle, without ".strings". `PBProfile::localize`
/// looks there.
extern PELVOR_EXPORT NSString* const PBProfileStringsKey;

/// "name": what users read, a string. It is a key of the strings table.
extern PELVOR_EXPORT NSString* const PBProfileNameKey;
/// "formats": the formats that the profile knows. An array of their names, or a dictionary with an entry of
/// the profile's own for each name.
extern PELVOR_EXPORT NSString* const PBProfileFormatsKey;
/// "rich": whether text with attributes is read or written, a boolean.
extern PELVOR_EXPORT NSString* const PBProfileRichnessKey;
/// "capabilities": what the plug-in can do, an array of strings.
extern PELVOR_EXPORT NSString* const PBProfileCapabilitiesKey;
/// "requirements": what must be there for the plug-in to work, an array of strings.
extern PELVOR_EXPORT NSString* const PBProfileRequirementsKey;
/// "content types": kinds of content such as media types, an array of strings.
extern PELVOR_EXPORT NSString* const PBProfileContentTypesKey;
/// "document types": the documents that a reader or a writer is for, an array of file name extensions.
extern PELVOR_EXPORT NSString* const PBProfileDocumentTypesKey;
/// "palette order": the place among profiles that users see in a list, a number; small ones come first.
extern PELVOR_EXPORT NSString* const PBProfilePaletteOrderKey;

// Pasteboard types, each an array of strings. A string "val" in a declaration file becomes the pasteboard
// type of PDF data.

/// "writes pboard": what the plug-in puts on the pasteboard.
extern PELVOR_EXPORT NSString* const PBProfileWritesPasteboardKey;
/// "reads text pboard": what the plug-in takes from the pasteboard as text.
extern PELVOR_EXPORT NSString* const PBProfileReadsTextPasteboardTypesKey;
/// "reads image pboard": what the plug-in takes from the pasteboard as an image.
extern PELVOR_EXPORT NSString* const PBProfileReadsImagePasteboardTypesKey;

// Types of profiles, which are values of PBProfileTypeKey. The library attaches no behaviour to them.

/// "document reader": reads files of some formats into documents.
extern PELVOR_EXPORT NSString* const PBProfileDocumentReaderType;
/// "document writer": writes documents to files of some formats.
extern PELVOR_EXPORT NSString* const PBProfileDocumentWriterType;
/// "document": a kind of document.
extern PELVOR_EXPORT NSString* const PBProfileDocumentType;
/// "document service": does something with an open document.
extern PELVOR_EXPORT NSString* const PBProfileDocumentServiceType;
/// "document view": a way to show a document.
extern PELVOR_EXPORT NSString* const PBProfileDocumentViewType;
/// "lasso reader": reads a selection of several pieces, such as from a pasteboard.
extern PELVOR_EXPORT NSString* const PBProfileLassoReaderType;
/// "lasso writer": writes a selection of several pieces, such as to a pasteboard.
extern PELVOR_EXPORT NSString* const PBProfileLassoWriterType;
/// "palette": a floating window of tools.
extern PELVOR_EXPORT NSString* const PBProfilePaletteType;
/// "sidebar": a panel beside a document.
extern PELVOR_EXPORT NSString* const PBProfileSidebarType;
/// "preference pane": a page of the host's settings.
extern PELVOR_EXPORT NSString* const PBProfilePreferencePaneType;
/// "coder": encodes and decodes parts of a document.
extern PELVOR_EXPORT NSString* const PBProfileCoderType;
/// "language": what the host is to know about a language.
extern PELVOR_EXPORT NSString* const PBProfileLanguageType;
/// "measurement unit": a unit of length, such as millimetres.
extern PELVOR_EXPORT NSString* const PBProfileUnitType;
/// "formats": describes formats that other profiles name.
extern PELVOR_EXPORT NSString* const PBProfileFormatsType;

}  // namespace pelvor
