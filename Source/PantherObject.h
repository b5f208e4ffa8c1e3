// SPDX-License-Identifier: Apache-2.0
// PantherObject: the root class with `setValue:forKey:`, for older platforms.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

/// Gives all objects `setValue:forKey:` on platforms that have only the older `takeValue:forKey:`, to which
/// the operation hands its arguments on; see PantherCompatibility.h.
class PELVOR_EXPORT PantherObject : public NSObject {
    PELVOR_CLASS(PantherObject, NSObject);

  public:
    /// Takes the place of NSObject on old platforms.
    static void performPosing();

  protected:
    PantherObject() = default;
    ~PantherObject() = default;
};

}  // namespace pelvor
