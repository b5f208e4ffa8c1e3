// SPDX-License-Identifier: Apache-2.0
#include "PBProfileKeys.h"

namespace pelvor {

constinit NSString* const PBProfileTypeKey = u"type"_ns;
constinit NSString* const PBProfileClassKey = u"class"_ns;
constinit NSString* const PBProfileStringsKey = u"strings"_ns;
constinit NSString* const PBProfileNameKey = u"name"_ns;
constinit NSString* const PBProfileFormatsKey = u"formats"_ns;
constinit NSString* const PBProfileRichnessKey = u"rich"_ns;
constinit NSString* const PBProfileCapabilitiesKey = u"capabilities"_ns;
constinit NSString* const PBProfileRequirementsKey = u"requirements"_ns;
constinit NSString* const PBProfileContentTypesKey = u"content types"_ns;
constinit NSString* const PBProfileDocumentTypesKey = u"document types"_ns;
constinit NSString* const PBProfilePaletteOrderKey = u"palette order"_ns;
constinit NSString* const PBProfileWritesPasteboardKey = u"writes pboard"_ns;
constinit NSString* const PBProfileReadsTextPasteboardTypesKey = u"reads text pboard"_ns;
constinit NSString* const PBProfileReadsImagePasteboardTypesKey = u"reads image pboard"_ns;

constinit NSString* const PBProfileDocumentReaderType = u"document reader"_ns;
constinit NSString* const PBProfileDocumentWriterType = u"document writer"_ns;
constinit NSString* const PBProfileDocumentType = u"document"_ns;
constinit NSString* const PBProfileDocumentServiceType = u"document service"_ns;
constinit NSString* const PBProfileDocumentViewType = u"document view"_ns;
constinit NSString* const PBProfileLassoReaderType = u"lasso reader"_ns;
constinit NSString* const PBProfileLassoWriterType = u"lasso writer"_ns;
constinit NSString* const PBProfilePaletteType = u"palette"_ns;
constinit NSString* const PBProfileSidebarType = u"sidebar"_ns;
constinit NSString* const PBProfilePreferencePaneType = u"preference pane"_ns;
constinit NSString* const PBProfileCoderType = u"coder"_ns;
constinit NSString* const PBProfileLanguageType = u"language"_ns;
constinit NSString* const PBProfileUnitType = u"measurement unit"_ns;
constinit NSString* const PBProfileFormatsType = u"formats"_ns;

}  // namespace pelvor
