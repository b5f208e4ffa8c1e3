// SPDX-License-Identifier: Apache-2.0
// NSBundle: a folder with code, resources and a description of them.
#pragma once

#include <memory>

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;
struct BundleContents;
struct Library;

/// Posted on the default centre when a bundle has been loaded, on the thread that loaded the bundle. The
/// object is the bundle; the user information has an array with the names of the bundle's classes under the
/// key NSLoadedClasses.
inline constexpr NSString* NSBundleDidLoadNotification = u"NSBundleDidLoadNotification"_ns;
inline constexpr NSString* NSLoadedClasses = u"NSLoadedClasses"_ns;

/// In Info.plist, the key of the interface version that the bundle's code was built with, as a text:
/// `pelvor_add_plugin` of the CMake package writes it. See `NSBundle::load`.
inline constexpr NSString* PelvorInterfaceVersionKey = u"PelvorInterfaceVersion"_ns;

/// A folder with code, resources and a description of them:
///
///     Contents/Info.plist            what the bundle says about itself, a dictionary
///     Contents/Resources/            resources; those in a language lie in <language>.lproj
///     Contents/Linux/<executable>    the code; Info.plist has the file's name as CFBundleExecutable
///     Contents/PlugIns/              further bundles
///
/// The folder Contents may be left out; its members then lie in the bundle's folder itself. Plug-ins are
/// called Name.bundle, frameworks Name.framework, and a host's own folder is simply called Name. The bundle
/// of a program that lies in no such folder is the folder that the program lies in.
///
/// A host loads its plug-ins, and finds a text in the user's language:
///
///     NSBundle* own = NSBundle::mainBundle();
///     for (id plugIn : NSBundle::bundlesInDirectory(own->builtInPlugInsPath()))
///         cast<NSBundle>(plugIn)->load();  // a plug-in that cannot be loaded is logged
///     NSString* title = own->localizedStringForKey_value_table(u"_Open"_ns, nullptr, nullptr);
///
/// A folder has one bundle object, which lives as long as the process. Results are borrowed. Any thread.
class PELVOR_EXPORT NSBundle : public NSObject {
    PELVOR_CLASS(NSBundle, NSObject);
    PELVOR_CREATORS(bundleWithPath, initWithPath);

  public:
    /// Finds the main bundle and the frameworks that the program is linked to. The runtime sends it.
    static void initialize(Class* cls);

    // Bundles

    /// Returns the program's bundle.
    static NSBundle* mainBundle();
    /// Returns the bundle of the folder, which is made on first demand; null if there is no such folder.
    static NSBundle* bundleWithPath(NSString* path, Class* cls = classObject());
    static Retained<NSBundle> initWithPath(NSString* path, Class* cls = classObject());
    /// Returns the bundle whose code the class belongs to. Classes of the program, and of the libraries that
    /// the program is linked to, belong to the main bundle, unless their library is a framework's. A class
    /// that was made at run time belongs where its superclass belongs. Returns null for null.
    static NSBundle* bundleForClass(Class* cls);
    /// Returns the first bundle that has the identifier, searching `allBundles` and then `allFrameworks`;
    /// null if there is none.
    static NSBundle* bundleWithIdentifier(NSString* identifier);
    /// Returns the main bundle, and after it all other bundles that are no frameworks, in the order in which
    /// they were first asked for.
    static NSArray* allBundles();
    /// Returns the frameworks in the order in which they were found, registered or first asked for.
    static NSArray* allFrameworks();
    /// Returns the bundles <path>/*.bundle in the order of the bytes of their names, without loading any. If
    /// the folder cannot be read, the array is empty and the log tells why; if there is no such folder, the
    /// array is empty.
    static NSArray* bundlesInDirectory(NSString* path);
    /// Makes the folder a framework of the process, whatever its name. Returns its bundle, or null if there
    /// is no such folder.
    static NSBundle* registerFramework(NSString* path);

    // C++ only
    /// Makes the folder a framework of the process, whose classes are those of the library.
    static NSBundle* registerFramework_library(NSString* path, Library& library);

    // What a bundle says about itself

