// SPDX-License-Identifier: Apache-2.0
// The keys that profiles use, and the kinds of profiles.
#pragma once

#include "Foundation/NSString.h"

namespace pelvor {

// Keys of a profile's dictionary. The library itself reads the first three; what stands under the others is
// between the host and its plug-ins.

/// The kind of the profile: one of the types below, an array of them, or "*" for every type.
extern PELVOR_EXPORT NSString* const PBProfileTypeKey;
/// The name of the class that implements the plug-in.
extern PELVOR_EXPORT NSString* const PBProfileClassKey;
/// The name of the strings table in the profile's bundle.
extern PELVOR_EXPORT NSString* const PBProfileStringsKey;
extern PELVOR_EXPORT NSString* const PBProfileNameKey;
extern PELVOR_EXPORT NSString* const PBProfileFormatsKey;
extern PELVOR_EXPORT NSString* const PBProfileRichnessKey;
extern PELVOR_EXPORT NSString* const PBProfileCapabilitiesKey;
extern PELVOR_EXPORT NSString* const PBProfileRequirementsKey;
extern PELVOR_EXPORT NSString* const PBProfileContentTypesKey;
extern PELVOR_EXPORT NSString* const PBProfileDocumentTypesKey;
extern PELVOR_EXPORT NSString* const PBProfilePaletteOrderKey;
extern PELVOR_EXPORT NSString* const PBProfileWritesPasteboardKey;
extern PELVOR_EXPORT NSString* const PBProfileReadsTextPasteboardTypesKey;
extern PELVOR_EXPORT NSString* const PBProfileReadsImagePasteboardTypesKey;

// Values of PBProfileTypeKey.

extern PELVOR_EXPORT NSString* const PBProfileDocumentReaderType;
extern PELVOR_EXPORT NSString* const PBProfileDocumentWriterType;
extern PELVOR_EXPORT NSString* const PBProfileDocumentType;
extern PELVOR_EXPORT NSString* const PBProfileDocumentServiceType;
extern PELVOR_EXPORT NSString* const PBProfileDocumentViewType;
extern PELVOR_EXPORT NSString* const PBProfileLassoReaderType;
extern PELVOR_EXPORT NSString* const PBProfileLassoWriterType;
extern PELVOR_EXPORT NSString* const PBProfilePaletteType;
extern PELVOR_EXPORT NSString* const PBProfileSidebarType;
extern PELVOR_EXPORT NSString* const PBProfilePreferencePaneType;
extern PELVOR_EXPORT NSString* const PBProfileCoderType;
extern PELVOR_EXPORT NSString* const PBProfileLanguageType;
extern PELVOR_EXPORT NSString* const PBProfileUnitType;
extern PELVOR_EXPORT NSString* const PBProfileFormatsType;

}  // namespace pelvor
