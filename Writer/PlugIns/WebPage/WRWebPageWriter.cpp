// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/WebPage/WRWebPageWriter.h"

#include "Foundation/NSDictionary.h"
#include "Foundation/NSString.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/TextFiles/TextFileReading.h"
#include "Writer/PlugIns/TextFiles/TextFileWriting.h"
#include "Writer/PlugIns/WebPage/WebPageMarkup.h"
#include "Writer/PlugIns/WebPage/WebPagePlugIn.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRWebPageWriter, webPagePlugIn) {
    methods.instance<"writeText:toPath:options:", &WRWebPageWriter::writeText_toPath_options>();
}

NSDictionary* WRWebPageWriter::writeText_toPath_options(NSString* text, NSString* path,
                                                        NSDictionary* options) {
    NSString* named = stringEntry(options, WREncodingKey);
    NSString* encodingName = named ? named : u"UTF-8"_ns;
    const NSStringEncoding encoding = encodingForName(encodingName->toUTF8());
    if (encoding == 0) return unknownEncodingAnswer(encodingName);
    StringUnits units(text);
    const std::u16string page = webPageOfText(units, encodingName->toUTF16());
    auto bytes = encodeUnits(page, encoding);
    if (!bytes) bytes = encodeUnits(withCharacterNumbers(page), encoding, EncodingLoss::allowed);
    if (!bytes) return unknownEncodingAnswer(encodingName);
    return writeTextFile(*bytes, encodingName, path);
}

}  // namespace pelvor
