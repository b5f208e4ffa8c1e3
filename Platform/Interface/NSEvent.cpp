// SPDX-License-Identifier: Apache-2.0
#include "Interface/NSEvent.h"

#include <atomic>

#include "Interface/InterfaceLibrary.h"

namespace pelvor {
namespace {

constinit std::atomic<KeyModifierSource> keyModifierSource{nullptr};

}  // namespace

PELVOR_DEFINE_CLASS(NSEvent, interfaceLibrary) {}

void setKeyModifierSource(KeyModifierSource source) { keyModifierSource = source; }

std::uint32_t GetCurrentKeyModifiers() {
    KeyModifierSource source = keyModifierSource;
    return source ? source() : 0;
}

}  // namespace pelvor
