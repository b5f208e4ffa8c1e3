// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/TextFiles/TextFileWriting.h"

#include <sys/stat.h>

#include <cerrno>

#include "Foundation/NSData.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSNumber.h"
#include "Writer/LocalizedText.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/TextFiles/TextFileReading.h"

namespace pelvor {
namespace {

NSDictionary* failureAnswer(NSString* path, int reason) {
    auto* error = NSFileError::errorWithCode_path_isWriting(reason, path, true);
    return unwritableAnswer(path, error->localizedReason());
}

}  // namespace

NSDictionary* unwritableAnswer(NSString* path, NSString* reason) {
    struct stat status;
    const bool isKept = stat(path->fileSystemRepresentation(), &status) == 0 && S_ISREG(status.st_mode);
    NSString* key = isKept ? u"_The document \"%@\" could not be written: %@. The old file is unchanged."_ns
                           : u"_The document \"%@\" could not be written: %@."_ns;
    return errorAnswer(WRErrorFile, localizedFormat(key, path, reason));
}

NSDictionary* writeFile(NSData* data, NSString* path) {
    if (data->writeToFile_atomically(path, true)) return nullptr;
    return failureAnswer(path, errno);
}

NSDictionary* writeTextFile(const std::string& bytes, NSString* encodingName, NSString* path) {
    if (bytes.size() >= NSNotFound) return failureAnswer(path, EFBIG);
    const auto length = static_cast<NSUInteger>(bytes.size());
    if (NSDictionary* failure = writeFile(NSData::dataWithBytes_length(bytes.data(), length), path))
        return failure;
    return NSDictionary::of(
        {{WREncodingKey, encodingName}, {WRByteCountKey, NSNumber::numberWithUnsignedInt(length)}});
}

}  // namespace pelvor
