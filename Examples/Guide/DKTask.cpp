// SPDX-License-Identifier: Apache-2.0
#include "DKTask.h"

#include "DeskLibrary.h"
#include "PBProfileKeys.h"
#include "PBUtil.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"

namespace desk {

PELVOR_DEFINE_CLASS(DKTask, deskLibrary) {
    methods.creator<"initWithProfile:text:", &DKTask::initWithProfile_text>();
    methods.classLevel<"nameOfProfile:", &DKTask::nameOfProfile>();
    methods.instance<"run", &DKTask::run>();
    methods.instance<"isDone", &DKTask::isDone>();
    methods.instance<"hasFailed", &DKTask::hasFailed>();
    methods.instance<"result", &DKTask::result>();
}

Retained<DKTask> DKTask::initWithProfile_text(PBProfile* profile, NSString* text, Class* cls) {
    auto task = make<DKTask>(cls);
    task->_profile.set(profile);
    task->_text = text->copy();
    return task;
}

void DKTask::run() {
    NSString* name = nameOfProfile(_profile);
    try {
        auto service = send<Retained<Object>>(_profile->profileClass(), "init"_sel);
        auto count = send<NSUInteger>(service, "countInText:"_sel, _text);
        _result.set(NSString::stringWithFormat(u"%@: %u"_ns, name, count));
    } catch (const std::exception&) {
        _hasFailed = true;
        _result.set(NSString::stringWithFormat(_PBDoLocalize(u"_%@ failed: %s"_ns, nullptr), name,
                                               currentExceptionReason()));
    }
}

NSString* DKTask::nameOfProfile(PBProfile* profile) {
    auto* name = cast<NSString>(profile->valueForKey(PBProfileNameKey));
    return name ? profile->localize(name) : profile->identifier()->description();
}

}  // namespace desk
