// SPDX-License-Identifier: Apache-2.0
#include "Writer/Windows/Preferences.h"

#include "Foundation/NSNumber.h"
#include "Foundation/NSUserDefaults.h"

namespace pelvor {
namespace {

const struct {
    NSString* key;
    NSInteger value;
} kAtFirst[] = {
    {WRMarksMisspellingsPreference, true},
    {WRRecentDocumentCountPreference, 10},
    {WRShowsRulerPreference, true},
};

}  // namespace

NSInteger preference(NSString* key) {
    NSUserDefaults* defaults = NSUserDefaults::standardUserDefaults();
    id wanted = defaults->objectForKey(key);
    if (!wanted)
        for (const auto& [known, value] : kAtFirst)
            if (known->isEqualToString(key)) return value;
    // "YES", as an argument of the program may say, is no number.
    return cast<NSNumber>(wanted) ? defaults->integerForKey(key) : defaults->boolForKey(key);
}

}  // namespace pelvor
