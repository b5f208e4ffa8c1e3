// SPDX-License-Identifier: Apache-2.0
#include "PBPostURLRequest.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <limits>
#include <vector>

#include "BaseLibrary.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSFileManager.h"
#include "NSString-PelvorAdditions.h"
#include "PBUtil.h"
#include "Private/Base64Lines.h"
#include "Runtime/Message.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBPostURLRequest, baseLibrary) {
    methods.classLevel<"uniquePartBoundary", &PBPostURLRequest::uniquePartBoundary>();
    methods.creator<"requestWithURL:", &PBPostURLRequest::requestWithURL>();
    methods.creator<"requestWithURL:cachePolicy:timeoutInterval:",
                    &PBPostURLRequest::requestWithURL_cachePolicy_timeoutInterval>();
    methods.creator<"initWithURL:", &PBPostURLRequest::initWithURL>();
    methods.creator<"initWithURL:cachePolicy:timeoutInterval:",
                    &PBPostURLRequest::initWithURL_cachePolicy_timeoutInterval>();
    methods.instance<"beginPostPart", &PBPostURLRequest::beginPostPart>();
    methods.instance<"endPostPart", &PBPostURLRequest::endPostPart>();
    methods.instance<"postValue:forKey:", &PBPostURLRequest::postValue_forKey>();
    methods.instance<"postDictionary:", &PBPostURLRequest::postDictionary>();
    methods.instance<"postContentsOfFile:forKey:", &PBPostURLRequest::postContentsOfFile_forKey>();
    methods.instance<"postContentsOfFile:forKey:isEncode:",
                     &PBPostURLRequest::postContentsOfFile_forKey_isEncode>();
    methods
        .instance<"postData:asFile:forKey:isEncode:", &PBPostURLRequest::postData_asFile_forKey_isEncode>();
    methods.instance<"finalizePost", &PBPostURLRequest::finalizePost>();
}

namespace {

constexpr NSUInteger kFirstCapacity = 4096, kLineLength = 76;

// How many boundaries there were; a caller may fill requests on several threads, each on its own.
std::atomic<std::uint32_t> boundaryCount = 0;

}  // namespace

PBPostURLRequest::PBPostURLRequest() : _pbPostData(NSMutableData::initWithCapacity(kFirstCapacity)) {}
PBPostURLRequest::~PBPostURLRequest() = default;

// MARK: Creation

NSString* PBPostURLRequest::uniquePartBoundary() {
    const auto number = static_cast<int>(++boundaryCount);
    return NSString::stringWithFormat(u"PELVOR-%d-%d-BOUND"_ns, number, PBRandomInt());
}

Retained<PBPostURLRequest> PBPostURLRequest::initWithURL_cachePolicy_timeoutInterval(
    NSURL* url, NSURLRequestCachePolicy policy, NSTimeInterval timeout, Class* cls) {
    auto request = cast<PBPostURLRequest>(
        NSMutableURLRequest::initWithURL_cachePolicy_timeoutInterval(url, policy, timeout, cls));
    auto* boundary = cast<NSString>(send<id>(cls, "uniquePartBoundary"_sel));
    request->_pbPostBoundary = (boundary ? boundary : u"(null)"_ns)->copy();
    return request;
}

Retained<PBPostURLRequest> PBPostURLRequest::initWithURL(NSURL* url, Class* cls) {
    return initWithURL_cachePolicy_timeoutInterval(url, NSURLRequestUseProtocolCachePolicy, 60, cls);
}

PBPostURLRequest* PBPostURLRequest::requestWithURL_cachePolicy_timeoutInterval(NSURL* url,
                                                                               NSURLRequestCachePolicy policy,
                                                                               NSTimeInterval timeout,
                                                                               Class* cls) {
    return initWithURL_cachePolicy_timeoutInterval(url, policy, timeout, cls).autorelease();
}

PBPostURLRequest* PBPostURLRequest::requestWithURL(NSURL* url, Class* cls) {
    return initWithURL(url, cls).autorelease();
}

// MARK: Parts

void PBPostURLRequest::appendText(NSString* text) {
    if (!_pbPostData) return;
    std::string bytes = text->toUTF8();
    _pbPostData->appendBytes_length(bytes.data(), static_cast<NSUInteger>(bytes.size()));
}

void PBPostURLRequest::beginPostPart() {
    appendText(NSString::stringWithFormat(u"--%@"_ns, _pbPostBoundary));
    appendText(u"\n"_ns);
}

void PBPostURLRequest::endPostPart() { appendText(u"\n"_ns); }

void PBPostURLRequest::postValue_forKey(id value, NSString* key) {
    beginPostPart();
    NSString* head = NSString::stringWithFormat(u"Content-Disposition: form-data; name=\"%@\"\n\n"_ns, key);
    appendText(NSString::stringWithFormat(u"%@%@"_ns, head, value));
    endPostPart();
}

void PBPostURLRequest::postDictionary(NSDictionary* dictionary) {
    for (auto [key, value] : dictionary) {
        auto* name = cast<NSString>(key);
        postValue_forKey(value, name ? name : key->description());
    }
}

bool PBPostURLRequest::postContentsOfFile_forKey(NSString* path, NSString* key) {
    return postContentsOfFile_forKey_isEncode(path, key, true);
}

