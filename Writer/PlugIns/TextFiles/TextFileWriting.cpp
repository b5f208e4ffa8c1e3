// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/TextFiles/TextFileWriting.h"

#include <cerrno>
#include <cstring>

#include "Foundation/NSData.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSNumber.h"
#include "Writer/LocalizedText.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/TextFiles/TextFileReading.h"

namespace pelvor {
namespace {

// Why a file could not be written, as the system tells it.
NSString* keyOfReason(int reason) {
    switch (reason) {
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return u"_The document \"%@\" could not be written: there is no room for it."_ns;
        case EACCES:
        case EPERM:
            return u"_The document \"%@\" could not be written: you may not write there."_ns;
        case EROFS:
            return u"_The document \"%@\" could not be written: the disk can only be read."_ns;
        case ENOENT:
        case ENOTDIR:
            return u"_The document \"%@\" could not be written: there is no such folder."_ns;
        case EISDIR:
            return u"_The document \"%@\" could not be written: it is a folder."_ns;
        case ELOOP:
            return u"_The document \"%@\" could not be written: its links lead in a circle."_ns;
        case ENAMETOOLONG:
            return u"_The document \"%@\" could not be written: its name is too long."_ns;
        default:
            return nullptr;
    }
}

NSString* messageFor(NSString* path, int reason) {
    if (NSString* key = keyOfReason(reason)) return localizedFormat(key, path);
    return localizedFormat(u"_The document \"%@\" could not be written: %@"_ns, path,
                           NSString::ofUTF8(std::strerror(reason)));
}

}  // namespace

NSDictionary* writeFile(NSData* data, NSString* path) {
    errno = 0;
    if (data->writeToFile_atomically(path, true)) return nullptr;
    return errorAnswer(WRErrorFile, messageFor(path, errno));
}

NSDictionary* writeTextFile(const std::string& bytes, NSString* encodingName, NSString* path) {
    if (bytes.size() >= NSNotFound) return errorAnswer(WRErrorFile, messageFor(path, EFBIG));
    const auto length = static_cast<NSUInteger>(bytes.size());
    if (NSDictionary* failure = writeFile(NSData::dataWithBytes_length(bytes.data(), length), path))
        return failure;
    return NSDictionary::of(
        {{WREncodingKey, encodingName}, {WRByteCountKey, NSNumber::numberWithUnsignedInt(length)}});
}

}  // namespace pelvor
