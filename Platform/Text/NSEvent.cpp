// SPDX-License-Identifier: Apache-2.0
#include "Text/NSEvent.h"

#include <atomic>

#include "Text/TextLibrary.h"

namespace pelvor {
namespace {

constinit std::atomic<KeyModifierSource> keyModifierSource{nullptr};

}  // namespace

PELVOR_DEFINE_CLASS(NSEvent, textLibrary) {}

void setKeyModifierSource(KeyModifierSource source) { keyModifierSource = source; }

std::uint32_t GetCurrentKeyModifiers() {
    KeyModifierSource source = keyModifierSource;
    return source ? source() : 0;
}

}  // namespace pelvor
