// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSProcessInfo.h"

#include <sys/random.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>

#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSProcessInfo, foundationLibrary) {
    methods.classLevel<"processInfo", &NSProcessInfo::processInfo>();
    methods.instance<"processName", &NSProcessInfo::processName>();
    methods.instance<"processIdentifier", &NSProcessInfo::processIdentifier>();
    methods.instance<"arguments", &NSProcessInfo::arguments>();
    methods.instance<"environment", &NSProcessInfo::environment>();
    methods.instance<"globallyUniqueString", &NSProcessInfo::globallyUniqueString>();
}

NSProcessInfo* NSProcessInfo::processInfo() {
    static NSProcessInfo* const info = make<NSProcessInfo>().leak();
    return info;
}

NSString* NSProcessInfo::processName() { return NSString::ofUTF8(program_invocation_short_name); }

int NSProcessInfo::processIdentifier() { return getpid(); }

NSArray* NSProcessInfo::arguments() {
    auto* arguments = NSMutableArray::array();
    std::ifstream file("/proc/self/cmdline", std::ios::binary);
    for (std::string argument; std::getline(file, argument, '\0');)
        arguments->addObject(NSString::ofUTF8(argument));
    return arguments;
}

NSDictionary* NSProcessInfo::environment() {
    auto* variables = NSMutableDictionary::dictionary();
    for (char** entry = environ; entry && *entry; ++entry) {
        const char* equals = std::strchr(*entry, '=');
        if (!equals) continue;
        std::string_view name(*entry, static_cast<std::size_t>(equals - *entry));
        variables->setObject_forKey(NSString::ofUTF8(equals + 1), NSString::ofUTF8(name));
    }
    return variables;
}

// 128 random bits would do. Process and count tell a child from the process of which it is a copy.
NSString* NSProcessInfo::globallyUniqueString() {
    static std::atomic<std::uint32_t> count{0};
    std::uint32_t random[4] = {};
    for (std::size_t filled = 0; filled < sizeof random;) {
        ssize_t got = getrandom(reinterpret_cast<char*>(random) + filled, sizeof random - filled, 0);
        if (got < 0 && errno != EINTR) break;
        if (got > 0) filled += static_cast<std::size_t>(got);
    }
    return NSString::stringWithFormat(u"%08X-%08X-%08X-%08X-%d-%08X"_ns, random[0], random[1], random[2],
                                      random[3], getpid(), count.fetch_add(1));
}

}  // namespace pelvor
