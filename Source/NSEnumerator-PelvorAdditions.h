// SPDX-License-Identifier: Apache-2.0
// Additions to enumerators: an enumerator of one object.
#pragma once

#include "Foundation/NSEnumerator.h"

namespace pelvor {

struct Category;

/// Class operations of enumerators. Results are borrowed.
///
///     // An operation that walks over the pages of a selection walks over a single page, too.
///     markPages(NSEnumerator_PelvorAdditions::enumeratorWithObject(page));
struct PELVOR_EXPORT NSEnumerator_PelvorAdditions {
    /// An enumerator that returns no objects.
    static NSEnumerator* enumerator();
    /// An enumerator that returns the object, or no object if `object` is null.
    static NSEnumerator* enumeratorWithObject(id object);
};

extern const Category NSEnumerator_PelvorAdditions_category;

}  // namespace pelvor
