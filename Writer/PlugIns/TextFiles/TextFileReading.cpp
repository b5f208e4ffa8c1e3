// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/TextFiles/TextFileReading.h"

#include "Foundation/NSDictionary.h"
#include "Foundation/NSNumber.h"
#include "PBUtil.h"
#include "Runtime/Message.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/TextFiles/TextFileDecoding.h"
#include "Writer/PlugIns/TextFiles/TextFileWriting.h"

namespace pelvor {
namespace {

NSDictionary* faultAnswer(TextFileFault fault, NSString* name, NSString* encodingName, id reader) {
    if (fault == TextFileFault::unreadable) {
        NSString* format = _PBDoLocalize(u"_The document \"%@\" could not be read."_ns, reader);
        return errorAnswer(WRErrorFile, NSString::stringWithFormat(format, name));
    }
    if (fault == TextFileFault::unknownEncoding) return unknownEncodingAnswer(encodingName, reader);
    if (fault == TextFileFault::undecodable) {
        NSString* format =
            _PBDoLocalize(u"_The document \"%@\" is not text in the encoding \"%@\"."_ns, reader);
        return errorAnswer(WRErrorEncoding, NSString::stringWithFormat(format, name, encodingName));
    }
    NSString* format = _PBDoLocalize(u"_The document \"%@\" holds no text but other data."_ns, reader);
    return errorAnswer(WRErrorRefused, NSString::stringWithFormat(format, name));
}

}  // namespace

NSDictionary* readTextFile(NSString* path, NSDictionary* options, id reader) {
    NSString* wanted = stringEntry(options, WREncodingKey);
    id observer = options ? options->objectForKey(WRProgressKey) : nullptr;
    TextFileProgress progress;
    if (observer)
        progress = [observer](std::uint64_t read, std::uint64_t length) {
            send<void>(observer, "readerDidRead:of:"_sel, static_cast<unsigned long long>(read),
                       static_cast<unsigned long long>(length));
        };
    const TextFileSource source(std::string(path->fileSystemRepresentation()));
    TextFileContent content = decodeTextFile(source, wanted ? wanted->toUTF8() : std::string(), progress);
    if (content.fault != TextFileFault::none)
        return faultAnswer(content.fault, path->lastPathComponent(), wanted, reader);
    return NSDictionary::of({
        {WRTextKey, content.text.makeString().autorelease()},
        {WREncodingKey, NSString::ofUTF8(content.encodingName)},
        {WRByteOrderMarkKey, NSNumber::numberWithBool(content.hasByteOrderMark)},
        {WRByteCountKey, NSNumber::numberWithUnsignedLongLong(content.byteCount)},
    });
}

NSString* stringEntry(NSDictionary* dictionary, NSString* key) {
    return dictionary ? cast<NSString>(dictionary->objectForKey(key)) : nullptr;
}

bool numberEntry(NSDictionary* dictionary, NSString* key) {
    auto* number = dictionary ? cast<NSNumber>(dictionary->objectForKey(key)) : nullptr;
    return number && number->boolValue();
}

NSDictionary* errorAnswer(NSString* error, NSString* message) {
    return NSDictionary::of({{WRErrorKey, error}, {WRMessageKey, message}});
}

}  // namespace pelvor
