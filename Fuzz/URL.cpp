// SPDX-License-Identifier: Apache-2.0
// URLs: what is accepted, resolved and named must agree with itself, and with the rules for single
// characters.
#include <string>
#include <string_view>

#include "Foundation/NSData.h"
#include "Foundation/NSHTTPURLResponse.h"
#include "Foundation/NSString-URL.h"
#include "Foundation/NSURL.h"
#include "Require.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

void checkURL(NSURL* url) {
    const std::string text = url->absoluteString()->toUTF8();
    require(text.find_first_of(" \"<>\\^`{|}\n\r\t") == text.npos, "a character that no URL has");
    for (char c : text) require(c > 0x20 && c < 0x7F, "a character beyond ASCII");
    NSURL* same = NSURL::URLWithString(url->absoluteString());
    require(same && same->isEqual(url) && same->hash() == url->hash(), "another URL of the same text");
    for (NSString* part : {url->scheme(), url->user(), url->password(), url->host(), url->path(),
                           url->query(), url->fragment(), url->resourceSpecifier()})
        if (part) (void)part->length();
    if (url->scheme()) {
        // An absolute URL means the same everywhere, and resolving it once more changes nothing.
        NSURL* base = NSURL::URLWithString(u"http://a/b/c/d;p?q"_ns);
        NSURL* resolved = NSURL::URLWithString_relativeToURL(url->absoluteString(), base);
        require(resolved, "resolving makes no URL");
        NSURL* again = NSURL::URLWithString_relativeToURL(resolved->absoluteString(), base);
        require(again && again->isEqual(resolved), "resolving twice is another URL");
    }
}

void run(std::string_view bytes) {
    const std::size_t end = std::min(bytes.find('\n'), bytes.size());
    NSString* first = NSString::ofUTF8(bytes.substr(0, end));
    NSString* second = NSString::ofUTF8(bytes.substr(std::min(end + 1, bytes.size())));
    NSURL *base = NSURL::URLWithString(first), *reference = NSURL::URLWithString(second);
    if (base) checkURL(base);
    if (reference) checkURL(reference);
    if (base && base->scheme()) {
        NSURL* joined = NSURL::URLWithString_relativeToURL(second, base);
        require(!joined || reference, "a reference that is none was resolved");
        if (joined) checkURL(joined);
    }
    NSString* escaped = stringByAddingPercentEscapesUsingEncoding(second, NSUTF8StringEncoding);
    if (escaped) {
        NSString* back = stringByReplacingPercentEscapesUsingEncoding(escaped, NSUTF8StringEncoding);
        require(back && back->isEqualToString(second), "escapes that cannot be taken back");
        require(!second->length() || NSURL::URLWithString(NSString::ofUTF8("x:/y/" + escaped->toUTF8())),
                "an escaped text in no URL");
    }
    NSURL* file = NSURL::fileURLWithPath(NSString::ofUTF8("/" + second->toUTF8()));
    require(file, "a path without a URL");
    NSString* path = file->path();
    while (second->hasSuffix(u"/"_ns)) second = second->substringToIndex(second->length() - 1);
    require(path->isEqualToString(NSString::ofUTF8("/" + second->toUTF8())), "another path");
    auto response = NSHTTPURLResponse::initWithURL_head(base, bytes);
    require(response->expectedContentLength() >= -1 && response->statusCode() >= 0,
            "a number below its bounds");
}

}  // namespace
}  // namespace pelvor

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pelvor::AutoreleasePool pool;
    pelvor::run({reinterpret_cast<const char*>(data), size});
    return 0;
}
