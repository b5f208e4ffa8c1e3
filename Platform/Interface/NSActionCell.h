// SPDX-License-Identifier: Apache-2.0
// NSActionCell: a cell with a target, an action and a tag.
#pragma once

#include "Interface/NSCell.h"

namespace pelvor {

/// A cell that sends an action to a target. Most controls show one of these. Main thread.
class PELVOR_EXPORT NSActionCell : public NSCell {
    PELVOR_CLASS(NSActionCell, NSCell);
    PELVOR_INHERITED_CREATORS(init, initTextCell, initImageCell);

  public:
    /// Not kept alive, and null once it ended. An action without a target goes to the first object that takes
    /// it, from the first responder on.
    id target() override { return _target.object().autorelease(); }
    void setTarget(id target) override { _target = WeakHandle(target); }
    SEL action() override { return _action; }
    void setAction(SEL action) override { _action = action; }
    /// A number for the host; 0 at first.
    int tag() override { return _tag; }
    void setTag(int tag) override { _tag = tag; }

  protected:
    NSActionCell() = default;
    ~NSActionCell() = default;

    void takeProperties(NSCell* other) override;

  private:
    WeakHandle _target;
    SEL _action;
    int _tag = 0;
};

}  // namespace pelvor
