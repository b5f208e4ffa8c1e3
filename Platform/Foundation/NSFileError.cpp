// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSFileError.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

#include "Foundation/Files/SystemPath.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/LibraryTexts.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSFileError, foundationLibrary) {
    methods.creator<"errorWithCode:path:isWriting:", &NSFileError::errorWithCode_path_isWriting>();
    methods.creator<"lastReadErrorAtPath:", &NSFileError::lastReadErrorAtPath>();
    methods.creator<"lastWriteErrorAtPath:", &NSFileError::lastWriteErrorAtPath>();
    methods.instance<"code", &NSFileError::code>();
    methods.instance<"path", &NSFileError::path>();
    methods.instance<"reason", &NSFileError::reason>();
    methods.instance<"localizedReason", &NSFileError::localizedReason>();
}

namespace {

struct Reason {
    int code;
    const char* key;
};

// The keys of the library's tables, which are the English texts behind an underscore. Numbers that are
// missing here are too rare for a text of their own.
constexpr Reason kReasons[] = {
    {0, "_it is no regular file"},
    {EACCES, "_permission was denied"},
    {EBADMSG, "_its content cannot be understood"},
    {EBUSY, "_it is in use"},
    {EDQUOT, "_your share of the disk is used up"},
    {EEXIST, "_the file already exists"},
    {EFBIG, "_the file would be too large"},
    {EILSEQ, "_the text does not fit the encoding"},
    {EINVAL, "_this cannot be done with such a path"},
    {EIO, "_the disk reported a fault"},
    {EISDIR, "_it is a folder"},
    {ELOOP, "_its links lead in a circle"},
    {EMFILE, "_too many files are open"},
    {ENAMETOOLONG, "_its name is too long"},
    {ENFILE, "_too many files are open"},
    {ENOENT, "_the file does not exist"},
    {ENOMEM, "_there is no memory left"},
    {ENOSPC, "_there is no room left on the disk"},
    {ENOTDIR, "_a part of the path is no folder"},
    {ENOTEMPTY, "_the folder is not empty"},
    {ENXIO, "_nobody is at the other end"},
    {EPERM, "_permission was denied"},
    {EROFS, "_the disk can only be read"},
    {ETXTBSY, "_it is in use"},
    {EXDEV, "_it lies on another disk"},
};

const char* keyOfReason(int code, FileUse use) {
    if (code == ENOENT && use == FileUse::writing) return "_the enclosing folder does not exist";
    if (code == EFBIG && use == FileUse::reading) return "_the file is too large";
    const auto* reason = std::ranges::find(kReasons, code, &Reason::code);
    return reason == std::end(kReasons) ? nullptr : reason->key;
}

// Whether the folder of the path exists, so that a writer who lacks something lacks the file itself. Of a
// link that leads nowhere, the folder may be missing that it leads to.
bool isFileMissing(NSString* path) {
    const std::string bytes = systemPath(path);
    const std::string folder = bytes.substr(0, bytes.find_last_of('/') + 1);
    struct stat status;
    return !bytes.empty() && ::lstat(bytes.c_str(), &status) != 0 &&
           ::stat(folder.empty() ? "." : folder.c_str(), &status) == 0;
}

}  // namespace

const char* reasonOfFileError(int code, FileUse use) {
    if (const char* key = keyOfReason(code, use)) return key + 1;
    const char* text = ::strerrordesc_np(code);
    return text ? text : "unknown file error";
}

NSFileError* NSFileError::errorWithCode_path_isWriting(int code, NSString* path, bool isWriting, Class* cls) {
    auto error = make<NSFileError>(cls);
    error->_code = code;
    const bool lacksFile = code == ENOENT && isWriting && isFileMissing(path);
    error->_use = isWriting && !lacksFile ? FileUse::writing : FileUse::reading;
    error->_path = path ? path->copy() : nullptr;
    return std::move(error).autorelease();
}

NSFileError* NSFileError::lastReadErrorAtPath(NSString* path, Class* cls) {
    return errorWithCode_path_isWriting(errno, path, false, cls);
}

NSFileError* NSFileError::lastWriteErrorAtPath(NSString* path, Class* cls) {
    return errorWithCode_path_isWriting(errno, path, true, cls);
}

NSString* NSFileError::reason() { return NSString::ofUTF8(reasonOfFileError(_code, _use)); }

NSString* NSFileError::localizedReason() {
    const char* key = keyOfReason(_code, _use);
    NSString* text = key ? localizedLibraryText(NSString::ofUTF8(key)) : nullptr;
    return text ? text : reason();
}

NSString* NSFileError::description() { return NSString::stringWithFormat(u"%@: %@"_ns, _path, reason()); }

}  // namespace pelvor
