// SPDX-License-Identifier: Apache-2.0
// How long the tests go on that compare random steps with a model, or set very long texts.
#pragma once

#include <cstdlib>

namespace pelvor {

/// The usual number of steps or units, or what the environment's PELVOR_RANDOM_STEPS says.
inline int randomSteps(int usual) {
    const char* steps = std::getenv("PELVOR_RANDOM_STEPS");
    return steps ? std::atoi(steps) : usual;
}

}  // namespace pelvor
