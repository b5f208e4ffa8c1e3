// SPDX-License-Identifier: Apache-2.0
#include "Foundation/URLs/URLTransfer.h"

#include <curl/curl.h>
#include <dlfcn.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "Foundation/NSData.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSURL.h"
#include "Runtime/NSException.h"

namespace pelvor {

// MARK: libcurl

// The functions of libcurl that we use. Nothing is linked to libcurl, so that a program that loads no URL
// never maps that library and what stands behind it.
struct CurlLibrary {
    decltype(&::curl_easy_init) easyInit;
    decltype(&::curl_easy_cleanup) easyCleanup;
    decltype(&::curl_easy_setopt) easySetOption;
    decltype(&::curl_easy_getinfo) easyGetInfo;
    decltype(&::curl_easy_strerror) easyErrorText;
    decltype(&::curl_multi_init) multiInit;
    decltype(&::curl_multi_cleanup) multiCleanup;
    decltype(&::curl_multi_setopt) multiSetOption;
    decltype(&::curl_multi_add_handle) multiAddHandle;
    decltype(&::curl_multi_remove_handle) multiRemoveHandle;
    decltype(&::curl_multi_info_read) multiInfoRead;
    decltype(&::curl_multi_perform) multiPerform;
    decltype(&::curl_multi_poll) multiPoll;
    decltype(&::curl_multi_socket_action) multiSocketAction;
    decltype(&::curl_multi_timeout) multiTimeout;
    decltype(&::curl_slist_append) listAppend;
    decltype(&::curl_slist_free_all) listFree;

