// SPDX-License-Identifier: Apache-2.0
#include "Scanning/NSObject-OFDebugging.h"

#include "Foundation/NSString.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {
namespace {

void defineDebugging(MethodTable<NSObject>& methods) {
    methods.instance<"debugDictionary", &debugDictionary>();
}

}  // namespace

constinit const Category NSObject_OFDebugging_category =
    Category::of<NSObject, defineDebugging>("OFDebugging");

NSMutableDictionary* debugDictionary(NSObject* object) {
    requireArgument(object, "debugDictionary", "the object");
    NSString* text = NSString::stringWithFormat(u"<%s: %p>"_ns, object->class_()->name(),
                                                static_cast<const void*>(object));
    return NSMutableDictionary::dictionaryWithObject_forKey(text, u"__self__"_ns);
}

}  // namespace pelvor
