// SPDX-License-Identifier: Apache-2.0
// Numbers as text, in the same way in every locale.
#pragma once

#include <string>

namespace pelvor {

/// The shortest text from which this number is read again: "0.1", "-2.5", "1e+20", "inf", "nan".
std::string numberText(double number);
std::string numberText(float number);

}  // namespace pelvor
