// SPDX-License-Identifier: Apache-2.0
// Numbers as text, whatever the process's locale.
#pragma once

#include <string>

namespace pelvor {

/// The shortest text that reads as this number: "0.1", "-2.5", "1e+20", "inf", "nan".
std::string numberText(double number);
std::string numberText(float number);

}  // namespace pelvor