    /// Returns the bundle's folder, with symbolic links resolved.
    NSString* bundlePath();
    NSString* resourcePath();
    NSString* builtInPlugInsPath();
    /// Returns where the bundle's code is, or would be; null if Info.plist names no executable.
    NSString* executablePath();
    NSString* bundleIdentifier();
    /// Returns what Info.plist holds; an empty dictionary if the file cannot be read or used.
    NSDictionary* infoDictionary();
    /// Returns the string table InfoPlist in the user's language; null if there is none.
    NSDictionary* localizedInfoDictionary();
    /// Returns the value of `localizedInfoDictionary`, else that of `infoDictionary`, else null.
    id objectForInfoDictionaryKey(NSString* key);

    // Resources. The type is the extension of the file's name, with or without its full stop; with a null or
    // empty type, the name carries its extension itself. Resources without a language are found before those
    // of the preferred localisations. A subfolder is a folder in Resources or in a .lproj folder; null stands
    // for Resources and the .lproj folders themselves.

    /// Returns the path of the file; for a null name, the path of the first file of the type. Returns null if
    /// there is no such file.
    NSString* pathForResource_ofType(NSString* name, NSString* type);
    NSString* pathForResource_ofType_inDirectory(NSString* name, NSString* type, NSString* subfolder);
    /// Searches Resources and the .lproj folder of this language; no other language.
    NSString* pathForResource_ofType_inDirectory_forLocalization(NSString* name, NSString* type,
                                                                 NSString* subfolder, NSString* localization);
    /// Returns the paths of all files of the type, ordered by folder and then by name. Of several files with
    /// one name, the preferred one is returned. A null type stands for all types.
    NSArray* pathsForResourcesOfType_inDirectory(NSString* type, NSString* subfolder);

    // Languages

    /// Returns the names of the .lproj folders in the order of their bytes: "de", "en".
    NSArray* localizations();
    /// Returns the localisations that the user understands, the best one first: for each of the user's
    /// languages the language itself and then the language without its region ("fr_CA", "fr"); after them the
    /// bundle's own language, CFBundleDevelopmentRegion, and English.
    NSArray* preferredLocalizations();
    /// Returns the text for the key in the string table <table>.strings of the first preferred localisation
    /// that has the table. A null or empty `table` stands for "Localizable". Where there is no text, returns
    /// `value` itself if it has any characters, else the key. A table that cannot be read counts as empty,
    /// and the log tells why, with line and column.
    NSString* localizedStringForKey_value_table(NSString* key, NSString* value, NSString* table);

    // Code

    /// Loads the bundle's code, registers its classes and posts NSBundleDidLoadNotification. Returns whether
    /// the bundle is loaded afterwards; a failure is one line of the log with the bundle, the stage and the
    /// reason, and leaves nothing behind that could be used. Loading a bundle without code does nothing but
    /// post. Code is never unloaded. The stages:
    ///
    ///     information   Info.plist is there, can be read, and has texts where texts belong
    ///     identifier    no loaded bundle has the same CFBundleIdentifier
    ///     executable    the file is code for this machine
    ///     interface     the code was built with the interface version of this process
    ///     code          the system's loader and the constructors in the code succeed
    ///     registration  the code gives the list of its classes, whose names are free
    ///
    /// The interface version is told twice. Info.plist has to have it under PelvorInterfaceVersionKey, so
    /// that no constructor runs in code that cannot work; the list of classes has it too, and is refused if
    /// it is no list of this platform.
    bool load();
    /// Loads the bundle as `load` does, without a line in the log. `reason`, unless null, receives "stage:
    /// reason", or null after a success.
    bool loadAndReturnError(NSString** reason);
    bool isLoaded();
    /// Loads the bundle and returns the class that Info.plist names as NSPrincipalClass, else the first class
    /// of the bundle's library. Returns null if there is no such class or the bundle cannot be loaded.
    Class* principalClass();
    /// Loads the bundle and returns the class of that name if the class belongs to the bundle, else null.
    Class* classNamed(NSString* name);

    NSString* description() override;

  protected:
    NSBundle();
    ~NSBundle();

  private:
    friend class BundleList;
    friend class BundleLoader;

    void chooseLocalizations(NSArray* languages);
    NSString* pathForResource(NSString* name, NSString* type, NSString* subfolder, NSArray* localizations);
    Retained<NSDictionary> stringTable(NSString* name);

    std::unique_ptr<BundleContents> _contents;
};

}  // namespace pelvor