namespace {

// A regular file that is open, with the size that it had then.
class OpenFile {
  public:
    explicit OpenFile(NSString* path) {
        const char* bytes = NSFileManager::defaultManager()->fileSystemRepresentationWithPath(path);
        if (bytes) _file = ::open(bytes, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        struct stat status;
        _isRegular = _file >= 0 && ::fstat(_file, &status) == 0 && S_ISREG(status.st_mode);
        if (_isRegular) size = static_cast<std::uint64_t>(status.st_size);
    }
    ~OpenFile() {
        if (_file >= 0) ::close(_file);
    }
    OpenFile(const OpenFile&) = delete;

    bool isRegular() const { return _isRegular; }
    // Whether the file gave as many bytes as there are in the room.
    bool fill(std::span<std::byte> room) const {
        while (!room.empty()) {
            const ssize_t count = ::read(_file, room.data(), room.size());
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) return false;
            room = room.subspan(static_cast<std::size_t>(count));
        }
        return true;
    }
    bool isAtEnd() const {
        char byte;
        return ::read(_file, &byte, 1) == 0;
    }

    std::uint64_t size = 0;

  private:
    int _file = -1;
    bool _isRegular = false;
};

std::uint64_t lengthInBody(std::uint64_t size, bool isEncoded) {
    return isEncoded ? base64LengthInLines(size, kLineLength) : size;
}

std::uint8_t* writeEncoded(std::span<const std::byte> bytes, std::uint8_t* text) {
    return writeBase64Lines({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}, kLineLength,
                            text);
}

// Fills the room with the file, in Base64 or as it is. Returns whether the file had just that size.
bool writeFile(const OpenFile& file, bool isEncoded, std::span<std::byte> room) {
    if (!isEncoded) return file.fill(room) && file.isAtEnd();
    std::vector<std::byte> piece(kLineLength / 4 * 3 * 2048);  // of whole lines
    auto* text = reinterpret_cast<std::uint8_t*>(room.data());
    for (std::uint64_t left = file.size; left > 0; left -= piece.size()) {
        piece.resize(static_cast<std::size_t>(std::min<std::uint64_t>(left, piece.size())));
        if (!file.fill(piece)) return false;
        text = writeEncoded(piece, text);
    }
    return file.isAtEnd();
}

}  // namespace

// A subclass may have an operation of its own for the data. Otherwise a file goes into the body on the
// shortest way, if it keeps still.
bool PBPostURLRequest::postContentsOfFile_forKey_isEncode(NSString* path, NSString* key, bool isEncode) {
    if (path && _pbPostData && isa() == PBPostURLRequest::classObject()) {
        OpenFile file(path);
        const NSUInteger before = _pbPostData->length();
        if (file.isRegular() && beginFile(path, key, isEncode, lengthInBody(file.size, isEncode))) {
            const auto length = static_cast<NSUInteger>(lengthInBody(file.size, isEncode));
            if (writeFile(file, isEncode, {_pbPostData->extend(length), length})) {
                endPostPart();
                return true;
            }
            _pbPostData->setLength(before);
        }
    }
    auto data = NSData::initWithContentsOfFile(path);
    return data && postData_asFile_forKey_isEncode(data, path, key, isEncode);
}

bool PBPostURLRequest::postData_asFile_forKey_isEncode(NSData* data, NSString* file, NSString* key,
                                                       bool isEncode) {
    if (isEncode && !data) return false;
    if (!_pbPostData) return true;
    std::span<const std::byte> bytes = data ? data->span() : std::span<const std::byte>();
    const std::uint64_t length = lengthInBody(bytes.size(), isEncode);
    if (!beginFile(file, key, isEncode, length)) return false;
    if (isEncode)
        writeEncoded(bytes,
                     reinterpret_cast<std::uint8_t*>(_pbPostData->extend(static_cast<NSUInteger>(length))));
    else
        _pbPostData->appendData(data);
    endPostPart();
    return true;
}

// Begins the part of a file that takes `length` bytes. Adds nothing and returns false if the body would be
// too long.
bool PBPostURLRequest::beginFile(NSString* file, NSString* key, bool isEncode, std::uint64_t length) {
    NSString* name =
        file ? stringByLossyConversionToEncoding(file->lastPathComponent(), NSASCIIStringEncoding) : nullptr;
    NSString* head = NSString::stringWithFormat(
        u"Content-Disposition: form-data; name=\"%@\"; filename=\"%@\"\n%@"
        "Content-Type: application/octet-stream\n\n"_ns,
        key, name, isEncode ? u"Content-Transfer-Encoding: base64\n"_ns : u""_ns);
    const std::uint64_t framing = 3 * (std::uint64_t{head->length()} + _pbPostBoundary->length() + 4);
    if (_pbPostData->length() + length + framing > std::numeric_limits<NSUInteger>::max()) {
        errno = EFBIG;
        return false;
    }
    beginPostPart();
    appendText(head);
    return true;
}

void PBPostURLRequest::finalizePost() {
    appendText(NSString::stringWithFormat(u"--%@--"_ns, _pbPostBoundary));
    setHTTPMethod(u"POST"_ns);
    // The request takes the bytes over, so that nothing is copied.
    setHTTPBody(_pbPostData ? _pbPostData->takeBytes().get() : nullptr);
    addValue_forHTTPHeaderField(
        NSString::stringWithFormat(u"multipart/form-data; boundary=%@"_ns, _pbPostBoundary),
        u"Content-Type"_ns);
    _pbPostData = nullptr;
}

}  // namespace pelvor
