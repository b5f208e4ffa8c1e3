// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/PlainText/WRPlainTextWriter.h"

#include "Foundation/NSDictionary.h"
#include "Foundation/NSString.h"
#include "PBUtil.h"
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
    if (encoding == 0) return unknownEncodingAnswer(encodingName, this);
    StringUnits units(text);
    auto bytes = encodeUnits(units, encoding);
    const bool isMarked = !named && own && numberEntry(options, WRByteOrderMarkKey);
    if (bytes && isMarked) bytes->insert(0, encodeUnits(u"\uFEFF", encoding).value_or(std::string()));
    if (bytes) return writeTextFile(*bytes, encodingName, path, this);
    NSString* format = _PBDoLocalize(u"_The text has characters that the encoding \"%@\" lacks."_ns, this);
    return errorAnswer(WRErrorEncoding, NSString::stringWithFormat(format, encodingName));
}

}  // namespace pelvor
