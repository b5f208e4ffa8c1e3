// SPDX-License-Identifier: Apache-2.0
#include "BaseLibrary.h"

#include "ClassConformity.h"
#include "FileWatcher/ZWFNSubscribeFileWatcher.h"
#include "FileWatcher/ZWMainThreadProxy.h"
#include "Foundation/NSGeometry.h"
#include "Foundation/NSObject-DelayedPerforming.h"
#include "Foundation/NSObject-MainThread.h"
#include "Foundation/NSRuntimeNames.h"
#include "Foundation/SystemVersion.h"
#include "NSObject-PelvorAdditions.h"
#include "NSString-PelvorAdditions.h"
#include "PBProfileSet.h"
#include "PBRangeUtil.h"
#include "PBUtil.h"
#include "Prelude.h"
#include "Runtime/RuntimeLibrary.h"
#include "Scanning/OFCaseConversion.h"
#include "Scanning/OFStringDecoder.h"
#include "assertions.h"

namespace {

TEST(BaseLibrary, LeavesEveryClassInOrder) {
    registerLibrary(baseLibrary);
    for (Library* library : {&baseLibrary, &foundationLibrary, &runtimeLibrary})
        for (Class* cls : library->classes) checkClass(cls);
}

TEST(BaseLibrary, FunctionsSurviveNullArguments) {
    expectSurvival([] {
        return std::vector<Step>{ZERO_CALL(NSClassFromString),
                                 ZERO_CALL(NSDivideRect),
                                 ZERO_CALL(NSGetSizeAndAlignment),
                                 ZERO_CALL(NSPointFromString),
                                 ZERO_CALL(NSRectFromString),
                                 ZERO_CALL(NSSelectorFromString),
                                 ZERO_CALL(NSSizeFromString),
                                 ZERO_CALL(NSStringFromClass),
                                 ZERO_CALL(NSStringFromSelector),
                                 ZERO_CALL(OFCaseConversionBufferDestroy),
                                 ZERO_CALL(OFCaseConversionBufferInit),
                                 ZERO_CALL(OFCaseInsensitiveHash),
                                 ZERO_CALL(OFCreateStringByLowercasingCharacters),
                                 ZERO_CALL(OFScanCharactersIntoBuffer),
                                 ZERO_CALL(PBAbstractMethodWasCalled),
                                 ZERO_CALL(PBAddDebugMenuItem),
                                 ZERO_CALL(PBAddDebugMenuItemWithObjectAndTitleAndAction),
                                 ZERO_CALL(PBAddRangeToNormalizedRanges),
                                 ZERO_CALL(PBAssertFailed),
                                 ZERO_CALL(PBCombineRangeWithNormalizedRanges),
                                 ZERO_CALL(PBCompareRanges),
                                 ZERO_CALL(PBIndexOfRangeInRanges),
                                 ZERO_CALL(PBNormalizeRanges),
                                 ZERO_CALL(PBRangeOfComposedCharacterSequenceAtIndex),
                                 ZERO_CALL(PBRegisterInstanceMethodWithSelector),
                                 ZERO_CALL(PBReplaceMethodImplementation),
                                 ZERO_CALL(PBReplaceMethodImplementationWithSelector),
                                 ZERO_CALL(PBReplaceMethodImplementationWithSelectorOnClass),
                                 ZERO_CALL(PBSetSharedFeedbackController),
                                 ZERO_CALL(PBSetToolboxBundleIdentifier),
                                 ZERO_CALL(PBSoftAssertFailed),
                                 ZERO_CALL(PBSubtractionRanges),
                                 ZERO_CALL(ZWFileSubscriptionProc),
                                 ZERO_CALL(_PBDoLocalize),
                                 ZERO_CALL(_PBValueForKeyInProfile),
                                 ZERO_CALL(copyMainThreadProxy),
                                 ZERO_CALL(deepCopy),
                                 ZERO_CALL(mainThreadProxy),
                                 ZERO_CALL(mutableDeepCopy),
                                 ZERO_CALL(performSelectorOnMainThread_withObject_waitUntilDone_modes),
                                 ZERO_CALL(performSelector_withObject_afterDelay_inModes),
                                 ZERO_CALL(systemVersionCodeOfRelease)};
    });
}

}  // namespace
