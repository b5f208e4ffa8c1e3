// SPDX-License-Identifier: Apache-2.0
// Makes and asks the objects behind profiles; what plug-ins throw ends here.
#pragma once

#include "Foundation/NSDictionary.h"
#include "PBProfile.h"
#include "Runtime/Message.h"

namespace pelvor {

/// A new object of the profile's class, made by its `init`. Raises NSInvalidArgumentException if the class is
/// not there or makes nothing.
Retained<Object> makePlugInObject(PBProfile* profile);

/// The answer that tells that the plug-in failed with the exception being handled. Only inside a catch
/// clause. Borrowed.
NSDictionary* failureAnswer(PBProfile* profile);

/// The message of an answer that tells of an error, and of one that has nothing under `key`; none for an
/// answer that is good. Borrowed.
NSString* problemOfAnswer(NSDictionary* answer, NSString* key, PBProfile* profile);

/// Sends a message to a new object of the profile's class and answers its answer, or one that tells of an
/// error; an empty one where it answers none. Borrowed.
template <class... Arguments>
NSDictionary* askPlugIn(PBProfile* profile, SEL selector, const Arguments&... arguments) {
    try {
        auto object = makePlugInObject(profile);
        auto answer = send<Retained<NSDictionary>>(object.get(), selector, arguments...);
        return answer ? std::move(answer).autorelease() : NSDictionary::dictionary();
    } catch (...) {
        return failureAnswer(profile);
    }
}

}  // namespace pelvor
