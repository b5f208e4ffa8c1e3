// SPDX-License-Identifier: Apache-2.0
#include "NSEvent-PelvorAdditions.h"

#include "Runtime/Registry.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSEvent>& methods) {
    methods.classLevel<"isCommandKeyDown", &NSEvent_PelvorAdditions::isCommandKeyDown>();
    methods.classLevel<"isShiftKeyDown", &NSEvent_PelvorAdditions::isShiftKeyDown>();
    methods.classLevel<"isOptionKeyDown", &NSEvent_PelvorAdditions::isOptionKeyDown>();
}

bool isDown(std::uint32_t key) { return (GetCurrentKeyModifiers() & key) != 0; }

}  // namespace

constinit const Category NSEvent_PelvorAdditions_category =
    Category::of<NSEvent, defineAdditions>("PelvorAdditions");

bool NSEvent_PelvorAdditions::isCommandKeyDown() { return isDown(kKeyModifierCommand); }
bool NSEvent_PelvorAdditions::isShiftKeyDown() { return isDown(kKeyModifierShift); }
bool NSEvent_PelvorAdditions::isOptionKeyDown() { return isDown(kKeyModifierOption); }

}  // namespace pelvor
