// SPDX-License-Identifier: Apache-2.0
// NSBundle: a folder with code, resources and a description of them.
#pragma once

#include <memory>

#include "Foundation/NSString.h"

namespace pelvor {

class NSDictionary;
struct BundleContents;
struct Library;

/// Posted on the default centre when a bundle has been loaded, by the loading thread. The object is the
/// bundle; the user information has the names of the classes that came with it, an array, under
/// "NSLoadedClasses".
inline constexpr NSString* NSBundleDidLoadNotification = u"NSBundleDidLoadNotification"_ns;
inline constexpr NSString* NSLoadedClasses = u"NSLoadedClasses"_ns;

/// A folder that holds
///
///     Contents/Info.plist            what the bundle says about itself, a dictionary
///     Contents/Resources/            resources; those in a language in <language>.lproj
///     Contents/Linux/<executable>    code, under the name that Info.plist has as CFBundleExecutable
///     Contents/PlugIns/              further bundles
///
/// or has the same without the folder Contents. Plug-ins are called Name.bundle, frameworks Name.framework,
/// and a host's own folder simply Name. A program that lies in no such folder has the folder it lies in as
/// its bundle. There is one object a folder, which lives as long as the process. Any thread.
class PELVOR_EXPORT NSBundle : public NSObject {
    PELVOR_CLASS(NSBundle, NSObject);

  public:
    /// Finds the main bundle and the frameworks that the program is linked to. May be sent again.
    static void initialize(Class* cls);

    // Bundles

    /// The program's.
    static NSBundle* mainBundle();
    /// The bundle of the folder, made on first demand; none if there is no such folder.
    static NSBundle* bundleWithPath(NSString* path, Class* cls = classObject());
    static Retained<NSBundle> initWithPath(NSString* path, Class* cls = classObject());
    /// The bundle whose code the class belongs to. Classes of the program and of the libraries it is linked
    /// to are the main bundle's, unless their library is a framework's; those made at run time belong
    /// where their superclass does. None for none.
    static NSBundle* bundleForClass(Class* cls);
    /// The first one, of `allFrameworks` behind `allBundles`, that has the identifier.
    static NSBundle* bundleWithIdentifier(NSString* identifier);
    /// The main bundle, then all others that are no frameworks in the order in which they were first asked
    /// for.
    static NSArray* allBundles();
    /// In the order in which they were found, registered or first asked for.
    static NSArray* allFrameworks();
    /// The bundles <path>/*.bundle, in the order of the bytes of their names; none is loaded by it. A folder
    /// that cannot be read gives none and a line in the log, one that is not there gives none.
    static NSArray* bundlesInDirectory(NSString* path);
    /// Makes the folder a framework of the process, whatever its name, and answers its bundle, or none if
    /// there is no such folder.
    static NSBundle* registerFramework(NSString* path);

    // C++ only
    /// `registerFramework` for a framework whose classes are those of the library.
    static NSBundle* registerFramework_library(NSString* path, Library& library);

    // What a bundle says about itself

    /// With symbolic links resolved.
    NSString* bundlePath();
    NSString* resourcePath();
    NSString* builtInPlugInsPath();
    /// None if the bundle names no executable.
    NSString* executablePath();
    NSString* bundleIdentifier();
    /// Empty if there is none that can be read.
    NSDictionary* infoDictionary();
    /// The string table InfoPlist in the user's language, or none.
    NSDictionary* localizedInfoDictionary();
    /// The localised value, else the other one.
    id objectForInfoDictionaryKey(NSString* key);

    // Resources. A name may carry its extension if the type is none or empty. Looked for is first what is in
    // no language, then what is in the preferred localisations. A subfolder is one of Resources, and of the
    // .lproj folders; none stands for themselves.

    /// The path of the file; with no name, of the first one of the type. None if there is none.
    NSString* pathForResource_ofType(NSString* name, NSString* type);
    NSString* pathForResource_ofType_inDirectory(NSString* name, NSString* type, NSString* subfolder);
    /// Of all languages only this one.
    NSString* pathForResource_ofType_inDirectory_forLocalization(NSString* name, NSString* type,
                                                                 NSString* subfolder, NSString* localization);
    /// The files of the type, of several with one name the preferred one; ordered by folder, then by name.
    /// No type stands for all.
    NSArray* pathsForResourcesOfType_inDirectory(NSString* type, NSString* subfolder);

    // Languages

    /// The names of the .lproj folders, in order.
    NSArray* localizations();
    /// Those of them that the user understands, best first: for each of the user's languages itself, then
    /// without its region ("fr_CA", "fr"); behind them the bundle's own language, CFBundleDevelopmentRegion,
    /// and English.
    NSArray* preferredLocalizations();
    /// The text for the key in the string table (none: "Localizable"), as the first preferred localisation
    /// has it that has the table. Without one, `value` itself if it has any characters, else the key.
    NSString* localizedStringForKey_value_table(NSString* key, NSString* value, NSString* table);

    // Code

    /// Loads the bundle's code, registers its classes and posts NSBundleDidLoadNotification. Whether the
    /// bundle is loaded then. A failure leaves nothing behind that could be used and writes one line to the
    /// log, which names bundle, stage and reason. A bundle without code is loaded by no more than the
    /// notification. Code is never unloaded.
    bool load();
    /// The same with the stage and the reason as text, borrowed, in place of the line in the log; none for
    /// success. `reason` may be none.
    bool loadAndReturnError(NSString** reason);
    bool isLoaded();
    /// The class that Info.plist has as NSPrincipalClass, else the first of the bundle's library; loads the
    /// bundle. None if there is none.
    Class* principalClass();
    /// The class of that name if it is the bundle's; loads the bundle.
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
