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
    NSString* encodingName = named ? named : u"UTF-8"_ns;
    const NSStringEncoding encoding = encodingForName(encodingName->toUTF8());
    if (encoding == 0) return unknownEncodingAnswer(encodingName, this);
    const auto bytes = encodeUnits(StringUnits(text), encoding);
    if (bytes) return writeTextFile(*bytes, encodingName, path, this);
    NSString* format = _PBDoLocalize(u"_The text has characters that the encoding \"%@\" lacks."_ns, this);
    return errorAnswer(WRErrorEncoding, NSString::stringWithFormat(format, encodingName));
}

}  // namespace pelvor
