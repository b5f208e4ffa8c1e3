// SPDX-License-Identifier: Apache-2.0
#include "Foundation/FoundationLibrary.h"

#include "Foundation/AttributedStrings/NSAttributedText.h"
#include "Foundation/Collections/CollectionEnumerators.h"
#include "Foundation/Collections/ConcreteArrays.h"
#include "Foundation/Collections/ConcreteDictionaries.h"
#include "Foundation/Collections/ConcreteSets.h"
#include "Foundation/NSBundle-NibLoading.h"
#include "Foundation/NSCalendarDate.h"
#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSCoder.h"
#include "Foundation/NSConditionLock.h"
#include "Foundation/NSCountedSet.h"
#include "Foundation/NSDate-CalendarDate.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSFileManager.h"
#include "Foundation/NSHTTPURLResponse.h"
#include "Foundation/NSIndexSet.h"
#include "Foundation/NSKeyedArchiver.h"
#include "Foundation/NSKeyedUnarchiver.h"
#include "Foundation/NSLock.h"
#include "Foundation/NSMutableCharacterSet.h"
#include "Foundation/NSMutableData.h"
#include "Foundation/NSMutableIndexSet.h"
#include "Foundation/NSMutableURLRequest.h"
#include "Foundation/NSNib.h"
#include "Foundation/NSNibError.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNotificationQueue.h"
#include "Foundation/NSNull.h"
#include "Foundation/NSObject-DelayedPerforming.h"
#include "Foundation/NSObject-MainThread.h"
#include "Foundation/NSPathStore2.h"
#include "Foundation/NSProcessInfo.h"
#include "Foundation/NSPropertyListError.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "Foundation/NSRangeValue.h"
#include "Foundation/NSRecursiveLock.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSScanner.h"
#include "Foundation/NSString-URL.h"
#include "Foundation/NSString.h"
#include "Foundation/NSThread.h"
#include "Foundation/NSTimeZone.h"
#include "Foundation/NSTimer.h"
#include "Foundation/NSURL-Contents.h"
#include "Foundation/NSURLConnection.h"
#include "Foundation/NSURLError.h"
#include "Foundation/NSUndoManager.h"
#include "Foundation/NSUserDefaults.h"
#include "Foundation/NSWorkspace.h"
#include "Foundation/PropertyLists/PropertyListCategories.h"
#include "Foundation/RunLoop/NSDelayedPerform.h"
#include "Foundation/Strings/NSBufferString.h"
#include "Foundation/Strings/NSInlineString.h"
#include "Foundation/Undo/UndoTarget.h"
#include "Foundation/Values/ConcreteData.h"
#include "Foundation/Values/ConcreteDate.h"
#include "Foundation/Values/ConcreteValues.h"
#include "Foundation/Values/NSExternalData.h"
#include "Runtime/RuntimeLibrary.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&runtimeLibrary};

// Alphabetical; a superclass is registered before its subclasses wherever it stands.
// clang-format off
constexpr Class* kClasses[] = {
    &NSArray::classRecord,
    &NSArrayEnumerator::classRecord,
    &NSAttributeDictionary::classRecord,
    &NSAttributedMutableString::classRecord,
    &NSAttributedString::classRecord,
    &NSAttributedText::classRecord,
    &NSBufferArray::classRecord,
    &NSBufferString::classRecord,
    &NSBundle::classRecord,
    &NSCalendarDate::classRecord,
    &NSCharacterSet::classRecord,
    &NSCoder::classRecord,
    &NSConditionLock::classRecord,
    &NSConstantString::classRecord,
    &NSCountedSet::classRecord,
    &NSData::classRecord,
    &NSDate::classRecord,
    &NSDelayedPerform::classRecord,
    &NSDictionary::classRecord,
    &NSDictionaryEnumerator::classRecord,
    &NSEnumerator::classRecord,
    &NSExternalData::classRecord,
    &NSExternalString::classRecord,
    &NSFileError::classRecord,
    &NSFileManager::classRecord,
    &NSHTTPURLResponse::classRecord,
    &NSIndexSet::classRecord,
    &NSInlineArray::classRecord,
    &NSInlineData::classRecord,
    &NSInlineString::classRecord,
    &NSInlineValue::classRecord,
    &NSKeyedArchiver::classRecord,
    &NSKeyedUnarchiver::classRecord,
    &NSLock::classRecord,
    &NSMutableArray::classRecord,
    &NSMutableAttributedString::classRecord,
    &NSMutableCharacterSet::classRecord,
    &NSMutableData::classRecord,
    &NSMutableDictionary::classRecord,
    &NSMutableIndexSet::classRecord,
    &NSMutableSet::classRecord,
    &NSMutableString::classRecord,
    &NSMutableURLRequest::classRecord,
    &NSNib::classRecord,
    &NSNibError::classRecord,
    &NSNotification::classRecord,
    &NSNotificationCenter::classRecord,
    &NSNotificationQueue::classRecord,
    &NSNull::classRecord,
    &NSNumber::classRecord,
    &NSPathStore2::classRecord,
    &NSPlainDate::classRecord,
    &NSPlainNumber::classRecord,
    &NSProcessInfo::classRecord,
    &NSPropertyListError::classRecord,
    &NSPropertyListSerialization::classRecord,
    &NSRangeValue::classRecord,
    &NSRecursiveLock::classRecord,
    &NSRunLoop::classRecord,
    &NSScanner::classRecord,
    &NSSet::classRecord,
    &NSSetEnumerator::classRecord,
    &NSString::classRecord,
    &NSTableDictionary::classRecord,
    &NSTableMutableDictionary::classRecord,
    &NSTableMutableSet::classRecord,
    &NSTableSet::classRecord,
    &NSThread::classRecord,
    &NSTimeZone::classRecord,
    &NSTimer::classRecord,
    &NSURL::classRecord,
    &NSURLConnection::classRecord,
    &NSURLError::classRecord,
    &NSURLRequest::classRecord,
    &NSURLResponse::classRecord,
    &NSUndoManager::classRecord,
    &NSUserDefaults::classRecord,
    &NSValue::classRecord,
    &NSWorkspace::classRecord,
    &UndoGroupCloser::classRecord,
    &UndoTarget::classRecord,
};

constexpr const Category* kCategories[] = {
    &NSArray_PropertyList_category,
    &NSArray_URLContents_category,
    &NSData_URLContents_category,
    &NSBundle_NibLoading_category,
    &NSDate_CalendarDate_category,
    &NSDictionary_PropertyList_category,
    &NSDictionary_URLContents_category,
    &NSObject_DelayedPerforming_category,
    &NSObject_MainThread_category,
    &NSProxy_DelayedPerforming_category,
    &NSProxy_MainThread_category,
    &NSString_PropertyList_category,
    &NSString_URLContents_category,
    &NSString_URL_category,
};
// clang-format on

}  // namespace

constinit Library foundationLibrary{"Foundation", kDependencies, kClasses, kCategories};

}  // namespace pelvor