    // The library, which stays loaded; null if the system has none that can be used.
    static const CurlLibrary* shared();
};

namespace {

bool load(CurlLibrary& curl) {
    void* code = nullptr;
    for (const char* name : {"libcurl.so.4", "libcurl-gnutls.so.4"})
        if (!code) code = ::dlopen(name, RTLD_NOW | RTLD_LOCAL);
    if (!code) return false;
    bool isComplete = true;
    auto find = [&]<class Function>(Function& function, const char* name) {
        function = reinterpret_cast<Function>(::dlsym(code, name));
        isComplete = isComplete && function;
    };
    find(curl.easyInit, "curl_easy_init");
    find(curl.easyCleanup, "curl_easy_cleanup");
    find(curl.easySetOption, "curl_easy_setopt");
    find(curl.easyGetInfo, "curl_easy_getinfo");
    find(curl.easyErrorText, "curl_easy_strerror");
    find(curl.multiInit, "curl_multi_init");
    find(curl.multiCleanup, "curl_multi_cleanup");
    find(curl.multiSetOption, "curl_multi_setopt");
    find(curl.multiAddHandle, "curl_multi_add_handle");
    find(curl.multiRemoveHandle, "curl_multi_remove_handle");
    find(curl.multiInfoRead, "curl_multi_info_read");
    find(curl.multiPerform, "curl_multi_perform");
    find(curl.multiPoll, "curl_multi_poll");
    find(curl.multiSocketAction, "curl_multi_socket_action");
    find(curl.multiTimeout, "curl_multi_timeout");
    find(curl.listAppend, "curl_slist_append");
    find(curl.listFree, "curl_slist_free_all");
    decltype(&::curl_global_init) globalInit = nullptr;
    find(globalInit, "curl_global_init");
    return isComplete && globalInit(CURL_GLOBAL_DEFAULT) == CURLE_OK;
}

}  // namespace

const CurlLibrary* CurlLibrary::shared() {
    static CurlLibrary curl;
    static const bool isLoaded = load(curl);
    return isLoaded ? &curl : nullptr;
}

namespace {

constexpr std::size_t kLongestHead = 256 << 10;
constexpr long kMostRedirections = 10;
constexpr double kSlowest = 1024;  // bytes a second

NSURLErrorCode errorCodeFor(CURLcode code) {
    switch (code) {
        case CURLE_URL_MALFORMAT:
            return NSURLErrorBadURL;
        case CURLE_UNSUPPORTED_PROTOCOL:
            return NSURLErrorUnsupportedURL;
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_RESOLVE_PROXY:
            return NSURLErrorCannotFindHost;
        case CURLE_COULDNT_CONNECT:
            return NSURLErrorCannotConnectToHost;
        case CURLE_OPERATION_TIMEDOUT:
            return NSURLErrorTimedOut;
        case CURLE_TOO_MANY_REDIRECTS:
            return NSURLErrorHTTPTooManyRedirects;
        case CURLE_FILESIZE_EXCEEDED:
        case CURLE_OUT_OF_MEMORY:  // what libcurl says of a line of the head that is too long for it
            return NSURLErrorDataLengthExceedsMaximum;
        case CURLE_GOT_NOTHING:
        case CURLE_PARTIAL_FILE:
        case CURLE_SEND_ERROR:
        case CURLE_RECV_ERROR:
            return NSURLErrorNetworkConnectionLost;
        case CURLE_WEIRD_SERVER_REPLY:
        case CURLE_BAD_CONTENT_ENCODING:
        case CURLE_HTTP2:
        case CURLE_HTTP2_STREAM:
            return NSURLErrorBadServerResponse;
        case CURLE_PEER_FAILED_VERIFICATION:
            return NSURLErrorServerCertificateUntrusted;
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_SSL_CIPHER:
            return NSURLErrorSecureConnectionFailed;
        default:
            return NSURLErrorUnknown;
    }
}

}  // namespace

URLTransfer::URLTransfer(NSURLRequest* request, Clock clock, Watch watch)
    : _curl(CurlLibrary::shared()), _request(request->copy()), _clock(clock), _start(clock()) {
    _lastMove = _start;
    NSURL* url = _request->URL();
    NSString* scheme = url ? url->scheme() : nullptr;
    if (!url)
        fail(NSURLErrorBadURL, "the request has no URL");
    else if (!scheme || !(scheme->isEqual(u"http"_ns) || scheme->isEqual(u"https"_ns)))
        fail(NSURLErrorUnsupportedURL, "only http and https URLs can be loaded");
    else if (_request->cachePolicy() == NSURLRequestReturnCacheDataDontLoad)
        fail(NSURLErrorResourceUnavailable, "nothing is kept in a cache");
    else if (!_curl || !prepare(watch))
        fail(NSURLErrorCannotLoadFromNetwork, "the system's libcurl cannot be used");
}

URLTransfer::~URLTransfer() {
    if (_easy && _multi) _curl->multiRemoveHandle(_multi, _easy);
    if (_easy) _curl->easyCleanup(_easy);
    if (_multi) _curl->multiCleanup(_multi);
    if (_headerFields) _curl->listFree(_headerFields);
}

// MARK: The request

// What libcurl calls. Nothing is thrown through libcurl.
struct URLTransfer::Callbacks {
    // Taking less than what arrived ends the load.
    template <bool (URLTransfer::*receive)(std::string_view)>
    static std::size_t take(char* bytes, std::size_t, std::size_t count, void* self) {
        try {
            return (static_cast<URLTransfer*>(self)->*receive)({bytes, count}) ? count : 0;
        } catch (const std::exception&) {  // no memory is left
            return 0;
        }
    }
    static int hearOfProgress(void* self, curl_off_t, curl_off_t, curl_off_t, curl_off_t sent) {
        auto* transfer = static_cast<URLTransfer*>(self);
        if (sent > transfer->_sent) transfer->moved(static_cast<std::uint64_t>(sent - transfer->_sent));
        transfer->_sent = sent;
        return 0;
    }
    static int watchSocket(CURL*, curl_socket_t descriptor, int what, void* self, void*) {
        auto* transfer = static_cast<URLTransfer*>(self);
        std::uint32_t events = 0;
        if (what == CURL_POLL_IN || what == CURL_POLL_INOUT) events |= NSDescriptorReadable;
        if (what == CURL_POLL_OUT || what == CURL_POLL_INOUT) events |= NSDescriptorWritable;
        try {
            if (transfer->_watch) transfer->_watch(descriptor, events);
        } catch (const NSException& exception) {
            transfer->fail(NSURLErrorUnknown, exception.reason());
        } catch (const std::exception&) {
            return -1;
        }
        return 0;
    }
};

template <class Option, class Value>
void URLTransfer::set(Option option, Value value) {
    _isUsable &= _curl->easySetOption(_easy, option, value) == CURLE_OK;
}

bool URLTransfer::prepare(const Watch& watch) {
    static_assert(sizeof _reason >= CURL_ERROR_SIZE);
    _easy = _curl->easyInit();
    _multi = _curl->multiInit();
    if (!_easy || !_multi) return false;
    NSURL* url = _request->URL();
    // Whoever asked for a safe answer does not get one that came over an unsafe road.
    const char* safe = "https";
    const char* any = "http,https";
    set(CURLOPT_URL, url->absoluteString()->toUTF8().c_str());
    set(CURLOPT_PROTOCOLS_STR, any);
    set(CURLOPT_REDIR_PROTOCOLS_STR, url->scheme()->isEqual(u"https"_ns) ? safe : any);
    set(CURLOPT_MAXREDIRS, kMostRedirections);
    set(CURLOPT_SSL_VERIFYPEER, 1L);
    set(CURLOPT_SSL_VERIFYHOST, 2L);
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_CONNECTTIMEOUT_MS, 0x7FFFFFFFL);  // deadline() knows better
    set(CURLOPT_USERAGENT, "Pelvor");
    set(CURLOPT_ERRORBUFFER, &_reason[0]);
    set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(_request->maximumResponseLength()));
    set(CURLOPT_HEADERFUNCTION, &Callbacks::take<&URLTransfer::receiveHead>);
    set(CURLOPT_HEADERDATA, this);
    set(CURLOPT_WRITEFUNCTION, &Callbacks::take<&URLTransfer::receiveBody>);
    set(CURLOPT_WRITEDATA, this);
    set(CURLOPT_NOPROGRESS, 0L);
    set(CURLOPT_XFERINFOFUNCTION, &Callbacks::hearOfProgress);
    set(CURLOPT_XFERINFODATA, this);
    prepareMethod();
    prepareHeaderFields();
    if (watch) {
        _watch = watch;
        _curl->multiSetOption(_multi, CURLMOPT_SOCKETFUNCTION, &Callbacks::watchSocket);
        _curl->multiSetOption(_multi, CURLMOPT_SOCKETDATA, this);
    }
    return _isUsable && _curl->multiAddHandle(_multi, _easy) == CURLM_OK;
}

