// SPDX-License-Identifier: Apache-2.0
#include "NSWorkspace-PelvorAdditions.h"

#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineAdditions(MethodTable<NSWorkspace>& methods) {
    methods.instance<"fullPathForApplicationWithCreatorCode:", &fullPathForApplicationWithCreatorCode>();
}

}  // namespace

constinit const Category NSWorkspace_PelvorAdditions_category =
    Category::of<NSWorkspace, defineAdditions>("PelvorAdditions");

NSString* fullPathForApplicationWithCreatorCode(NSWorkspace*, std::uint32_t) { return nullptr; }

}  // namespace pelvor
