// SPDX-License-Identifier: Apache-2.0
#include "Foundation/SystemVersion.h"

#include <sys/utsname.h>

#include <algorithm>
#include <atomic>

namespace pelvor {
namespace {

// The code that the host has set; 0 if it has not set one.
std::atomic<int> currentCode{0};

// Reads the number at `text`, at most `limit`, and moves `text` past the number and a full stop behind it.
int readNumber(const char*& text, int limit) {
    int number = 0;
    for (; *text >= '0' && *text <= '9'; ++text) number = std::min(number * 10 + (*text - '0'), limit);
    if (*text == '.') ++text;
    return number;
}

}  // namespace

int systemVersionCodeOfRelease(const char* release) {
    if (!release) return 0;
    int major = readNumber(release, 99);
    int minor = readNumber(release, 9);
    int fix = readNumber(release, 9);
    return major / 10 << 12 | major % 10 << 8 | minor << 4 | fix;
}

int systemVersionCode() {
    if (int code = currentCode.load(std::memory_order_relaxed)) return code;
    utsname names;
    return uname(&names) == 0 ? systemVersionCodeOfRelease(names.release) : 0;
}

void setSystemVersionCode(int code) { currentCode.store(code & 0xFFFF, std::memory_order_relaxed); }

}  // namespace pelvor
