// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSBundle.h"

#include <algorithm>
#include <filesystem>

#include "Foundation/Bundles/BundleContents.h"
#include "Foundation/Bundles/BundleList.h"
#include "Foundation/Bundles/BundleLoader.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSRuntimeNames.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/NSException.h"

namespace pelvor {

namespace fs = std::filesystem;

PELVOR_DEFINE_CLASS(NSBundle, foundationLibrary) {
    methods.classLevel<"initialize", &NSBundle::initialize>();
    methods.classLevel<"mainBundle", &NSBundle::mainBundle>();
    methods.creator<"bundleWithPath:", &NSBundle::bundleWithPath>();
    methods.creator<"initWithPath:", &NSBundle::initWithPath>();
    methods.classLevel<"bundleForClass:", &NSBundle::bundleForClass>();
    methods.classLevel<"bundleWithIdentifier:", &NSBundle::bundleWithIdentifier>();
    methods.classLevel<"allBundles", &NSBundle::allBundles>();
    methods.classLevel<"allFrameworks", &NSBundle::allFrameworks>();
    methods.classLevel<"bundlesInDirectory:", &NSBundle::bundlesInDirectory>();
    methods.classLevel<"registerFramework:", &NSBundle::registerFramework>();

    methods.instance<"bundlePath", &NSBundle::bundlePath>();
    methods.instance<"resourcePath", &NSBundle::resourcePath>();
    methods.instance<"builtInPlugInsPath", &NSBundle::builtInPlugInsPath>();
    methods.instance<"executablePath", &NSBundle::executablePath>();
    methods.instance<"bundleIdentifier", &NSBundle::bundleIdentifier>();
    methods.instance<"infoDictionary", &NSBundle::infoDictionary>();
    methods.instance<"localizedInfoDictionary", &NSBundle::localizedInfoDictionary>();
    methods.instance<"objectForInfoDictionaryKey:", &NSBundle::objectForInfoDictionaryKey>();

    methods.instance<"pathForResource:ofType:", &NSBundle::pathForResource_ofType>();
    methods.instance<"pathForResource:ofType:inDirectory:", &NSBundle::pathForResource_ofType_inDirectory>();
    methods.instance<"pathForResource:ofType:inDirectory:forLocalization:",
                     &NSBundle::pathForResource_ofType_inDirectory_forLocalization>();
    methods
        .instance<"pathsForResourcesOfType:inDirectory:", &NSBundle::pathsForResourcesOfType_inDirectory>();
    methods.instance<"localizations", &NSBundle::localizations>();
    methods.instance<"preferredLocalizations", &NSBundle::preferredLocalizations>();
    methods.instance<"localizedStringForKey:value:table:", &NSBundle::localizedStringForKey_value_table>();

    methods.instance<"load", &NSBundle::load>();
    methods.instance<"loadAndReturnError:", &NSBundle::loadAndReturnError>();
    methods.instance<"isLoaded", &NSBundle::isLoaded>();
    methods.instance<"principalClass", &NSBundle::principalClass>();
    methods.instance<"classNamed:", &NSBundle::classNamed>();
}

NSBundle::NSBundle() : _contents(std::make_unique<BundleContents>()) {}

NSBundle::~NSBundle() = default;

void NSBundle::initialize(Class*) { BundleList::shared().setUp(); }

// MARK: Bundles

namespace {

NSArray* bundlesThatAreFrameworks(bool areFrameworks) {
    auto* found = NSMutableArray::array();
    for (NSBundle* bundle : BundleList::shared().all())
        if (BundleList::contents(bundle).isFramework == areFrameworks) found->addObject(bundle);
    return found;
}

}  // namespace

NSBundle* NSBundle::mainBundle() {
    classRecord.initializeIfNeeded();
    return BundleList::shared().mainBundle();
}

NSBundle* NSBundle::bundleWithPath(NSString* path, Class* cls) {
    classRecord.initializeIfNeeded();
    return path ? BundleList::shared().bundleWithPath(path->toUTF8(), cls) : nullptr;
}

Retained<NSBundle> NSBundle::initWithPath(NSString* path, Class* cls) {
    return Retained<NSBundle>::retaining(bundleWithPath(path, cls));
}

NSBundle* NSBundle::bundleForClass(Class* cls) {
    classRecord.initializeIfNeeded();
    return BundleList::shared().bundleForClass(cls);
}

NSBundle* NSBundle::bundleWithIdentifier(NSString* identifier) {
    classRecord.initializeIfNeeded();
    if (!identifier) return nullptr;
    AutoreleasePool pool;
    for (NSArray* bundles : {bundlesThatAreFrameworks(false), bundlesThatAreFrameworks(true)})
        for (id bundle : bundles)
            if (identifier->isEqual(static_cast<NSBundle*>(bundle)->bundleIdentifier()))
                return static_cast<NSBundle*>(bundle);
    return nullptr;
}

NSArray* NSBundle::allBundles() {
    classRecord.initializeIfNeeded();
    return bundlesThatAreFrameworks(false);
}

NSArray* NSBundle::allFrameworks() {
    classRecord.initializeIfNeeded();
    return bundlesThatAreFrameworks(true);
}

NSArray* NSBundle::bundlesInDirectory(NSString* path) {
    classRecord.initializeIfNeeded();
    auto* bundles = NSMutableArray::array();
    if (!path) return bundles;
    std::error_code error;
    std::vector<std::string> names;
    for (fs::directory_iterator entry(path->toUTF8(), error), end; !error && entry != end;
         entry.increment(error))
        if (entry->path().extension() == ".bundle") names.push_back(entry->path().string());
    if (error && error != std::errc::no_such_file_or_directory)
        NSLog(u"Cannot look for bundles in %@: %s"_ns, path, error.message());
    std::sort(names.begin(), names.end());
    for (const std::string& name : names)
        if (NSBundle* bundle = BundleList::shared().bundleWithPath(name, classObject()))
            bundles->addObject(bundle);
    return bundles;
}

NSBundle* NSBundle::registerFramework(NSString* path) {
    NSBundle* bundle = bundleWithPath(path);
    BundleList::shared().makeFramework(bundle);
    return bundle;
}

NSBundle* NSBundle::registerFramework_library(NSString* path, Library& library) {
    NSBundle* bundle = registerFramework(path);
    if (bundle) BundleList::shared().noteLibrary(&library, bundle);
    return bundle;
}

// MARK: Information

namespace {

NSString* stringOf(const fs::path& path) { return NSString::ofUTF8(path.string()); }

NSString* textForKey(NSBundle* bundle, NSString* key) {
    return cast<NSString>(bundle->infoDictionary()->objectForKey(key));
}

}  // namespace

NSString* NSBundle::bundlePath() { return _contents->path; }

NSString* NSBundle::resourcePath() { return stringOf(_contents->resources); }

NSString* NSBundle::builtInPlugInsPath() { return stringOf(fs::path(_contents->folder) / "PlugIns"); }

NSString* NSBundle::executablePath() {
    if (!_contents->executable.empty()) return stringOf(_contents->executable);
    NSString* name = textForKey(this, u"CFBundleExecutable"_ns);
    return name ? stringOf(fs::path(_contents->folder) / "Linux" / name->toUTF8()) : nullptr;
}

NSString* NSBundle::bundleIdentifier() { return textForKey(this, u"CFBundleIdentifier"_ns); }

NSDictionary* NSBundle::infoDictionary() {
    std::lock_guard guard(_contents->mutex);
    if (!_contents->hasInformation) {
        _contents->information = readBundleInformation(_contents->folder + "/Info.plist");
        _contents->hasInformation = true;
    }
    return Retained(_contents->information.dictionary).autorelease();
}

id NSBundle::objectForInfoDictionaryKey(NSString* key) {
    if (!key) return nullptr;
    NSDictionary* localized = localizedInfoDictionary();
    id value = localized ? localized->objectForKey(key) : nullptr;
    return value ? value : infoDictionary()->objectForKey(key);
}

NSString* NSBundle::description() {
    return NSString::stringWithFormat(u"%s <%@> (%s)"_ns, isa()->name(), bundlePath(),
                                      isLoaded() ? "loaded" : "not loaded");
}

// MARK: Code

namespace {

void announce(NSBundle* bundle, const std::vector<std::string>& classNames) {
    AutoreleasePool pool;
    auto* names = NSMutableArray::array();
    for (const std::string& name : classNames) names->addObject(NSString::ofUTF8(name));
    try {
        NSNotificationCenter::defaultCenter()->postNotificationName_object_userInfo(
            NSBundleDidLoadNotification, bundle,
            NSDictionary::dictionaryWithObject_forKey(names, NSLoadedClasses));
    } catch (...) {
        NSLog(u"An observer of the loading of %@ raised: %s"_ns, bundle->bundlePath(),
              currentExceptionReason());
    }
}

}  // namespace

bool NSBundle::load() {
    AutoreleasePool pool;
    NSString* reason = nullptr;
    if (loadAndReturnError(&reason)) return true;
    NSLog(u"Cannot load the bundle %@: %@"_ns, bundlePath(), reason);
    return false;
}

bool NSBundle::loadAndReturnError(NSString** reason) {
    classRecord.initializeIfNeeded();
    if (reason) *reason = nullptr;
    std::vector<std::string> classNames;
    try {
        if (BundleLoader::load(this, classNames) == BundleLoader::Outcome::loaded) announce(this, classNames);
        return true;
    } catch (const BundleFault& fault) {
        if (reason) *reason = NSString::stringWithFormat(u"%s: %s"_ns, fault.stage, fault.reason);
        return false;
    }
}

bool NSBundle::isLoaded() { return _contents->code == BundleContents::Code::loaded; }

Class* NSBundle::principalClass() {
    if (!load()) return nullptr;
    if (NSString* name = textForKey(this, u"NSPrincipalClass"_ns)) return classNamed(name);
    const Library* library = _contents->library;
    return library && !library->classes.empty() ? library->classes.front() : nullptr;
}

Class* NSBundle::classNamed(NSString* name) {
    if (!load()) return nullptr;
    Class* cls = NSClassFromString(name);
    return cls && bundleForClass(cls) == this ? cls : nullptr;
}

}  // namespace pelvor
