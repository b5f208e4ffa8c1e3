// SPDX-License-Identifier: Apache-2.0
#include <charconv>
#include <cmath>

#include "Foundation/Strings/NumberText.h"

namespace pelvor {
namespace {

template <class Real>
std::string textOf(Real number) {
    Real size = std::fabs(number);
    bool isPlain = size == 0 || (size >= Real(1e-4) && size < Real(1e16));
    char text[48];
    auto format = isPlain ? std::chars_format::fixed : std::chars_format::scientific;
    return {text, std::to_chars(text, text + sizeof text, number, format).ptr};
}

}  // namespace

std::string numberText(double number) { return textOf(number); }

std::string numberText(float number) { return textOf(number); }

}  // namespace pelvor
