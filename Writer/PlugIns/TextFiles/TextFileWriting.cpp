// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/TextFiles/TextFileWriting.h"

#include "Foundation/NSData.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSNumber.h"
#include "PBUtil.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/TextFiles/TextFileReading.h"

namespace pelvor {

NSDictionary* writeTextFile(std::string_view bytes, NSString* encodingName, NSString* path, id writer) {
    NSData* data = NSData::dataWithBytes_length(bytes.data(), static_cast<NSUInteger>(bytes.size()));
    if (bytes.size() > data->length() || !data->writeToFile_atomically(path, true)) {
        NSString* format = _PBDoLocalize(u"_The document \"%@\" could not be written."_ns, writer);
        return errorAnswer(WRErrorFile, NSString::stringWithFormat(format, path->lastPathComponent()));
    }
    return NSDictionary::of(
        {{WREncodingKey, encodingName}, {WRByteCountKey, NSNumber::numberWithUnsignedInt(data->length())}});
}

NSDictionary* unknownEncodingAnswer(NSString* encodingName, id plugIn) {
    NSString* format = _PBDoLocalize(u"_The encoding \"%@\" is not known."_ns, plugIn);
    return errorAnswer(WRErrorEncoding, NSString::stringWithFormat(format, encodingName));
}

}  // namespace pelvor