void URLTransfer::prepareMethod() {
    NSData* body = _request->HTTPBody();
    std::string method = _request->HTTPMethod()->toUTF8();
    if (body || method == "POST") {
        set(CURLOPT_POST, 1L);
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body ? body->length() : 0));
        set(CURLOPT_POSTFIELDS, body && body->bytes() ? static_cast<const char*>(body->bytes()) : "");
    }
    if (method == "HEAD") set(CURLOPT_NOBODY, 1L);
    // Another method would be sent on without its body.
    const bool isPlain = method == "POST" || method == "HEAD" || (method == "GET" && !body);
    set(CURLOPT_FOLLOWLOCATION, isPlain ? 1L : 0L);
    if (!isPlain) set(CURLOPT_CUSTOMREQUEST, method.c_str());
}

void URLTransfer::prepareHeaderFields() {
    auto add = [this](const std::string& line) {
        if (curl_slist* longer = _curl->listAppend(_headerFields, line.c_str())) _headerFields = longer;
    };
    for (auto [key, value] : _request->allHTTPHeaderFields()) {
        auto* name = cast<NSString>(key);
        // What says how long the body is has to be true.
        if (!name->caseInsensitiveCompare(u"Content-Length"_ns) ||
            !name->caseInsensitiveCompare(u"Transfer-Encoding"_ns))
            continue;
        std::string text = cast<NSString>(value)->toUTF8();
        add(name->toUTF8() + (text.empty() ? ";" : ": " + text));
    }
    // A server that does not know this field would keep us waiting.
    if (!_request->valueForHTTPHeaderField(u"Expect"_ns)) add("Expect:");
    if (!_request->valueForHTTPHeaderField(u"Content-Type"_ns)) add("Content-Type:");
    if (_request->cachePolicy() == NSURLRequestReloadIgnoringCacheData &&
        !_request->valueForHTTPHeaderField(u"Cache-Control"_ns))
        add("Cache-Control: no-cache");
    set(CURLOPT_HTTPHEADER, _headerFields);
}

// MARK: The answer

namespace {

bool isWholeHead(std::string_view head) { return head.ends_with("\n\r\n") || head.ends_with("\n\n"); }

}  // namespace

