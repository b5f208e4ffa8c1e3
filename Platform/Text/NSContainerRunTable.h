// SPDX-License-Identifier: Apache-2.0
// NSContainerRunTable: which glyphs stand in which text container.
#pragma once

#include "Foundation/NSRange.h"
#include "Foundation/ObjectPrinting.h"
#include "Runtime/Class.h"

namespace pelvor {

class LayoutState;
class NSTextContainer;

/// An element of a container run table.
struct NSContainerRun {
    Unretained<NSTextContainer> container = nullptr;
};

/// Which glyphs stand in which text container, as far as the layout knows: a run array over glyph indexes.
///
///     NSRange run;
///     const NSContainerRun* element = table->elementAtIndex_effectiveRange(0, &run);   // the first page
///
/// It shows the layout manager's present state, and nothing once that ended.
class PELVOR_EXPORT NSContainerRunTable : public NSObject {
    PELVOR_CLASS(NSContainerRunTable, NSObject);
    PELVOR_CREATORS(forState);

  public:
    /// The number of glyphs that are in the table.
    NSUInteger count();
    /// The run that holds the glyph; null for an index at or past the count. Its glyphs are written to the
    /// pointer unless that is null.
    const NSContainerRun* elementAtIndex_effectiveRange(NSUInteger index, NSRange* range);

    // C++ only
    static Retained<NSContainerRunTable> forState(LayoutState& state);
    /// The table is empty from then on.
    void endState() { _state = nullptr; }

  protected:
    NSContainerRunTable() = default;
    ~NSContainerRunTable() = default;

  private:
    LayoutState* _state = nullptr;
    NSContainerRun _run;
};

}  // namespace pelvor
