// SPDX-License-Identifier: Apache-2.0
// Windows that are painted into memory, and text for them.
#pragma once

#include <string>

#include "Foundation/NSRunLoop.h"
#include "Interface/Backend/DisplayConnection.h"
#include "Interface/Backend/HeadlessBackend.h"
#include "Interface/NSApplication.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {

/// The back end of this process, which the first call opens.
inline HeadlessBackend& screenlessBackend() {
    static HeadlessBackend* backend = nullptr;
    if (!backend) {
        DisplayConnection::open([](BackendSink& sink) {
            auto made = std::make_unique<HeadlessBackend>(sink);
            backend = made.get();
            return made;
        });
        NSApplication::sharedApplication()->deliverEventsInRunLoop();
    }
    return *backend;
}

/// Does what is to be done, idle work too.
inline void turnScreenless() {
    AutoreleasePool pool;
    while (NSRunLoop::mainRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode)) {
    }
}

/// A key comes, and waits to be handled.
inline void sendKey(char16_t unit) {
    BackendKey key;
    key.characters = key.charactersIgnoringModifiers = key.shortcutCharacters = std::u16string(1, unit);
    if (unit < 0x100) key.symbol = unit;
    screenlessBackend().key(key);
}

/// English words in paragraphs of 550 letters.
inline std::string paragraphsOf(std::size_t length) {
    static const char* const words[] = {"The",  "quick", "brown", "fox", "jumps",
                                        "over", "a",     "lazy",  "dog", "and"};
    std::string made;
    for (std::size_t i = 0, paragraph = 0; made.size() < length; ++i) {
        made += words[(i * 7 + i / 9) % 10];
        made += made.size() - paragraph > 550 ? '\n' : ' ';
        if (made.back() == '\n') paragraph = made.size();
    }
    return made;
}

}  // namespace pelvor
