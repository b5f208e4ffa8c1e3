// SPDX-License-Identifier: Apache-2.0
#include "Runtime/NSProxy.h"

#include "Runtime/Class.h"
#include "Runtime/NSInvocation.h"
#include "Runtime/RuntimeLibrary.h"
#include "Runtime/StringResults.h"

namespace pelvor {

constinit Class NSProxy::metaclassRecord(Class::Metaclass{}, "NSProxy", &NSProxy::classRecord,
                                         &NSObject::metaclassRecord);
constinit Class NSProxy::classRecord("NSProxy", &NSProxy::metaclassRecord, nullptr,
                                     Instances::nativeClass<NSProxy>(), &runtimeLibrary);

void NSProxy::defineMethods(MethodTable<NSProxy>& methods) {
    methods.instance<"class", &Object::class_>();
    methods.instance<"isProxy", &NSProxy::isProxy>();
    methods.instance<"isKindOfClass:", &Object::isKindOfClass>();
    methods.instance<"isMemberOfClass:", &Object::isMemberOfClass>();
    methods.instance<"isEqual:", &Object::isEqual>();
    methods.instance<"hash", &Object::hash>();
    methods.instanceAs<"description", &describeObject>();
    methods.instance<"respondsToSelector:", &NSProxy::respondsToSelector>();
    methods.instance<"methodSignatureForSelector:", &Object::methodSignatureForSelector>();
    methods.instance<"forwardInvocation:", &Object::forwardInvocation>();
    methods.instance<"performSelector:", &Object::performSelector>();
    methods.instance<"performSelector:withObject:", &Object::performSelector_withObject>();
    methods
        .instance<"performSelector:withObject:withObject:", &Object::performSelector_withObject_withObject>();
    methods.instance<"retain", &Object::retain>();
    methods.instance<"release", &Object::release>();
    methods.instance<"autorelease", &Object::autorelease>();
    methods.instance<"retainCount", &Object::retainCount>();
}

bool NSProxy::respondsToSelector(SEL selector) {
    return Object::respondsToSelector(selector) || methodSignatureForSelector(selector) != nullptr;
}

}  // namespace pelvor
