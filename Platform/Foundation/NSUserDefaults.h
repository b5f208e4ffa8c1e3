// SPDX-License-Identifier: Apache-2.0
// NSUserDefaults: the user's settings.
#pragma once

#include <memory>

#include "Foundation/NSRange.h"
#include "Runtime/Class.h"

namespace pelvor {

class DefaultsStore;
class NSArray;
class NSData;
class NSDictionary;
class NSString;

/// The domain of the settings that the program was started with: "-Key value" among its arguments.
extern PELVOR_EXPORT NSString* const NSArgumentDomain;
/// The domain of the settings that hold where the user has set nothing; `registerDefaults` adds to it.
extern PELVOR_EXPORT NSString* const NSRegistrationDomain;

/// Posted by an NSUserDefaults object after the domain of its file has changed: because a setting was set or
/// removed, or because `synchronize` read a change of another process. Posted on the thread that called the
/// operation.
extern PELVOR_EXPORT NSString* const NSUserDefaultsDidChangeNotification;

/// Settings by key. A program registers the values that hold until the user changes them, reads and changes
/// settings, and writes the changes to a file:
///
///     NSUserDefaults* defaults = NSUserDefaults::standardUserDefaults();
///     defaults->registerDefaults(NSDictionary::of({{u"Columns"_ns, NSNumber::numberWithInt(80)}}));
///     NSInteger columns = defaults->integerForKey(u"Columns"_ns);  // 72 after the argument "-Columns 72"
///     defaults->setInteger_forKey(100, u"Columns"_ns);
///     defaults->synchronize();
///
/// A key is looked up in several domains, of which the first that has the key counts: the arguments; other
/// volatile domains in the order in which they were set; the domain that is kept in a file; the registered
/// settings. The `set…` operations change the domain of the file; `synchronize` writes the file, which is
/// pelvor/<name of the domain>.plist in the user's folder for configuration ($XDG_CONFIG_HOME, or ~/.config).
/// Only the user can read the file.
///
/// A damaged file counts as empty, and a line of the log says so. Before a new file is written, the damaged
/// file is renamed: ".damaged" is appended to its name. Any thread.
class PELVOR_EXPORT NSUserDefaults : public NSObject {
    PELVOR_CLASS(NSUserDefaults, NSObject);
    PELVOR_CREATORS(initWithDomainName, initVolatile);

  public:
    // Creation

    /// Returns the program's settings, with its arguments; borrowed. The first call makes them, for the
    /// domain with the program's name.
    static NSUserDefaults* standardUserDefaults();
    /// Replaces the program's settings by `defaults`, which is retained: for a host that chooses the domain,
    /// or for a test. If `defaults` is null, the next call of `standardUserDefaults` makes new settings.
    static void setStandardUserDefaults(NSUserDefaults* defaults);

    /// Returns the settings in the file of the domain. Raises NSInvalidArgumentException for a name that is
    /// null or empty, has more than 200 bytes of UTF-8, or contains "/".
    static Retained<NSUserDefaults> initWithDomainName(NSString* name, Class* cls = classObject());
    /// Returns settings in memory only, which never touch a file.
    static Retained<NSUserDefaults> initVolatile(Class* cls = classObject());

    // Reading. The results are borrowed, and immutable unless mutable objects were registered. A null key is
    // a key that no domain has.

    /// Returns null if no domain has the key.
    id objectForKey(NSString* key);
    /// Returns a string, or a number as text; null for an object of another class.
    NSString* stringForKey(NSString* key);
    /// Returns null if the object under the key is no array.
    NSArray* arrayForKey(NSString* key);
    /// Returns null unless the object is an array that contains nothing but strings.
    NSArray* stringArrayForKey(NSString* key);
    /// These return null if the object under the key is of another class.
    NSDictionary* dictionaryForKey(NSString* key);
    NSData* dataForKey(NSString* key);
    /// These return the value of a number, or the number at the start of a string, and 0 for any other
    /// object. `boolForKey` returns true for a number other than 0 and for a string that begins with "Y", "T"
    /// or a number other than 0, in either case of the letters.
    NSInteger integerForKey(NSString* key);
    float floatForKey(NSString* key);
    double doubleForKey(NSString* key);
    bool boolForKey(NSString* key);
    /// Returns the settings of all domains in one dictionary: under each key the object that `objectForKey`
    /// returns.
    NSDictionary* dictionaryRepresentation();

    // Changing the domain of the file

    /// Keeps a copy of the object; a null object removes the key. Raises NSInvalidArgumentException if the
    /// key is null, and for an object or a key that an XML property list cannot hold.
    void setObject_forKey(id object, NSString* key);
    /// These keep a number, and raise NSInvalidArgumentException if the key is null.
    void setInteger_forKey(NSInteger value, NSString* key);
    void setFloat_forKey(float value, NSString* key);
    void setDouble_forKey(double value, NSString* key);
    void setBool_forKey(bool value, NSString* key);
    /// Removes the key from the domain of the file; other domains may still have it. Raises
    /// NSInvalidArgumentException if the key is null.
    void removeObjectForKey(NSString* key);
    /// Writes the changes to the file, and reads what other processes have written to it. Returns whether
    /// both succeeded. Changes that cannot be written are kept for the next time. If a key was changed here
    /// and in another process, the change made here counts.
    bool synchronize();

    // Other domains

    /// Adds settings that hold where no other domain has the key. Raises NSInvalidArgumentException if
    /// `settings` is null.
    void registerDefaults(NSDictionary* settings);
    /// Replaces all settings of a domain that is not kept in a file, or adds the domain. The dictionary is
    /// copied. Raises NSInvalidArgumentException if `settings` or `name` is null.
    void setVolatileDomain_forName(NSDictionary* settings, NSString* name);
    /// Returns the settings of a volatile domain, borrowed; null if no volatile domain has the name.
    NSDictionary* volatileDomainForName(NSString* name);
    /// Does nothing if no volatile domain has the name.
    void removeVolatileDomainForName(NSString* name);
    /// Returns the settings in arguments of the form "-Key value", borrowed. A value is a string, unless it
    /// is a property list that begins with "(", "{" or "<", such as "(de, en)".
    static NSDictionary* settingsFromArguments(NSArray* arguments);

  protected:
    NSUserDefaults();
    ~NSUserDefaults();

  private:
    void change(Retained<Object> object, NSString* key);

    const std::unique_ptr<DefaultsStore> _store;
};

}  // namespace pelvor
