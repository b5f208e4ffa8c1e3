// SPDX-License-Identifier: Apache-2.0
#include "NSRunLoop-PelvorAdditions.h"

#include "Foundation/NSArray.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSRunLoop>& methods) {
    methods.classLevel<"performSelector:target:argument:order:",
                       &NSRunLoop_PelvorAdditions::performSelector_target_argument_order>();
}

}  // namespace

constinit const Category NSRunLoop_PelvorAdditions_category =
    Category::of<NSRunLoop, defineAdditions>("PelvorAdditions");

void NSRunLoop_PelvorAdditions::performSelector_target_argument_order(SEL selector, id target, id argument,
                                                                      std::uint32_t order) {
    requireArgument(target, "performSelector:target:argument:order:", "the target");
    static NSArray* const modes = NSArray::initWithObjects({NSDefaultRunLoopMode}).leak();
    NSRunLoop::currentRunLoop()->performSelector_target_argument_order_modes(selector, target, argument,
                                                                             order, modes);
}

}  // namespace pelvor
