// SPDX-License-Identifier: Apache-2.0
// PBSingleObjectEnumerator: an enumerator of one object.
#pragma once

#include "Foundation/NSEnumerator.h"

namespace pelvor {

/// An enumerator that returns one object. It retains the object until `nextObject` returns it. For one thread
/// at a time.
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
