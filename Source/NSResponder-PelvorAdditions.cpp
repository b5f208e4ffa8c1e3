// SPDX-License-Identifier: Apache-2.0
#include "NSResponder-PelvorAdditions.h"

#include "Interface/NSEvent.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSResponder>& methods) {
    methods.instance<"allowCapturingKeyboardShortcuts", &allowCapturingKeyboardShortcuts>();
    methods.instance<"captureKeyboardShortcut:", &captureKeyboardShortcut>();
}

}  // namespace

constinit const Category NSResponder_PelvorAdditions_category =
    Category::of<NSResponder, defineAdditions>("PelvorAdditions");

bool allowCapturingKeyboardShortcuts(NSResponder*) { return false; }

void captureKeyboardShortcut(NSResponder*, NSEvent*) {}

}  // namespace pelvor
