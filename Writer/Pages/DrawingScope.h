// SPDX-License-Identifier: Apache-2.0
// DrawingScope: draws on another graphics context for a while.
#pragma once

#include "Text/NSGraphicsContext.h"

namespace pelvor {

/// Makes the context the current one while it lives.
class DrawingScope {
  public:
    explicit DrawingScope(NSGraphicsContext* context)
        : _before(Retained<NSGraphicsContext>::retaining(NSGraphicsContext::currentContext())) {
        NSGraphicsContext::setCurrentContext(context);
    }
    ~DrawingScope() { NSGraphicsContext::setCurrentContext(_before); }
    DrawingScope(const DrawingScope&) = delete;

  private:
    Retained<NSGraphicsContext> _before;
};

}  // namespace pelvor
