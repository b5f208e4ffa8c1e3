// SPDX-License-Identifier: Apache-2.0
// The classes of Foundation, for headers that only name them: the floor's table of contents. A class whose
// name begins with NS stands in the header of its name, Foundation/NSArray.h.
#pragma once

#include "Runtime/Forward.h"

namespace pelvor {

// Strings and text
class AttributeRuns;              ///< the runs of an attributed string, to walk over
class NSAttributedString;         ///< a text whose stretches have attributes
class NSCharacterSet;             ///< a set of characters
class NSConstantString;           ///< a string literal: `u"text"_ns`
class NSMutableAttributedString;  ///< a text with attributes that can be changed
class NSMutableCharacterSet;      ///< a set of characters that can be changed
class NSMutableString;            ///< a text that can be changed
class NSPathStore2;               ///< what path operations return
class NSScanner;                  ///< reads numbers and words from a string
class NSString;                   ///< a text in UTF-16
class StringUnits;                ///< a string's units in one piece
class TextBoundaries;             ///< where words and sentences of a language begin and end
class TextDecoder;                ///< decodes a text that comes in pieces

// Collections
class NSArray;              ///< objects in an order
class NSCountedSet;         ///< objects, each with how often it was added
class NSDictionary;         ///< objects by key
class NSEnumerator;         ///< hands out the objects of a collection one by one
class NSIndexSet;           ///< a set of numbers, kept as ranges
class NSMutableArray;       ///< an array that can be changed
class NSMutableDictionary;  ///< a dictionary that can be changed
class NSMutableIndexSet;    ///< an index set that can be changed
class NSMutableSet;         ///< a set that can be changed
class NSSet;                ///< objects, each once

// Values
class NSCalendarDate;  ///< a moment with a time zone and a calendar
class NSData;          ///< bytes
class NSDate;          ///< a moment
class NSMutableData;   ///< bytes that can be changed
class NSNull;          ///< the object that stands for null in collections
class NSNumber;        ///< a number or truth value
class NSRangeValue;    ///< a range as an object
class NSTimeZone;      ///< how a region's clocks differ from universal time
class NSValue;         ///< any C value as an object

// Archives, property lists and settings
class NSCoder;                      ///< what objects are archived with
class NSKeyedArchiver;              ///< writes objects as a keyed archive
class NSKeyedUnarchiver;            ///< reads objects from a keyed archive
class NSPropertyListError;          ///< why a property list cannot be read or written
class NSPropertyListSerialization;  ///< property lists to bytes and back
class NSUserDefaults;               ///< the user's settings

// URLs and loading
class NSHTTPURLResponse;    ///< status and header fields of a server's answer
class NSMutableURLRequest;  ///< a request that can be changed
class NSURL;                ///< the address of a resource
class NSURLConnection;      ///< sends a request and receives the answer
class NSURLError;           ///< why a URL could not be loaded
class NSURLRequest;         ///< what is asked of a server
class NSURLResponse;        ///< what is known of a resource before its content

// Notifications, time and threads
class ClockScope;            ///< a clock that tests move
class NSConditionLock;       ///< a lock that is taken in a state
class NSLock;                ///< a lock
class NSNotification;        ///< what happened, and to whom
class NSNotificationCenter;  ///< tells observers what happened
class NSNotificationQueue;   ///< posts notifications later, and once
class NSRecursiveLock;       ///< a lock that its thread can take again
class NSRunLoop;             ///< waits for timers, descriptors and performs
class NSThread;              ///< a thread
class NSTimer;               ///< a message at a moment, or again and again

// Files
class DesktopTrash;   ///< a folder of what the user threw away
class NSFileError;    ///< why a file could not be read, written, copied, moved or removed
class NSFileManager;  ///< what files there are, and making, copying, moving and removing them

// The program
class LogSinkScope;   ///< catches what is logged while it lives
class NSBundle;       ///< a folder with code, resources and declarations
class NSNib;          ///< an interface file, from which objects are made
class NSNibError;     ///< why an interface file cannot be used
class NSProcessInfo;  ///< the process: arguments, environment, name
class NSUndoManager;  ///< remembers how to take back what was done
class NSWorkspace;    ///< other programs, and files that they change

}  // namespace pelvor
