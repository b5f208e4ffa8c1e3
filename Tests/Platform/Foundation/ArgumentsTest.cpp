// SPDX-License-Identifier: Apache-2.0
// Tests of what the platform's classes say about arguments that they refuse.
#include <set>

#include "Foundation/NSCharacterSet.h"
#include "Foundation/NSCountedSet.h"
#include "Foundation/NSIndexSet.h"
#include "Foundation/NSKeyedArchiver.h"
#include "Foundation/NSMutableCharacterSet.h"
#include "Foundation/NSMutableData.h"
#include "Foundation/NSMutableIndexSet.h"
#include "Foundation/NSRunLoop.h"
#include "Foundation/NSScanner.h"
#include "Foundation/NSThread.h"
#include "Foundation/NSUserDefaults.h"
#include "Foundation/NSValue.h"
#include "Platform/Foundation/Messages.h"
#include "Platform/Foundation/OwnCollections.h"

namespace {

using namespace std::string_literals;

/// Objects to send messages to, by name, each with three entries where it may have some.
std::vector<id> samples(const std::string& name) {
    if (name == "array") return {NSMutableArray::arrayWithArray(numbers({1, 2, 3}))};
    if (name == "dictionary") return {NSMutableDictionary::dictionary()};
    if (name == "set") return {NSMutableSet::set(), NSCountedSet::set()};
    if (name == "data") return {NSMutableData::dataWithBytes_length("abc", 3)};
    if (name == "value") return {NSValue::valueWithRange({1, 2}), NSValue::valueWithPoint({1, 2}), num(1)};
    if (name == "number") return {num(1)};
    if (name == "changing") return {NSMutableString::stringWithString(u"abc"_ns)};
    if (name == "scanner") return {NSScanner::scannerWithString(u"abc"_ns)};
    if (name == "loop") return {NSRunLoop::currentRunLoop()};
    if (name == "defaults") return {NSUserDefaults::initVolatile().autorelease()};
    const auto strings = everyKindOfString(u"abc");
    if (name == "string") return {strings.begin(), strings.end()};
    return {send<id>(classNamed(name.c_str()), "new"_sel)};
}

/// Classes, "+NSSet|NSCountedSet", or samples: those of that name, or a new object of the class.
std::vector<id> receivers(const std::string& name) {
    if (name[0] != '+') return samples(name);
    std::vector<id> classes;
    std::istringstream names(name.substr(1));
    for (std::string each; std::getline(names, each, '|');) classes.push_back(classNamed(each.c_str()));
    return classes;
}

/// What all receivers raise at the message, "receivers selector arguments", which leaves them as they are.
std::string raisedBy(const std::string& message) {
    registerLibrary(foundationLibrary);
    const std::size_t blank = message.find(' ');
    std::set<std::string> all;
    for (id receiver : receivers(message.substr(0, blank))) {
        const std::string before = shown(receiver);
        all.insert(RAISED(perform(receiver, message.substr(blank + 1))));
        EXPECT_EQ(shown(receiver), before) << message;
    }
    return joined({all.begin(), all.end()});
}

using Rows = std::initializer_list<std::pair<std::string, std::vector<std::string>>>;

/// Expects of rows of a key and messages what each message raises behind its selector.
template <class Reason>
void expectRefused(const std::string& exception, Rows rows, Reason reason) {
    for (const auto& [key, messages] : rows)
        for (const std::string& message : messages)
            EXPECT_EQ(raisedBy(message), exception + ": " + wordsOf(message)[1] + " " + reason(key, message));
}

/// In rows of the argument that is null; with a number, that must not be null where the length is that.
std::string nullArgument(const std::string& argument, const std::string&) {
    const std::size_t blank = argument.find_last_of(' '), last = argument.size() - 1;
    if (!std::isdigit(argument[last])) return "the " + argument + " is null";
    return "the " + argument.substr(0, blank) + " must not be null where the length is " + argument[last];
}

/// In rows of the bounds beyond which the range, else the last index, among the message's arguments lies.
std::string outside(const std::string& bounds, const std::string& message) {
    std::string place;
    for (const std::string& word : wordsOf(message)) {
        unsigned number = 0, length = 0;
        const int count = std::sscanf(word.c_str(), "%u,%u", &number, &length);
        if (count == 2 || (count == 1 && !place.starts_with("range")))
            place = count == 2 ? "range " + shown(NSRange{number, length}) : "index (" + word + ")";
    }
    return place + " beyond bounds (" + bounds + ")";
}

std::string asSaid(const std::string& reason, const std::string&) { return reason; }

TEST(ArgumentsTest, ThatAreNullAreNamedBehindTheOperation) {
    expectRefused(
        NSInvalidArgumentException,
        {{"object",
          {"+NSArray|NSMutableArray arrayWithObject:", "array addObject:", "array insertObject:atIndex:",
           "array replaceObjectAtIndex:withObject:", "array arrayByAddingObject:",
           "+NSDictionary|NSMutableDictionary dictionaryWithObject:forKey: 0 'key",
           "dictionary setObject:forKey: 0 'key",
           "+NSSet|NSMutableSet|NSCountedSet setWithObject:", "set addObject:", "set setByAddingObject:"}},
         {"objects 3", {"+NSArray|NSMutableArray initWithObjects:count: 0 3", "array getObjects:"}},
         {"objects 1",
          {"array getObjects:range: 0 1,1", "+NSSet|NSMutableSet|NSCountedSet setWithObjects:count: 0 1",
           "+NSSet|NSMutableSet|NSCountedSet initWithObjects:count: 0 1"}},
         {"function", {"array sortUsingFunction:context:", "array sortedArrayUsingFunction:context:"}},
         {"key",
          {"+NSDictionary|NSMutableDictionary dictionaryWithObject:forKey: 'object",
           "dictionary setObject:forKey: 'object", "dictionary setValue:forKey: 'value",
           "NSKeyedArchiver encodeInt:forKey:", "NSKeyedArchiver encodeObject:forKey: 'object",
           "defaults setInteger:forKey:"}},
         {"objects 2", {"+NSDictionary|NSMutableDictionary initWithObjects:forKeys:count: 0 & 2"}},
         {"bytes 2",
          {"+NSData|NSMutableData dataWithBytes:length: 0 2",
           "+NSData|NSMutableData initWithBytes:length: 0 2",
           "+NSData|NSMutableData dataWithBytesNoCopy:length: 0 2",
           "+NSData|NSMutableData initWithBytesNoCopy:length:freeWhenDone: 0 2", "data getBytes:length: 0 2",
           "data appendBytes:length: 0 2", "NSKeyedArchiver encodeBytes:length:forKey: 0 2 'key"}},
         {"bytes 3", {"data getBytes:"}},
         {"bytes 1",
          {"data replaceBytesInRange:withBytes: 0,1", "+NSString initWithBytes:length:encoding: 0 1 4"}},
         {"bytes", {"+NSValue valueWithBytes:objCType: 0 'i"}},
         {"type", {"+NSValue initWithBytes:objCType: &"}},
         {"buffer", {"value getValue:", "string getCharacters:", "string getCharacters:range: 0 0,1"}},
         {"number", {"number compare:"}},
         {"date",
          {"NSDate compare:", "NSDate timeIntervalSinceDate:", "+NSDate initWithTimeInterval:sinceDate:"}},
         {"string",
          {"+NSString|NSMutableString stringWithString:", "+NSString|NSMutableString initWithString:",
           "string stringByAppendingString:", "changing replaceCharactersInRange:withString: 0,1",
           "changing setString:", "changing appendString:", "changing insertString:atIndex:",
           "+NSScanner scannerWithString:", "scanner scanString:intoString:",
           "scanner scanUpToString:intoString:", "+NSCharacterSet characterSetWithCharactersInString:",
           "NSMutableCharacterSet addCharactersInString:"}},
         {"characters 1",
          {"+NSString|NSMutableString stringWithCharacters:length: 0 1",
           "+NSString|NSMutableString initWithCharacters:length: 0 1",
           "+NSString initWithCharactersNoCopy:length:freeWhenDone: 0 1",
           "changing appendCharacters:length: 0 1"}},
         {"text",
          {"+NSString|NSMutableString stringWithUTF8String:", "+NSString|NSMutableString initWithUTF8String:",
           "+NSString stringWithCString:encoding: 0 4"}},
         {"data",
          {"+NSString initWithData:encoding: 0 4", "+NSCharacterSet characterSetWithBitmapRepresentation:"}},
         {"path", {"+NSString stringWithContentsOfFile:", "string writeToFile:atomically:encoding: 0 1 4"}},
         {"format",
          {"+NSString stringWithFormat:", "+NSString initWithFormat:", "string stringByAppendingFormat:",
           "changing appendFormat:"}},
         {"array", {"+NSString pathWithComponents:"}},
         {"separator", {"string componentsSeparatedByString:"}},
         {"set",
          {"string stringByTrimmingCharactersInSet:", "string rangeOfCharacterFromSet:",
           "scanner scanCharactersFromSet:intoString:", "scanner scanUpToCharactersFromSet:intoString:"}},
         {"replacement", {"string stringByReplacingOccurrencesOfString:withString: 'a"}},
         {"padding", {"string stringByPaddingToLength:withString:startingAtIndex: 9"}},
         {"other string",
          {"string compare:", "string compare:options:", "string caseInsensitiveCompare:",
           "string localizedCompare:", "string localizedCaseInsensitiveCompare:"}},
         {"prefix", {"string hasPrefix:"}},
         {"suffix", {"string hasSuffix:"}},
         {"target",
          {"string rangeOfString:", "string rangeOfString:options:",
           "+NSTimer scheduledTimerWithTimeInterval:target:selector:userInfo:repeats:",
           "+NSThread detachNewThreadSelector:toTarget:withObject: 'hear:"}},
         {"component", {"string stringByAppendingPathComponent:"}},
         {"extension", {"string stringByAppendingPathExtension:"}},
         {"other set",
          {"NSMutableCharacterSet isSupersetOfSet:", "NSMutableCharacterSet formUnionWithCharacterSet:",
           "NSMutableCharacterSet formIntersectionWithCharacterSet:"}},
         {"timer", {"loop addTimer:forMode: 0 'mode"}},
         {"mode", {"loop runMode:beforeDate:", "loop performReadyWorkForMode:", "loop addCommonMode:"}},
         {"selector",
          {"string performSelector:withObject:afterDelay:",
           "NSNotificationCenter addObserver:selector:name:object: 'ear"}},
         {"observer", {"NSNotificationCenter addObserver:selector:name:object:"}}},
        nullArgument);
}

TEST(ArgumentsTest, ThatLieOutsideOrFitNothingAreShown) {
    expectRefused(
        NSRangeException,
        {{"3",
          {"array subarrayWithRange: 2,2",
           "array getObjects:range: 0 2,2",
           "array removeObjectsInRange: 2,2",
           "array removeObject:inRange: 'x 2,2",
           "array replaceObjectsInRange:withObjectsFromArray: 2,2",
           "data getBytes:range: 0 2,2",
           "data subdataWithRange: 2,2",
           "data resetBytesInRange: 2,2",
           "data replaceBytesInRange:withBytes:length: 2,2 & 1",
           "string getCharacters:range: & 2,2",
           "changing replaceCharactersInRange:withString: 2,2 'x",
           "array indexOfObject:inRange: 'x 2,4294967295",
           "string characterAtIndex: 3",
           "string rangeOfComposedCharacterSequenceAtIndex: 3",
           "string getCharacters:range: & 4294967295,2",
           "string substringFromIndex: 4",
           "string substringToIndex: 4",
           "changing insertString:atIndex: 'x 4",
           "scanner setScanLocation: 4",
           "array insertObject:atIndex: 'x 4",
           "array removeObjectAtIndex: 3",
           "array replaceObjectAtIndex:withObject: 3 'x",
           "array exchangeObjectAtIndex:withObjectAtIndex: 0 3",
           "string substringWithRange: 3,4294967295",
           "string compare:options:range: 'b 0 3,1",
           "changing replaceOccurrencesOfString:withString:options:range: 'b 'c 0 3,1",
           "string rangeOfString:options:range: 'b 0 1,4294967295",
           "changing deleteCharactersInRange: 1,4294967295"}},
         {"2", {"string stringByPaddingToLength:withString:startingAtIndex: 9 '12 2"}},
         {"2147483647",
          {"NSMutableIndexSet addIndex: 2147483647", "NSMutableIndexSet addIndexesInRange: 5,2147483647",
           "+NSIndexSet indexSetWithIndexesInRange: 5,2147483647"}}},
        outside);
    expectRefused(NSInvalidArgumentException,
                  {{"range {1114111, 2} beyond the last code point",
                    {"+NSCharacterSet characterSetWithRange: 1114111,2"}},
                   {"range {2, 4294967295} beyond the last code point",
                    {"+NSCharacterSet initWithRange: 2,4294967295"}},
                   {"range {1114112, 1} beyond the last code point",
                    {"NSMutableCharacterSet removeCharactersInRange: 1114112,1"}},
                   {"\"cc\" is more than one type", {"+NSValue valueWithBytes:objCType: & 'cc"}},
                   {"\"x\" is no type encoding", {"+NSValue initWithBytes:objCType: & 'x"}},
                   {"the notification is null or has no name", {"NSNotificationCenter postNotification:"}}},
                  asSaid);
    expectRefused(NSMallocException,
                  {{"the data would hold more than 2^32 - 1 bytes", {"data increaseLengthBy: 4294967295"}}},
                  asSaid);
    expectAll({"NSNotificationCenter postNotificationName:object: -> NSInvalidArgumentException: "
               "postNotificationName: the name is null",
               "+NSNotification notificationWithName:object: -> NSInvalidArgumentException: "
               "notificationWithName: the name is null"},
              raisedBy);
}

struct Cell {
    NSRange row;
};

// Each row holds what was raised and the reason.
void expectReasons(std::initializer_list<std::pair<std::string, std::string>> rows) {
    for (const auto& [raised, reason] : rows) EXPECT_EQ(raised, "NSInvalidArgumentException: " + reason);
}

template <class Array, class Set, class Dictionary>
void expectEntriesRefused() {
    id some[] = {num(1), nullptr, num(3)}, full[] = {num(1), num(2)};
    expectReasons(
        {{RAISED(Array::of({num(1), nullptr})),
          Array::classObject()->name() + "::of: object 2 of 2 is null"s},
         {RAISED(Array::arrayWithObjects({nullptr})), "arrayWithObjects: object 1 of 1 is null"},
         {RAISED(Array::initWithObjects({nullptr})), "initWithObjects: object 1 of 1 is null"},
         {RAISED(Array::arrayWithObjects_count(some, 3)), "arrayWithObjects:count: object 2 of 3 is null"},
         {RAISED(Set::of({nullptr})), Set::classObject()->name() + "::of: object 1 of 1 is null"s},
         {RAISED(Set::setWithObjects({nullptr})), "setWithObjects: object 1 of 1 is null"},
         {RAISED(Set::initWithObjects({num(1), nullptr})), "initWithObjects: object 2 of 2 is null"},
         {RAISED(Dictionary::dictionaryWithObject_forKey(num(1), make<NSObject>().get())),
          "dictionaryWithObject:forKey: a key of class NSObject cannot be copied: "
          "NSObject does not implement copyWithZone:"},
         {RAISED(Dictionary::dictionaryWithObjects_forKeys(numbers({1, 2}), numbers({1}))),
          "dictionaryWithObjects:forKeys: 2 objects were given for 1 keys"},
         {RAISED(Dictionary::initWithObjects_forKeys(nullptr, numbers({1}))),
          "initWithObjects:forKeys: 0 objects were given for 1 keys"},
         {RAISED(Dictionary::dictionaryWithObjects_forKeys_count(full, some, 2)),
          "dictionaryWithObjects:forKeys:count: key 2 of 2 is null"},
         {RAISED(Dictionary::initWithObjects_forKeys_count(full, nullptr, 2)),
          "initWithObjects:forKeys:count: the keys must not be null where the length is 2"},
         {RAISED(Dictionary::initWithEntries({{num(1), nullptr}})),
          "initWithEntries: object 1 of 1 is null"}});
}

TEST(ArgumentsTest, OfWhatHoldsSeveralObjectsOrOtherTypes) {
    expectEntriesRefused<NSArray, NSSet, NSDictionary>();
    expectEntriesRefused<NSMutableArray, NSMutableSet, NSMutableDictionary>();
    expectEntriesRefused<NSArray, NSCountedSet, NSDictionary>();
    Class* own = Class::createSubclass("BareArray", NSArray::classObject());
    expectReasons(
        {{RAISED(send<id>(own, "arrayWithObject:"_sel, num(1))),
          "arrayWithObject: the creator makes objects of class NSArray, not of class BareArray, which needs "
          "a creator of its own"},
         {RAISED(NSDictionary::of({{nullptr, num(1)}})), "NSDictionary::of: key 1 of 1 is null"},
         {RAISED(NSDictionary::dictionary()->objectsForKeys_notFoundMarker(numbers({1}), nullptr)),
          "objectsForKeys:notFoundMarker: the marker is null"},
         {RAISED(NSValue::of(Cell{{1, 2}})->rangeValue()),
          "rangeValue: the value holds a struct Cell, not a struct NSRange"},
         {RAISED(num(1)->as<double>()), "as: the value holds an int, not a double"},
         {RAISED(NSGetSizeAndAlignment(nullptr, nullptr, nullptr)),
          "NSGetSizeAndAlignment: the type is null"},
         {RAISED(NSString::pathWithComponents(numbers({7}))),
          "pathWithComponents: a component is no string: 7"},
         {RAISED(NSRunLoop::currentRunLoop()->perform({}, nullptr)), "perform: the function is empty"},
         {RAISED(NSThread::detachNewThreadSelector_toTarget_withObject(SEL(), u""_ns, nullptr)),
          "detachNewThreadSelector:toTarget:withObject: the selector is null"},
         {RAISED(NSThread::detach({})), "detach: the function is empty"}});
    EXPECT_EQ(RAISED(u"abc"_ns->rangeOfCharacterFromSet_options_range(NSCharacterSet::letterCharacterSet(), 0,
                                                                      {2, 2})),
              "NSRangeException: rangeOfCharacterFromSet:options:range: range {2, 2} beyond bounds (3)");
}

}  // namespace
