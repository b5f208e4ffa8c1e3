// SPDX-License-Identifier: Apache-2.0
#include "MenuTracking.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(MTTaker, menuTrackingLibrary) {
    methods.instance<"take:", &MTTaker::take>();
    methods.instance<"choose:", &MTTaker::choose>();
    methods.instance<"menuWillOpen:", &MTTaker::menuWillOpen>();
    methods.instance<"menuDidClose:", &MTTaker::menuDidClose>();
}

Library menuTrackingLibrary{"MenuTrackingTest", {}, kClassesOf<MTTaker>, {}};

}  // namespace pelvor
