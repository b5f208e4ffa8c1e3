// SPDX-License-Identifier: Apache-2.0
#include "PBOnlineSupport.h"

#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "Foundation/NSBundle.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSURL-Contents.h"
#include "Foundation/NSURL.h"
#include "NSString-PelvorAdditions.h"
#include "PBUtil.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {

// MARK: What the application says of itself

namespace {

id information(NSString* key) { return NSBundle::mainBundle()->infoDictionary()->objectForKey(key); }

// The text under the key, or else `otherwise`. Kept, unless null, in `kept` for the life of the process.
NSString* keptText(NSString*& kept, NSString* key, NSString* otherwise = nullptr) {
    if (kept) return kept;
    auto* text = cast<NSString>(information(key));
    if (!text) text = otherwise;
    if (text) kept = text->copy().leak();
    return kept;
}

}  // namespace

std::int32_t PBLogicalReleaseNumber() {
    id number = information(u"PBReleaseNumber"_ns);
    if (auto* text = cast<NSString>(number)) return text->intValue();
    return cast<NSNumber>(number) ? cast<NSNumber>(number)->intValue() : 0;
}

NSString* PBPelvorWriterApplicationName() {
    static NSString* kept = nullptr;
    return keptText(kept, u"CFBundleExecutable"_ns);
}

NSString* PBPelvorWriterDisplayVersion() {
    static NSString* kept = nullptr;
    return keptText(kept, u"CFBundleShortVersionString"_ns);
}

NSString* PBPelvorWriterInternalVersion() {
    static NSString* kept = nullptr;
    return keptText(kept, u"PBInternalVersion"_ns, u"99.9"_ns);
}

// MARK: Numbers of the version

namespace {

constexpr std::uint32_t kLargestComponent = 99, kNoVersion = 999999;

std::uint32_t releaseIn(NSString* version) {
    NSCharacterSet* others = NSCharacterSet::decimalDigitCharacterSet()->invertedSet();
    std::uint32_t components[3] = {};
    NSUInteger start = 0;
    for (std::uint32_t& component : components) {
        const NSRange rest{start, version->length() - start};
        NSRange stop = version->rangeOfCharacterFromSet_options_range(others, NSLiteralSearch, rest);
        const NSUInteger end = stop.location == NSNotFound ? version->length() : stop.location;
        const int value = version->substringWithRange({start, end - start})->intValue();
        component = std::min(static_cast<std::uint32_t>(value), kLargestComponent);
        if (end == version->length() || version->characterAtIndex(end) != u'.') break;
        start = end + 1;
    }
    const std::uint32_t release = components[0] * 10000 + components[1] * 100 + components[2];
    return release ? release : kNoVersion;
}

// 0 for a letter that stands for no stage.
std::uint32_t stageOf(unichar letter) {
    const std::size_t place = std::u16string_view(u"abpf").find(letter);
    return place == std::u16string_view::npos ? 0 : static_cast<std::uint32_t>(place) + 1;
}

std::uint32_t preReleaseIn(NSString* version) {
    StringUnits units(version);
    NSCharacterSet* digits = NSCharacterSet::decimalDigitCharacterSet();
    NSUInteger place = 0;
    while (place < units.size() && (units[place] == u'.' || digits->characterIsMember(units[place]))) ++place;
    if (place == units.size() || units[place] == u' ') return 0;
    const std::uint32_t stage = stageOf(units[place]);
    const bool hasNumber = place + 1 < units.size();
    if (!stage || !hasNumber) NSLog(u"*** bad version string %@"_ns, version);
    if (!stage) return 0;
    const int number = hasNumber ? intValueAtIndex_effectiveRange(version, place + 1, nullptr) : 0;
    return stage * 10000 + static_cast<std::uint32_t>(number);
}

}  // namespace

std::uint32_t PBPelvorWriterInternalIntVersion() {
    static const std::uint32_t kept = releaseIn(PBPelvorWriterInternalVersion());
    return kept;
}

std::uint32_t PBPelvorWriterInternalPreReleaseIntVersion() {
    static const std::uint32_t kept = preReleaseIn(PBPelvorWriterInternalVersion());
    return kept;
}

// MARK: Online information

NSString* PBAppOnlineInfoDictionaryProductName() { return PBPelvorWriterApplicationName(); }

NSURL* PBOnlineInfoDictionaryURL() { return NSURL::URLWithString(_PBDoLocalize(u"UpdatesURL"_ns, nullptr)); }

NSDictionary* PBOnlineInfoDictionaryForProduct(NSString* product, NSString** reason) {
    NSDictionary* all =
        NSDictionary_URLContents::dictionaryWithContentsOfURL_reason(PBOnlineInfoDictionaryURL(), reason);
    if (!all) return nullptr;
    auto* own = cast<NSDictionary>(all->objectForKey(product));
    return own ? own : NSDictionary::dictionary();
}

NSDictionary* PBOnlineInfoDictionary(NSString** reason) {
    return PBOnlineInfoDictionaryForProduct(PBAppOnlineInfoDictionaryProductName(), reason);
}

// MARK: Reachability

namespace {

constexpr double kLongestLookup = 5;
constexpr int kMostLookups = 8;
std::atomic<int> lookups = 0;

using Addresses = std::vector<sockaddr_storage>;

Addresses addressesOf(const std::string& host) {
    addrinfo wanted{}, *found = nullptr;
    wanted.ai_socktype = SOCK_DGRAM;
    // Any port will do, since nothing is sent.
    if (::getaddrinfo(host.c_str(), "9", &wanted, &found) != 0) return {};
    Addresses addresses;
    for (addrinfo* each = found; each; each = each->ai_next)
        std::memcpy(&addresses.emplace_back(), each->ai_addr,
                    std::min<std::size_t>(each->ai_addrlen, sizeof(sockaddr_storage)));
    ::freeaddrinfo(found);
    return addresses;
}

// Looking up a name cannot be broken off. The thread keeps nothing of the caller's, who may be gone.
Addresses addressesWithin(const std::string& host, double seconds) {
    if (++lookups > kMostLookups) {
        --lookups;
        return {};
    }
    std::promise<Addresses> promise;
    std::future<Addresses> future = promise.get_future();
    try {
        std::thread([host, promise = std::move(promise)]() mutable {
            Addresses addresses = addressesOf(host);
            --lookups;
            promise.set_value(std::move(addresses));
        }).detach();
    } catch (const std::system_error&) {
        --lookups;
        return {};
    }
    const bool isThere = future.wait_for(std::chrono::duration<double>(seconds)) == std::future_status::ready;
    return isThere ? future.get() : Addresses();
}

// The kernel looks for a route when a datagram socket is given its peer.
bool hasRoute(const sockaddr_storage& address) {
    const int socket = ::socket(address.ss_family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (socket < 0) return false;
    const auto length =
        static_cast<socklen_t>(address.ss_family == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6));
    const bool isFound = ::connect(socket, reinterpret_cast<const sockaddr*>(&address), length) == 0;
    ::close(socket);
    return isFound;
}

}  // namespace

bool PBIsNetworkHostOnlineWithin(NSString* host, double seconds) {
    std::string name = host ? host->toUTF8() : "";
    name.resize(std::min(name.find('\0'), name.size()));
    return !name.empty() && std::ranges::any_of(addressesWithin(name, seconds), hasRoute);
}

bool PBIsNetworkHostOnline(NSString* host) { return PBIsNetworkHostOnlineWithin(host, kLongestLookup); }

}  // namespace pelvor
