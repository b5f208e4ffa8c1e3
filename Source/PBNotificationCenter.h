// SPDX-License-Identifier: Apache-2.0
// PBNotificationCenter: notifications that are silenced by name or wait for an idle moment.
#pragma once

#include "Foundation/NSNotificationCenter.h"

namespace pelvor {

struct Category;

/// Class operations that silence the default notification centre by name, for bulk changes:
///
///     using Centre = NSNotificationCenter_PelvorAdditions;
///     Centre::disableNotificationName(PageDidChangeNotification);
///     …  // nobody hears of these changes
///     Centre::enableNotificationName(PageDidChangeNotification);
///
/// Calls are counted: a name that was disabled twice is heard again after it was enabled twice. The first
/// call of `disableNotificationName` makes the default centre a PBNotificationCenter for the rest of the
/// process. Main thread.
struct PELVOR_EXPORT NSNotificationCenter_PelvorAdditions {
    /// Raises NSInvalidArgumentException if the name is null.
    static void disableNotificationName(NSString* name);
    /// Does nothing for a name that is not disabled, or null.
    static void enableNotificationName(NSString* name);
};

extern const Category NSNotificationCenter_PelvorAdditions_category;

/// The class that the default centre gets when a name is first disabled. The centre then drops notifications
/// with disabled names, in whatever way they are posted. Notifications with one of two noisy names,
/// "NSFontSetChangedNotification" and "NSAntialiasThresholdChangedNotification", wait until the next idle
/// moment; the centre then posts each name once, without sender and dictionary, even if the name was disabled
/// meanwhile. Main thread.
class PELVOR_EXPORT PBNotificationCenter : public NSNotificationCenter {
    PELVOR_CLASS(PBNotificationCenter, NSNotificationCenter);
    PELVOR_INHERITED_CREATORS(init);

  public:
    /// Gives the default centre this class. Only the first call in the process has an effect.
    static void doPosing();

  protected:
    PBNotificationCenter() = default;
    ~PBNotificationCenter() = default;
};

}  // namespace pelvor
