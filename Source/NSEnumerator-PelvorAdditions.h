// SPDX-License-Identifier: Apache-2.0
// Additions to enumerators: an enumerator of one object.
#pragma once

#include "Foundation/NSEnumerator.h"

namespace pelvor {

struct Category;

/// Class operations of enumerators. Results are borrowed.
struct PELVOR_EXPORT NSEnumerator_PelvorAdditions {
    /// An enumerator that returns no objects.
    static NSEnumerator* enumerator();
    /// An enumerator that returns the object, or nothing if that is null.
    static NSEnumerator* enumeratorWithObject(id object);
};

extern const Category NSEnumerator_PelvorAdditions_category;

/// An enumerator that returns one object, which it retains until then. For one thread at a time.
class PELVOR_EXPORT PBSingleObjectEnumerator : public NSEnumerator {
    PELVOR_CLASS(PBSingleObjectEnumerator, NSEnumerator);
    PELVOR_CREATORS(initWithObject);

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
