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

/// The settings that the program was started with: "-Key value" among its arguments.
extern PELVOR_EXPORT NSString* const NSArgumentDomain;
/// The settings that hold where the user has made none: `registerDefaults`.
extern PELVOR_EXPORT NSString* const NSRegistrationDomain;

/// Posted by settings, on the thread that changed them, when the domain of the file has changed, by setting
/// or by `synchronize`.
extern PELVOR_EXPORT NSString* const NSUserDefaultsDidChangeNotification;

/// Settings by key, looked up in domains, the first that has the key counting: the arguments, other volatile
/// domains in the order in which they were set, the domain that is kept in a file, the registered settings.
/// What is set goes to the file's domain, and to the file itself by `synchronize`: pelvor/<domain>.plist in
/// the user's folder for configuration ($XDG_CONFIG_HOME, or ~/.config), which only the user can read.
///
/// A file that is damaged counts as empty and is told of in the log; before a new one takes its place, it is
/// kept under its name with ".damaged" behind it. Any thread.
class PELVOR_EXPORT NSUserDefaults : public NSObject {
    PELVOR_CLASS(NSUserDefaults, NSObject);

  public:
    // Creation

    /// The program's settings, with its arguments; made on first demand for the domain with the program's
    /// name.
    static NSUserDefaults* standardUserDefaults();
    /// Makes other settings the program's: those of a host that chooses its domain, or of a test. None: they
    /// are made anew when they are next asked for.
    static void setStandardUserDefaults(NSUserDefaults* defaults);

    /// The settings in the file of that domain. Raises NSInvalidArgumentException for a name that cannot be a
    /// file's.
    static Retained<NSUserDefaults> initWithDomainName(NSString* name, Class* cls = classObject());
    /// Settings in memory only, which never touch a file.
    static Retained<NSUserDefaults> initVolatile(Class* cls = classObject());

    // Reading. Objects are borrowed, and immutable unless they were registered otherwise.

    /// None where no domain has the key.
    id objectForKey(NSString* key);
    /// A string, or a number as text; else none.
    NSString* stringForKey(NSString* key);
    /// None for objects of another class.
    NSArray* arrayForKey(NSString* key);
    /// None unless all objects of the array are strings.
    NSArray* stringArrayForKey(NSString* key);
    NSDictionary* dictionaryForKey(NSString* key);
    NSData* dataForKey(NSString* key);
    /// A number, or a string read as one; 0 for anything else. A boolean is true for numbers other than 0 and
    /// for texts that begin with Y, T or such a number.
    NSInteger integerForKey(NSString* key);
    float floatForKey(NSString* key);
    double doubleForKey(NSString* key);
    bool boolForKey(NSString* key);
    /// All that can be found, by key.
    NSDictionary* dictionaryRepresentation();

    // Changing the domain of the file

    /// Keeps a copy of the object; none removes the key. Raises NSInvalidArgumentException for no key and for
    /// objects and keys that no XML property list can hold.
    void setObject_forKey(id object, NSString* key);
    void setInteger_forKey(NSInteger value, NSString* key);
    void setFloat_forKey(float value, NSString* key);
    void setDouble_forKey(double value, NSString* key);
    void setBool_forKey(bool value, NSString* key);
    /// Other domains may still have the key.
    void removeObjectForKey(NSString* key);
    /// Writes changes to the file and reads what others have written to it; whether that worked. Changes that
    /// could not be written are kept for the next time. Of a key that was changed here and elsewhere, the
    /// change made here counts.
    bool synchronize();

    // Other domains

    /// Adds settings that hold where there are no others. Raises NSInvalidArgumentException for none.
    void registerDefaults(NSDictionary* settings);
    /// Sets all settings of a domain that is not kept in a file.
    void setVolatileDomain_forName(NSDictionary* settings, NSString* name);
    /// None where there is no such domain.
    NSDictionary* volatileDomainForName(NSString* name);
    void removeVolatileDomainForName(NSString* name);
    /// The settings that arguments of the form "-Key value" make. A value is a string unless it is a property
    /// list in brackets of any kind, "(de, en)".
    static NSDictionary* settingsFromArguments(NSArray* arguments);

  protected:
    NSUserDefaults();
    ~NSUserDefaults();

  private:
    void change(Retained<Object> object, NSString* key);

    const std::unique_ptr<DefaultsStore> _store;
};

}  // namespace pelvor
