// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugInObjects.h"

#include "Foundation/NSBundle.h"
#include "Foundation/NSString.h"
#include "PBProfileKeys.h"
#include "Runtime/NSException.h"
#include "Writer/LocalizedText.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/ProfileChoice.h"

namespace pelvor {

Retained<Object> makePlugInObject(PBProfile* profile) {
    Class* cls = profile->profileClass();
    if (NSBundle* bundle = profile->bundle(); !cls && bundle && !bundle->isLoaded() && bundle->load())
        cls = profile->profileClass();
    if (!cls)
        raiseException(NSInvalidArgumentException, u"there is no class \"%@\""_ns,
                       profile->valueForKey(PBProfileClassKey));
    auto object = send<Retained<Object>>(cls, "init"_sel);
    if (!object) raiseException(NSInvalidArgumentException, u"%s made no object"_ns, cls->name());
    return object;
}

NSDictionary* failureAnswer(PBProfile* profile) {
    const std::string reason = currentExceptionReason();
    NSString* message = localizedFormat(u"_The plug-in \"%@\" failed: %@"_ns, nameOfProfile(profile),
                                        NSString::ofUTF8(reason));
    return NSDictionary::of({{WRErrorKey, WRErrorPlugIn}, {WRMessageKey, message}});
}

NSString* problemOfAnswer(NSDictionary* answer, NSString* key, PBProfile* profile) {
    if (!answer->objectForKey(WRErrorKey) && answer->objectForKey(key)) return nullptr;
    if (auto* message = cast<NSString>(answer->objectForKey(WRMessageKey))) return message;
    return localizedFormat(u"_The plug-in \"%@\" returned nothing."_ns, nameOfProfile(profile));
}

}  // namespace pelvor
