// SPDX-License-Identifier: Apache-2.0
// PBUtil_Dummy: the hook that makes the shared character sets.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

/// The class whose hook makes the shared character sets (PBUtil.h). A host has no use for the class itself.
class PELVOR_EXPORT PBUtil_Dummy : public NSObject {
    PELVOR_CLASS(PBUtil_Dummy, NSObject);

  public:
    static void load() {}
    /// A hook of the load-time sequence.
    static void didLoad();

  protected:
    PBUtil_Dummy() = default;
    ~PBUtil_Dummy() = default;
};

}  // namespace pelvor
