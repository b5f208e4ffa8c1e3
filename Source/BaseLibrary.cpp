// SPDX-License-Identifier: Apache-2.0
#include "BaseLibrary.h"

#include "FileWatcher/PBFileWatcher.h"
#include "FileWatcher/Private/ZWFolderEvents.h"
#include "FileWatcher/ZWFNSubscribeFileWatcher.h"
#include "FileWatcher/ZWKQueue.h"
#include "FileWatcher/ZWMainThreadProxy.h"
#include "Foundation/FoundationLibrary.h"
#include "NSArray-PelvorAdditions.h"
#include "NSArray-PelvorRangeArray.h"
#include "NSBundle-PelvorAdditions.h"
#include "NSCalendarDate-PelvorAdditions.h"
#include "NSCharacterSet-PelvorAdditions.h"
#include "NSCoder-PelvorAdditions.h"
#include "NSData-PelvorAdditions.h"
#include "NSDictionary-PelvorAdditions.h"
#include "NSEnumerator-PelvorAdditions.h"
#include "NSFileManager-PelvorAdditions.h"
#include "NSIndexSet-PelvorAdditions.h"
#include "NSInvocation-PelvorAdditions.h"
#include "NSMutableDictionary-PelvorAdditions.h"
#include "NSMutableString-PelvorAdditions.h"
#include "NSObject-PelvorAdditions.h"
#include "NSRunLoop-PelvorAdditions.h"
#include "NSSet-PelvorAdditions.h"
#include "NSString-PelvorAdditions.h"
#include "NSValue-PelvorAdditions.h"
#include "NSWorkspace-PelvorAdditions.h"
#include "PBDelayedActionTimer.h"
#include "PBExternalObjectPool.h"
#include "PBFloatArray.h"
#include "PBFloatVector.h"
#include "PBIdleQueue.h"
#include "PBIdleQueueScheduler.h"
#include "PBLinkedList.h"
#include "PBLinkedListEnumerator.h"
#include "PBLinkedListNode.h"
#include "PBMutableIntNumber.h"
#include "PBMutableNumber.h"
#include "PBNotificationCenter.h"
#include "PBNotificationWatcher.h"
#include "PBObjectPool.h"
#include "PBObserverSet.h"
#include "PBPlanarRange.h"
#include "PBPostLoader.h"
#include "PBPostURLRequest.h"
#include "PBRegistry.h"
#include "PBRepeatString.h"
#include "PBSafeWeakReference.h"
#include "PBSingleObjectEnumerator.h"
#include "PBUnichar32String.h"
#include "PBUniqueObject.h"
#include "PBUtil.h"
#include "PBUtil_Dummy.h"
#include "PBWeakReference.h"
#include "Private/PBRangeList.h"
#include "Scanning/NSObject-OFDebugging.h"
#include "Scanning/OFCharacterSet.h"
#include "Scanning/OFStringScanner.h"
#include "Scanning/OFTrie.h"
#include "Scanning/OFTrieEnumerator.h"
#include "_PBAssertionWarning.h"
#include "assertions.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&foundationLibrary};

// One a line, alphabetical; a superclass is registered before its subclasses wherever it stands.
// clang-format off
constexpr Class* kClasses[] = {
    &OFCharacterScanner::classRecord,
    &OFCharacterSet::classRecord,
    &OFStringScanner::classRecord,
    &OFTrie::classRecord,
    &OFTrieBucket::classRecord,
    &OFTrieEnumerator::classRecord,
    &OFTrieNode::classRecord,
    &PBDelayedActionTimer::classRecord,
    &PBExternalObjectPool::classRecord,
    &PBFileWatcher::classRecord,
    &PBFloatArray::classRecord,
    &PBFloatVector::classRecord,
    &PBIdleQueue::classRecord,
    &PBIdleQueueScheduler::classRecord,
    &PBLinkedList::classRecord,
    &PBLinkedListEnumerator::classRecord,
    &PBLinkedListNode::classRecord,
    &PBMutableIntNumber::classRecord,
    &PBMutableNumber::classRecord,
    &PBNotificationCenter::classRecord,
    &PBNotificationWatcher::classRecord,
    &PBObjectPool::classRecord,
    &PBObserverSet::classRecord,
    &PBPostLoader::classRecord,
    &PBPostURLRequest::classRecord,
    &PBProfile::classRecord,
    &PBProfileSet::classRecord,
    &PBRangeList::classRecord,
    &PBRegistry::classRecord,
    &PBRepeatString::classRecord,
    &PBSafeWeakReference::classRecord,
    &PBSingleObjectEnumerator::classRecord,
    &PBUnichar32String::classRecord,
    &PBUniqueObject::classRecord,
    &PBUtil_Dummy::classRecord,
    &PBWeakReference::classRecord,
    &ZWFNSubscribeFileWatcher::classRecord,
    &ZWFolderEvents::classRecord,
    &ZWKQueue::classRecord,
    &ZWMainThreadProxy::classRecord,
    &_PBAssertionWarning::classRecord,
};

constexpr const Category* kCategories[] = {
    &NSArray_PBWeakReferenceAdditions_category,
    &NSArray_PelvorAdditions_category,
    &NSArray_PelvorRangeArray_category,
    &NSBundle_PelvorAdditions_category,
    &NSCalendarDate_PelvorAdditions_category,
    &NSCharacterSet_PelvorAdditions_category,
    &NSCoder_PelvorAdditions_category,
    &NSData_PelvorAdditions_category,
    &NSDictionary_PelvorAdditions_category,
    &NSEnumerator_PelvorAdditions_category,
    &NSFileManager_PelvorAdditions_category,
    &NSIndexSet_PelvorAdditions_category,
    &NSInvocation_PelvorAdditions_category,
    &NSMutableArray_PelvorAdditions_category,
    &NSMutableArray_PelvorMutableRangeArray_category,
    &NSMutableDictionary_PelvorAdditions_category,
    &NSMutableSet_PBWeakReferenceAdditions_category,
    &NSMutableSet_PelvorAdditions_category,
    &NSMutableString_PelvorAdditions_category,
    &NSNotificationCenter_PelvorAdditions_category,
    &NSObject_OFDebugging_category,
    &NSObject_PBProfileAccess_category,
    &NSObject_PelvorAdditions_category,
    &NSObject_PelvorDebugMenus_category,
    &NSObject_ZWMainThreadProxy_category,
    &NSPathStore2_OFOverrides_category,
    &NSRunLoop_PelvorAdditions_category,
    &NSSet_PBWeakReferenceAdditions_category,
    &NSSet_PelvorAdditions_category,
    &NSString_PelvorAdditions_category,
    &NSValue_PelvorAdditions_category,
    &NSValue_PlanarRangeAdditions_category,
    &NSWorkspace_PelvorAdditions_category,
};
// clang-format on

}  // namespace

constinit Library baseLibrary{"PelvorBase", kDependencies, kClasses, kCategories};

}  // namespace pelvor
