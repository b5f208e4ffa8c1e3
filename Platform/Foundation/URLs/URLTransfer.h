// SPDX-License-Identifier: Apache-2.0
// URLTransfer: a request on its way to the server and the answer on its way back; for NSURLConnection.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Foundation/NSDate.h"
#include "Foundation/NSHTTPURLResponse.h"
#include "Foundation/NSURLError.h"
#include "Foundation/NSURLRequest.h"

struct curl_slist;

namespace pelvor {

struct CurlLibrary;

/// One load. Nothing of what arrives is handed on before the library has returned, so whoever drives the
/// transfer may do with it what he likes, between two steps.
class URLTransfer {
  public:
    /// The clock tells the moments of the time-outs, in seconds.
    using Clock = NSTimeInterval (*)();
    /// The descriptor is to be watched for these of NSDescriptorEvents, or with 0 no longer.
    using Watch = std::function<void(int descriptor, std::uint32_t events)>;

    /// Without a `watch`, the transfer is driven by `wait`. A request that cannot be sent gives a transfer
    /// that has ended.
    URLTransfer(NSURLRequest* request, Clock clock, Watch watch = nullptr);
    ~URLTransfer();
    URLTransfer(const URLTransfer&) = delete;
    URLTransfer& operator=(const URLTransfer&) = delete;

    /// Waits until there is something to do, and does it.
    void wait();
    /// Does what there is to do for the descriptor that is ready, or with `kNoDescriptor` for the time that
    /// has passed.
    void act(int descriptor);
    static constexpr int kNoDescriptor = -1;
    /// When `act` has to be called at the latest, by the clock.
    NSTimeInterval nextMoment();
    /// Forgets the watch: whoever watched ends before the transfer does.
    void stopWatching() { _watch = nullptr; }

    bool isEnded() const { return _isEnded; }
    /// Why the transfer failed; null while it goes on, and if it succeeded.
    NSURLError* error() const { return _error; }

    // What is new since the last call.

    Retained<NSHTTPURLResponse> takeResponse();
    std::vector<std::byte> takeData();
    /// How many bytes of the body have been sent; 0 if there are none that were not told.
    long long takeSentBytes();
    bool hasNews() const { return _isEnded || _hasResponse || !_data.empty() || _sent != _toldSent; }

  private:
    struct Callbacks;

    bool prepare(const Watch& watch);
    void prepareHeaderFields();
    void prepareMethod();
    template <class Option, class Value>
    void set(Option option, Value value);
    bool receiveHead(std::string_view line);
    bool receiveBody(std::string_view bytes);
    void moved(std::uint64_t bytes);
    NSTimeInterval deadline() const;
    void settle();
    void fail(NSURLErrorCode code, const std::string& reason);
    void finish(int code);

    const CurlLibrary* _curl;
    Retained<NSURLRequest> _request;
    Clock _clock;
    Watch _watch;
    void* _easy = nullptr;   // libcurl's: this load
    void* _multi = nullptr;  // what drives it
    curl_slist* _headerFields = nullptr;
    char _reason[256] = "";

    std::string _head;
    std::size_t _headLength = 0;  // of the heads of all answers
    std::vector<std::byte> _data;
    std::uint64_t _bodyLength = 0;
    long long _sent = 0, _toldSent = 0;
    bool _isUsable = true, _hasResponse = false, _isResponseTaken = false, _isEnded = false;
    Retained<NSURLError> _error;

    std::uint64_t _moved = 0;
    NSTimeInterval _start = 0, _lastMove = 0;
};

}  // namespace pelvor
