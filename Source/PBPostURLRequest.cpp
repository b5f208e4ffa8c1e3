// SPDX-License-Identifier: Apache-2.0
#include "PBPostURLRequest.h"

#include <atomic>
#include <cerrno>
#include <limits>

#include "BaseLibrary.h"
#include "Foundation/NSDictionary.h"
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
    for (auto [key, value] : dictionary) postValue_forKey(value, cast<NSString>(key));
}

bool PBPostURLRequest::postContentsOfFile_forKey(NSString* path, NSString* key) {
    return postContentsOfFile_forKey_isEncode(path, key, true);
}

bool PBPostURLRequest::postContentsOfFile_forKey_isEncode(NSString* path, NSString* key, bool isEncode) {
    auto data = NSData::initWithContentsOfFile(path);
    return data && postData_asFile_forKey_isEncode(data, path, key, isEncode);
}

bool PBPostURLRequest::postData_asFile_forKey_isEncode(NSData* data, NSString* file, NSString* key,
                                                       bool isEncode) {
    if (isEncode && !data) return false;
    if (!_pbPostData) return true;
    NSString* name =
        file ? stringByLossyConversionToEncoding(file->lastPathComponent(), NSASCIIStringEncoding) : nullptr;
    NSString* head = NSString::stringWithFormat(
        u"Content-Disposition: form-data; name=\"%@\"; filename=\"%@\"\n%@"
        "Content-Type: application/octet-stream\n\n"_ns,
        key, name, isEncode ? u"Content-Transfer-Encoding: base64\n"_ns : u""_ns);
    const std::size_t size = data ? data->length() : 0;
    const std::uint64_t written = isEncode ? base64LengthInLines(size, kLineLength) : size;
    const std::uint64_t framing = 3 * (std::uint64_t{head->length()} + _pbPostBoundary->length() + 4);
    if (_pbPostData->length() + written + framing > std::numeric_limits<NSUInteger>::max()) {
        errno = EFBIG;
        return false;
    }
    beginPostPart();
    appendText(head);
    // The text goes straight into the body, which is what a large file is about.
    if (isEncode)
        writeBase64Lines(
            {static_cast<const std::uint8_t*>(data->bytes()), size}, kLineLength,
            reinterpret_cast<std::uint8_t*>(_pbPostData->extend(static_cast<NSUInteger>(written))));
    else
        _pbPostData->appendData(data);
    endPostPart();
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