bool URLTransfer::receiveHead(std::string_view line) {
    _headLength += line.size();
    moved(line.size());
    if (_headLength > kLongestHead) {
        fail(NSURLErrorDataLengthExceedsMaximum, "the head of the answer is too long");
        return false;
    }
    // What follows the body in pieces belongs to no head.
    if (_hasResponse || _isResponseTaken) return true;
    // Each answer on the way has a head of its own: "100 Continue", a redirection.
    if (line.starts_with("HTTP/")) _head.clear();
    _head += line;
    return true;
}

bool URLTransfer::receiveBody(std::string_view bytes) {
    _hasResponse = !_isResponseTaken;
    _bodyLength += bytes.size();
    moved(bytes.size());
    if (_bodyLength > _request->maximumResponseLength()) {
        fail(NSURLErrorDataLengthExceedsMaximum, "the answer is too long");
        return false;
    }
    auto* first = reinterpret_cast<const std::byte*>(bytes.data());
    _data.insert(_data.end(), first, first + bytes.size());
    return true;
}

Retained<NSHTTPURLResponse> URLTransfer::takeResponse() {
    if (!std::exchange(_hasResponse, false)) return nullptr;
    _isResponseTaken = true;
    const char* url = nullptr;
    _curl->easyGetInfo(_easy, CURLINFO_EFFECTIVE_URL, &url);
    NSURL* source = NSURL::URLWithString(NSString::ofUTF8(url ? url : ""));
    return NSHTTPURLResponse::initWithURL_head(source ? source : _request->URL(), _head);
}

std::vector<std::byte> URLTransfer::takeData() { return std::exchange(_data, {}); }

long long URLTransfer::takeSentBytes() { return _sent == _toldSent ? 0 : (_toldSent = _sent); }

// MARK: Time

void URLTransfer::moved(std::uint64_t bytes) {
    _moved += bytes;
    _lastMove = _clock();
}

NSTimeInterval URLTransfer::deadline() const {
    const NSTimeInterval timeout = _request->timeoutInterval();
    return std::min(_lastMove + timeout, _start + timeout + static_cast<double>(_moved) / kSlowest);
}

NSTimeInterval URLTransfer::nextMoment() {
    long milliseconds = -1;
    if (_multi) _curl->multiTimeout(_multi, &milliseconds);
    return milliseconds < 0 ? deadline()
                            : std::min(deadline(), _clock() + static_cast<double>(milliseconds) / 1000);
}

// MARK: Steps

void URLTransfer::wait() {
    if (_isEnded) return;
    int running = 0;
    _curl->multiPerform(_multi, &running);
    settle();
    if (_isEnded || hasNews()) return;
    const NSTimeInterval seconds = std::clamp(nextMoment() - _clock(), 0.0, 60.0);
    _curl->multiPoll(_multi, nullptr, 0, static_cast<int>(std::ceil(seconds * 1000)), nullptr);
}

void URLTransfer::act(int descriptor) {
    static_assert(kNoDescriptor == CURL_SOCKET_TIMEOUT);
    if (_isEnded) return;
    int running = 0;
    _curl->multiSocketAction(_multi, descriptor, 0, &running);
    settle();
}

// Finds out whether the transfer has ended.
void URLTransfer::settle() {
    int count = 0;
    while (CURLMsg* message = _curl->multiInfoRead(_multi, &count))
        if (message->msg == CURLMSG_DONE) finish(message->data.result);
    if (!_isEnded && _clock() >= deadline()) fail(NSURLErrorTimedOut, "the server did not answer in time");
}

void URLTransfer::fail(NSURLErrorCode code, const std::string& reason) {
    if (_isEnded) return;
    _isEnded = true;
    _error = NSURLError::create(code, reason);
}

void URLTransfer::finish(int result) {
    auto code = static_cast<CURLcode>(result);
    // An answer that is not HTTP counts as the protocol of very old servers; a head came with a redirection.
    if (code == CURLE_UNSUPPORTED_PROTOCOL && _head.empty()) code = CURLE_WEIRD_SERVER_REPLY;
    if (code != CURLE_OK) return fail(errorCodeFor(code), _reason[0] ? _reason : _curl->easyErrorText(code));
    if (_isEnded) return;
    // libcurl takes a head that breaks off for a whole one.
    if (!isWholeHead(_head))
        return fail(NSURLErrorNetworkConnectionLost, "the head of the answer is cut off");
    _isEnded = true;
    _hasResponse = !_isResponseTaken;
}

}  // namespace pelvor
