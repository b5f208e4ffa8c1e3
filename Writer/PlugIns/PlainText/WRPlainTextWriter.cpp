// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/PlainText/WRPlainTextWriter.h"

#include "Foundation/EncodingDetection.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSString.h"
#include "Writer/LocalizedText.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/PlainText/PlainTextPlugIn.h"
#include "Writer/PlugIns/TextFiles/TextFileReading.h"
#include "Writer/PlugIns/TextFiles/TextFileWriting.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRPlainTextWriter, plainTextPlugIn) {
    methods.instance<"writeText:toPath:options:", &WRPlainTextWriter::writeText_toPath_options>();
}

NSDictionary* WRPlainTextWriter::writeText_toPath_options(NSString* text, NSString* path,
                                                          NSDictionary* options) {
    NSString* named = stringEntry(options, WREncodingKey);
    NSString* own = stringEntry(options, WRDocumentEncodingKey);
    NSString* encodingName = named ? named : own ? own : u"UTF-8"_ns;
    const NSStringEncoding encoding = encodingForName(encodingName->toUTF8());
    if (encoding == 0) return unknownEncodingAnswer(encodingName);
    StringUnits units(text);
    auto bytes = encodeUnits(units, encoding);
    const bool isMarked = !named && own && isEntrySet(options, WRByteOrderMarkKey);
    if (bytes && isMarked) bytes->insert(0, markOfEncoding(encoding));
    if (bytes) return writeTextFile(*bytes, encodingName, path);
    return errorAnswer(
        WRErrorEncoding,
        localizedFormat(
            u"_The text has characters that the encoding \"%@\" lacks. Name another by \"--save-encoding\"."_ns,
            encodingName));
}

}  // namespace pelvor
