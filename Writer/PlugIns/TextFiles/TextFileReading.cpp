// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/TextFiles/TextFileReading.h"

#include <cerrno>

#include "Foundation/NSFileError.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Runtime/Message.h"
#include "Writer/LocalizedText.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/TextFiles/TextFileDecoding.h"

namespace pelvor {
namespace {

NSDictionary* faultAnswer(TextFileFault fault, NSString* path, NSString* encodingName,
                          const TextFileSource& source) {
    NSString* name = path->lastPathComponent();
    switch (fault) {
        case TextFileFault::unknownEncoding:
            return unknownEncodingAnswer(encodingName);
        case TextFileFault::undecodable:
            return errorAnswer(WRErrorEncoding,
                               localizedFormat(u"_The document \"%@\" is not text in the encoding \"%@\"."_ns,
                                               name, encodingName));
        case TextFileFault::notText:
            return errorAnswer(
                WRErrorRefused,
                localizedFormat(u"_The document \"%@\" holds no text but other data."_ns, name));
        default:
            return unreadableAnswer(path, source);
    }
}

NSDictionary* answerOf(TextFileContent& content) {
    auto* answer = NSMutableDictionary::dictionary();
    auto set = [answer](NSString* key, id value) { answer->setObject_forKey(value, key); };
    set(WRTextKey, content.text.takeString());
    set(WREncodingKey, NSString::ofUTF8(content.encodingName));
    set(WRByteOrderMarkKey, NSNumber::numberWithBool(content.hasByteOrderMark));
    set(WRByteCountKey, NSNumber::numberWithUnsignedLongLong(content.byteCount));
    set(WRLossyKey, NSNumber::numberWithBool(content.isLossy));
    if (content.confidence) set(WRConfidenceKey, NSNumber::numberWithInt(*content.confidence));
    auto* others = NSMutableArray::array();
    for (const std::string& name : content.otherNames) others->addObject(NSString::ofUTF8(name));
    if (others->count()) set(WROtherEncodingsKey, others);
    if (!content.contradictingMark.empty())
        set(WRContradictingMarkKey, NSString::ofUTF8(content.contradictingMark));
    return answer;
}

}  // namespace

NSDictionary* readTextFile(NSString* path, NSDictionary* options) {
    NSString* wanted = stringEntry(options, WREncodingKey);
    id observer = options ? options->objectForKey(WRProgressKey) : nullptr;
    TextFileProgress progress;
    if (observer)
        progress = [observer](std::uint64_t read, std::uint64_t length) {
            send<void>(observer, "readerDidRead:of:"_sel, static_cast<unsigned long long>(read),
                       static_cast<unsigned long long>(length));
        };
    const TextFileSource source(path->fileSystemRepresentation());
    TextFileContent content = decodeTextFile(source, wanted ? wanted->toUTF8() : std::string(), progress);
    return content.fault == TextFileFault::none ? answerOf(content)
                                                : faultAnswer(content.fault, path, wanted, source);
}

NSString* stringEntry(NSDictionary* dictionary, NSString* key) {
    return dictionary ? cast<NSString>(dictionary->objectForKey(key)) : nullptr;
}

bool isEntrySet(NSDictionary* dictionary, NSString* key) {
    auto* number = dictionary ? cast<NSNumber>(dictionary->objectForKey(key)) : nullptr;
    return number && number->boolValue();
}

NSDictionary* errorAnswer(NSString* error, NSString* message) {
    return NSDictionary::of({{WRErrorKey, error}, {WRMessageKey, message}});
}

NSDictionary* unreadableAnswer(NSString* path, const TextFileSource& source) {
    // What no failure of the system stopped was too long for a string.
    auto* error =
        NSFileError::errorWithCode_path_isWriting(source.failure() ? source.failure() : EFBIG, path, false);
    return errorAnswer(WRErrorFile, localizedFormat(u"_The document \"%@\" could not be read: %@."_ns,
                                                    path->lastPathComponent(), error->localizedReason()));
}

NSDictionary* unknownEncodingAnswer(NSString* encodingName) {
    return errorAnswer(
        WRErrorEncoding,
        localizedFormat(u"_The encoding \"%@\" is not known. \"--encodings\" lists those that are."_ns,
                        encodingName));
}

}  // namespace pelvor
