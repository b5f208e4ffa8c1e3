// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSPasteboardTypes.h"

namespace pelvor {

constinit NSString* const NSStringPboardType = u"NSStringPboardType"_ns;
constinit NSString* const NSFilenamesPboardType = u"NSFilenamesPboardType"_ns;
constinit NSString* const NSPostScriptPboardType = u"NSPostScriptPboardType"_ns;
constinit NSString* const NSTIFFPboardType = u"NSTIFFPboardType"_ns;
constinit NSString* const NSRTFPboardType = u"NSRTFPboardType"_ns;
constinit NSString* const NSRTFDPboardType = u"NSRTFDPboardType"_ns;
constinit NSString* const NSTabularTextPboardType = u"NSTabularTextPboardType"_ns;
constinit NSString* const NSFontPboardType = u"NSFontPboardType"_ns;
constinit NSString* const NSRulerPboardType = u"NSRulerPboardType"_ns;
constinit NSString* const NSFileContentsPboardType = u"NSFileContentsPboardType"_ns;
constinit NSString* const NSColorPboardType = u"NSColorPboardType"_ns;
constinit NSString* const NSHTMLPboardType = u"NSHTMLPboardType"_ns;
constinit NSString* const NSPICTPboardType = u"NSPICTPboardType"_ns;
constinit NSString* const NSURLPboardType = u"NSURLPboardType"_ns;
constinit NSString* const NSPDFPboardType = u"NSPDFPboardType"_ns;

}  // namespace pelvor
