// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/TextFiles/TextFileReading.h"

#include "Foundation/NSData.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSNumber.h"
#include "PBUtil.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/TextFiles/TextFileDecoding.h"
#include "Writer/PlugIns/TextFiles/TextFileWriting.h"

namespace pelvor {
namespace {

NSDictionary* faultAnswer(TextFileFault fault, NSString* name, NSString* encodingName, id reader) {
    if (fault == TextFileFault::unknownEncoding) return unknownEncodingAnswer(encodingName, reader);
    if (fault == TextFileFault::undecodable) {
        NSString* format = _PBDoLocalize(u"_The document \"%@\" is not text in the encoding \"%@\"."_ns, reader);
        return errorAnswer(WRErrorEncoding, NSString::stringWithFormat(format, name, encodingName));
    }
    NSString* format = _PBDoLocalize(u"_The document \"%@\" holds no text but other data."_ns, reader);
    return errorAnswer(WRErrorRefused, NSString::stringWithFormat(format, name));
}

}  // namespace

NSDictionary* readTextFile(NSString* path, NSDictionary* options, id reader) {
    NSString* name = path->lastPathComponent();
    auto data = NSData::initWithContentsOfFile(path);
    if (!data) {
        NSString* format = _PBDoLocalize(u"_The document \"%@\" could not be read."_ns, reader);
        return errorAnswer(WRErrorFile, NSString::stringWithFormat(format, name));
    }
    NSString* wanted = stringEntry(options, WREncodingKey);
    const std::string_view bytes(static_cast<const char*>(data->bytes()), data->length());
    const TextFileContent content = decodeTextFile(bytes, wanted ? wanted->toUTF8() : std::string());
    if (content.fault != TextFileFault::none) return faultAnswer(content.fault, name, wanted, reader);
    return NSDictionary::of({
        {WRTextKey, NSString::of(content.text)},
        {WREncodingKey, NSString::ofUTF8(content.encodingName)},
        {WRByteOrderMarkKey, NSNumber::numberWithBool(content.hasByteOrderMark)},
        {WRByteCountKey, NSNumber::numberWithUnsignedInt(data->length())},
    });
}

NSString* stringEntry(NSDictionary* dictionary, NSString* key) {
    return dictionary ? cast<NSString>(dictionary->objectForKey(key)) : nullptr;
}

NSDictionary* errorAnswer(NSString* error, NSString* message) {
    return NSDictionary::of({{WRErrorKey, error}, {WRMessageKey, message}});
}

}  // namespace pelvor
