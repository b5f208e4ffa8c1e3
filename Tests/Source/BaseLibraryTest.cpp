// SPDX-License-Identifier: Apache-2.0
#include "BaseLibrary.h"

#include "ClassConformity.h"
#include "NSArray-PelvorAdditions.h"
#include "NSDictionary-PelvorAdditions.h"
#include "NSIndexSet-PelvorAdditions.h"
#include "NSInvocation-PelvorAdditions.h"
#include "NSMutableDictionary-PelvorAdditions.h"
#include "NSObject-PelvorAdditions.h"
#include "NSRunLoop-PelvorAdditions.h"
#include "PBFloatArray.h"
#include "PBNotificationCenter.h"
#include "PBPlanarRange.h"
#include "PBRangeUtil.h"
#include "PBRegistry.h"
#include "PBUtil.h"
#include "Prelude.h"
#include "Runtime/RuntimeLibrary.h"

namespace {

TEST(BaseLibrary, LeavesEveryClassInOrder) {
    registerLibrary(baseLibrary);
    for (Library* library : {&baseLibrary, &foundationLibrary, &runtimeLibrary})
        for (Class* cls : library->classes) checkClass(cls);
}

TEST(BaseLibrary, MessagesNameTheOperationAndTheArgument) {
    NSNumber* one = NSNumber::numberWithInt(1);
    NSArray* texts = NSArray::of({u"a"_ns, u"b"_ns});
    auto record = NSMutableDictionary::init();
    Class* cls = NSNumber::classObject();
    SEL unknown = "unknown"_sel;
    const std::pair<std::function<void()>, const char*> rows[] = {
        {[&] { NSNotificationCenter_PelvorAdditions::disableNotificationName(nullptr); },
         "disableNotificationName: the name is null"},
        {[&] { PBRegistry::init()->addProfile(nullptr); }, "addProfile: the profile is null"},
        {[&] { setInt_forKey(record, 1, nullptr); }, "setInt:forKey: the key is null"},
        {[&] { dictionarySettingObject_forKey(record, nullptr, one); },
         "dictionarySettingObject:forKey: the object is null"},
        {[&] { (void)NSMutableArray_PelvorAdditions::initWithSingleObject_count(nullptr, 2); },
         "initWithSingleObject:count: the object is null"},
        {[&] {
             PBFloatArray::initWithCapacity(3)->replaceFloatsInRange_withFloatsFrom({0, 1}, nullptr);
         },
         "replaceFloatsInRange:withFloatsFrom: the pointer to the floats is null"},
        {[&] { NSRunLoop_PelvorAdditions::performSelector_target_argument_order(unknown, nullptr, one, 0); },
         "performSelector:target:argument:order: the target is null"},
        {[&] { NSInvocation_PelvorAdditions::invocationWithTargetClass_selector(cls, unknown); },
         "invocationWithTargetClass:selector: instances of NSNumber have no method unknown"},
        {[&] { NSInvocation_PelvorAdditions::invocationWithTarget_selector(nullptr, unknown); },
         "invocationWithTarget:selector: the target is null"},
        {[&] { performSelector_withInt(one, "isEqual:"_sel, 1); },
         "the message isEqual: cannot be given a number: its method takes an argument of another type"},
        {[&] { performSelector_withInt(one, "intValue"_sel, 1); },
         "the message intValue cannot be given a number: its method takes no argument"},
        {[&] { PBReplaceMethodImplementationWithSelector(cls, "intValue"_sel, unknown); },
         "the class NSNumber has no method unknown"},
        {[&] { PBNormalizeRanges(texts, true); },
         "PBNormalizeRanges: the list holds a, which is no boxed range"},
        {[&] {
             PBIndexOfRangeInRanges({0, 1}, NSArray::of({one}));
         },
         "PBIndexOfRangeInRanges: the list holds 1, which is no boxed range"},
        {[&] { NSIndexSet_PelvorAdditions::indexSetWithNumberArray(texts); },
         "indexSetWithNumberArray: the array holds a, which is no number"},
        {[&] { planarRangeValue(one); }, "planarRangeValue: 1 is no boxed planar range"},
    };
    for (const auto& [call, message] : rows) EXPECT_THAT(reasonOf(call), HasSubstr(message));
}

}  // namespace
