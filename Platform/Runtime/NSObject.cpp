// SPDX-License-Identifier: Apache-2.0
#include "Runtime/NSObject.h"

#include <string>

#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Runtime/NSInvocation.h"
#include "Runtime/RuntimeLibrary.h"
#include "Runtime/StringResults.h"

namespace pelvor {
namespace {

// Class operations that every class has. The receiving class comes last.
Class* classOfClass(Class* cls) { return cls; }
Class* superclassOfClass(Class* cls) { return cls->superclass(); }
Retained<Object> makeInstance(Class* cls) { return Retained<Object>::adopting(cls->createInstance()); }
bool classIsSubclass(Class* ancestor, Class* cls) { return cls->isSubclassOfClass(ancestor); }
void poseAs(Class* original, Class* cls) { cls->poseAsClass(original); }
NSMethodSignature* instanceSignature(SEL selector, Class* cls) {
    return cls->signatureOfInstanceMethod(selector);
}

Class* superclassOfObject(Object* object) { return object->class_()->superclass(); }
Object* self(Object* object) { return object; }

[[noreturn]] void raiseCannotCopy(Object* object, const char* operation) {
    throw NSException(NSInvalidArgumentException,
                      std::string(object->isa()->publicName()) + " does not implement " + operation);
}

}  // namespace

constinit Class NSObject::metaclassRecord(Class::Metaclass{}, "NSObject", &NSObject::classRecord,
                                          &NSObject::classRecord);
constinit Class NSObject::classRecord("NSObject", &NSObject::metaclassRecord, nullptr,
                                      Instances::nativeClass<NSObject>(), &runtimeLibrary);

void NSObject::defineMethods(MethodTable<NSObject>& methods) {
    methods.classLevel<"initialize", &NSObject::initialize>();
    methods.classLevelAs<"class", &classOfClass>();
    methods.classLevelAs<"superclass", &superclassOfClass>();
    methods.classLevelAs<"alloc", &makeInstance>();
    methods.classLevelAs<"new", &makeInstance>();
    methods.classLevel<"init", &NSObject::init>();
    methods.classLevelAs<"isSubclassOfClass:", &classIsSubclass>();
    methods.classLevelAs<"poseAsClass:", &poseAs>();
    methods.classLevel<"instancesRespondToSelector:", &NSObject::instancesRespondToSelector>();
    methods.classLevelAs<"instanceMethodSignatureForSelector:", &instanceSignature>();

    methods.instance<"class", &Object::class_>();
    methods.instanceAs<"superclass", &superclassOfObject>();
    methods.instance<"self", &self>();
    methods.instance<"isKindOfClass:", &Object::isKindOfClass>();
    methods.instance<"isMemberOfClass:", &Object::isMemberOfClass>();
    methods.instance<"isProxy", &Object::isProxy>();
    methods.instance<"respondsToSelector:", &Object::respondsToSelector>();
    methods.instance<"methodSignatureForSelector:", &Object::methodSignatureForSelector>();
    methods.instance<"forwardInvocation:", &Object::forwardInvocation>();
    methods.instance<"doesNotRecognizeSelector:", &Object::doesNotRecognizeSelector>();
    methods.instance<"isEqual:", &Object::isEqual>();
    methods.instance<"hash", &Object::hash>();
    methods.instanceAs<"description", &describeObject>();
    methods.instance<"performSelector:", &Object::performSelector>();
    methods.instance<"performSelector:withObject:", &Object::performSelector_withObject>();
    methods
        .instance<"performSelector:withObject:withObject:", &Object::performSelector_withObject_withObject>();
    methods.instance<"retain", &Object::retain>();
    methods.instance<"release", &Object::release>();
    methods.instance<"autorelease", &Object::autorelease>();
    methods.instance<"retainCount", &Object::retainCount>();
    methods.instance<"copy", &NSObject::copy>();
    methods.instance<"mutableCopy", &NSObject::mutableCopy>();
    methods.instance<"copyWithZone:", &NSObject::copyWithZone>();
    methods.instance<"mutableCopyWithZone:", &NSObject::mutableCopyWithZone>();
}

Retained<NSObject> NSObject::init(Class* cls) { return make<NSObject>(cls); }

void NSObject::initialize(Class*) {}

bool NSObject::instancesRespondToSelector(SEL selector, Class* cls) {
    return cls->instancesRespondTo(selector);
}

Retained<Object> NSObject::copy() { return copyWithZone(nullptr); }

Retained<Object> NSObject::mutableCopy() { return mutableCopyWithZone(nullptr); }

Retained<Object> NSObject::copyWithZone(void*) { raiseCannotCopy(this, "copyWithZone:"); }

Retained<Object> NSObject::mutableCopyWithZone(void*) { raiseCannotCopy(this, "mutableCopyWithZone:"); }

}  // namespace pelvor
