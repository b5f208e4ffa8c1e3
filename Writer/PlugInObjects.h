// SPDX-License-Identifier: Apache-2.0
// Makes the objects behind profiles and sends them messages. Exceptions of plug-ins end here.
#pragma once

#include "Foundation/NSDictionary.h"
#include "PBProfile.h"
#include "Runtime/Message.h"

namespace pelvor {

/// A new object of the profile's class, made by `init`. The code of the profile's bundle is loaded first if
/// the class is not known yet. Raises NSInvalidArgumentException if there is no such class or its `init`
/// returns null.
PELVOR_EXPORT Retained<Object> makePlugInObject(PBProfile* profile);

/// An answer with the error that the plug-in threw the exception which is being handled. To be called inside
/// a catch clause only. Borrowed.
PELVOR_EXPORT NSDictionary* failureAnswer(PBProfile* profile);

/// What is wrong with an answer, which is what a plug-in returned, as a sentence for the user: the answer has
/// an error, or no entry under `key`. Null for a good answer. Borrowed.
PELVOR_EXPORT NSString* problemOfAnswer(NSDictionary* answer, NSString* key, PBProfile* profile);

/// Sends a message to a new object of the profile's class and returns the answer: an empty answer if the
/// object returns null, and an answer with an error if the plug-in throws. Borrowed.
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
