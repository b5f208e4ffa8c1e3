// SPDX-License-Identifier: Apache-2.0
// The views that are drawn in, the innermost last.
#pragma once

#include <vector>

#include "Interface/NSView.h"

namespace pelvor {

struct FocusStack {
    static std::vector<Retained<NSView>>& views() {
        static auto* views = new std::vector<Retained<NSView>>;
        return *views;
    }

    class Scope {
      public:
        explicit Scope(NSView* view) : _depth(views().size()) {
            views().push_back(Retained<NSView>::retaining(view));
        }
        ~Scope() { views().resize(_depth); }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

      private:
        std::size_t _depth;
    };
};

}  // namespace pelvor
