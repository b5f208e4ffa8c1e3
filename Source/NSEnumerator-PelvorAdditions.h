// SPDX-License-Identifier: Apache-2.0
// Enumerators of one object or none.
#pragma once

#include "Foundation/NSEnumerator.h"

namespace pelvor {

struct Category;

struct PELVOR_EXPORT NSEnumerator_PelvorAdditions {
    /// A borrowed enumerator without objects.
    static NSEnumerator* enumerator();
    /// A borrowed enumerator of the object; of nothing for none.
    static NSEnumerator* enumeratorWithObject(id object);
};

extern const Category NSEnumerator_PelvorAdditions_category;

/// Hands out one object, which it retains until then. One thread.
class PELVOR_EXPORT PBSingleObjectEnumerator : public NSEnumerator {
    PELVOR_CLASS(PBSingleObjectEnumerator, NSEnumerator);

  public:
    static Retained<PBSingleObjectEnumerator> initWithObject(id object, Class* cls = classObject());
    id nextObject() override;

  protected:
    PBSingleObjectEnumerator() = default;
    ~PBSingleObjectEnumerator() = default;

  private:
    Retained<Object> _object;
};

}  // namespace pelvor
