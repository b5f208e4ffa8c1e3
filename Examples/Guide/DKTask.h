// SPDX-License-Identifier: Apache-2.0
// DKTask: what one service says about a text.
#pragma once

#include "Foundation/NSString.h"
#include "PBProfile.h"

namespace desk {

using namespace pelvor;

/// A service that is to look at a text. A service is a profile of the type "document service". Desk makes an
/// object of its class by `init` and sends the object one message, on the main thread:
///
///     NSUInteger countInText:(NSString*)
class DKTask : public NSObject {
    PELVOR_CLASS(DKTask, NSObject);
    PELVOR_CREATORS(initWithProfile_text);

  public:
    /// Retains the profile and copies the text.
    static Retained<DKTask> initWithProfile_text(PBProfile* profile, NSString* text,
                                                 Class* cls = classObject());

    /// Lets the service look at the text. What the service throws becomes the task's result.
    void run();
    bool isDone() { return _result.get(); }
    bool hasFailed() { return _hasFailed; }
    /// "Letters: 7", in the user's language; null before `run`. Borrowed.
    NSString* result() { return _result; }

    /// The profile's name in the user's language. Borrowed.
    static NSString* nameOfProfile(PBProfile* profile);

  protected:
    DKTask() = default;
    ~DKTask() = default;

  private:
    Retained<PBProfile> _profile;
    Retained<NSString> _text;
    Retained<NSString> _result;
    bool _hasFailed = false;
};

}  // namespace desk
