// SPDX-License-Identifier: Apache-2.0
// Parts of property lists as arguments of messages; for Foundation's own sources.
#pragma once

#include <cstddef>

#include "Runtime/Object.h"

namespace pelvor {

struct ArgumentLayout;

/// Writes the value to the place as the argument's type: a number or a text as a number, a text as a truth
/// value, a selector or a class, an array of numbers as a struct whose fields are all of one type. Throws
/// InterfaceFault, with only a reason, if the value cannot become such an argument. Not for arguments that
/// are objects.
void writePlainArgument(id value, const ArgumentLayout& argument, std::byte* place);

}  // namespace pelvor
