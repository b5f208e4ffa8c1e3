// SPDX-License-Identifier: Apache-2.0
// The classes of PelvorBase, for headers that only name them: the library's table of contents. Each class
// stands in the header of its name. The library's additions to the platform's classes stand in the headers
// named after these classes, NSString-PelvorAdditions.h and so on.
#pragma once

#include "Foundation/Forward.h"

namespace pelvor {

// Plug-ins and their declarations
class PBPostLoader;  ///< calls what classes do when the program has loaded them
class PBProfile;     ///< one declaration: what a class or a resource is for
class PBProfileSet;  ///< profiles, filtered by conditions
class PBRegistry;    ///< all declarations of all bundles

// Deferred work and notification
class PBDelayedActionTimer;   ///< an action once the calls for it have stopped for a while
class PBIdleQueue;            ///< objects that are served when there is nothing else to do
class PBIdleQueueScheduler;   ///< serves the idle queues of a thread
class PBNotificationCenter;   ///< what the default centre becomes once names are disabled
class PBNotificationWatcher;  ///< watches one sender for a list of names
class PBObserverSet;          ///< observers that one message tells
class ZWMainThreadProxy;      ///< sends messages on to an object on the main thread

// Files
class PBFileWatcher;             ///< tells on the main thread what happens to files
class ZWFNSubscribeFileWatcher;  ///< tells that folders have changed
class ZWKQueue;                  ///< tells what happens to files, from a thread of its own

// Objects and references
class PBExternalObjectPool;  ///< a pool that retains what it is given, with a lock if asked
class PBObjectPool;          ///< objects kept for another use, by one thread
class PBSafeWeakReference;   ///< passes messages on to an object that it does not keep
class PBUniqueObject;        ///< a dictionary key that equals no other object
class PBWeakReference;       ///< a reference that does not keep its object

// Collections and numbers
class PBFloatArray;              ///< a fixed number of floats
class PBFloatVector;             ///< floats that come and go
class PBLinkedList;              ///< a list whose nodes stay where they are
class PBLinkedListEnumerator;    ///< walks a linked list
class PBLinkedListNode;          ///< a place in a linked list
class PBMutableIntNumber;        ///< an integer object that changes
class PBMutableNumber;           ///< a number object that changes
class PBSingleObjectEnumerator;  ///< an enumerator of one object

// Network
class PBPostURLRequest;  ///< a request that sends values and files as a form

// Text
class OFCharacterScanner;  ///< reads a text that comes in buffers
class OFCharacterSet;      ///< a bitmap of characters, asked for each unit
class OFStringScanner;     ///< a character scanner over a string
class OFTrie;              ///< finds the words of a list in a text
class OFTrieBucket;        ///< what a word of a trie leads to
class OFTrieEnumerator;    ///< walks the words of a trie
class OFTrieNode;          ///< where words of a trie part
class PBRepeatString;      ///< a text again and again, never built
class PBUnichar32String;   ///< a text kept as code points

// Spelling
class PBSpellCheckerLanguage;  ///< a language in which texts are checked

// Menus
class PBAutoscrollingTableView;  ///< a table in which typing selects rows
class PBMenuItem;                ///< a menu item that can show a shortcut of several keys

// Keyboards
class PBKeyboardInputMethod;  ///< a keyboard layout, to be listed, stored and restored

// Older platforms
class PantherCursor;  ///< gives cursors for hands and edges
class PantherFont;    ///< gives fonts the sizes of controls
class PantherObject;  ///< gives all objects `setValue:forKey:`

// Hooks
class PBUtil_Dummy;         ///< sets the library up when classes are loaded
class _PBAssertionWarning;  ///< a place for warnings about assertions

// Views
class PBScrollView;  ///< a scroll view that scrolls without telling of each focus

}  // namespace pelvor
