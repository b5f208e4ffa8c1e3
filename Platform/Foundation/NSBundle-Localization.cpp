// SPDX-License-Identifier: Apache-2.0
// A bundle's languages and string tables.
#include <algorithm>
#include <cctype>
#include <filesystem>

#include "Foundation/Bundles/BundleContents.h"
#include "Foundation/NSBundle.h"
#include "Foundation/NSLog.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSPropertyListError.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "Foundation/UserLanguages.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {

namespace fs = std::filesystem;

namespace {

// Makes "fr-CA" and "fr_ca.UTF-8" equal: both become "fr_ca".
std::string plainLanguage(std::string language) {
    language = language.substr(0, language.find_first_of(".@"));
    for (char& c : language)
        c = c == '-' ? '_' : static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return language;
}

// Adds the localisations for the language, then those for the language without its region: "fr_ca", "fr".
void addLocalizationsFor(const std::string& language, NSArray* localizations, NSMutableArray* found) {
    for (std::string range = plainLanguage(language); !range.empty();) {
        for (id localization : localizations)
            if (plainLanguage(static_cast<NSString*>(localization)->toUTF8()) == range &&
                !found->containsObject(localization))
                found->addObject(localization);
        std::size_t last = range.rfind('_');
        range.resize(last == std::string::npos ? 0 : last);
    }
}

Retained<NSArray> readLocalizations(const std::string& resources) {
    AutoreleasePool pool;
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(resources, error), end; !error && entry != end; entry.increment(error))
        if (entry->path().extension() == ".lproj") names.push_back(entry->path().stem().string());
    std::sort(names.begin(), names.end());
    auto localizations = NSMutableArray::init();
    for (const std::string& name : names) localizations->addObject(NSString::ofUTF8(name));
    return localizations->copy();
}

// Returns an empty table if there is no file, and also, with a line in the log, if the file cannot be read.
Retained<NSDictionary> readTable(NSString* path) {
    if (!path) return NSDictionary::init();
    NSPropertyListError* error = nullptr;
    id list = NSPropertyListSerialization::propertyListWithContentsOfFile_options_format_error(
        path, NSPropertyListImmutable, nullptr, &error);
    if (auto* table = cast<NSDictionary>(list)) return Retained<NSDictionary>::retaining(table);
    NSLog(u"The string table %@ cannot be read: %@"_ns, path,
          error ? error->description() : u"it is a list, but no dictionary"_ns);
    return NSDictionary::init();
}

}  // namespace

NSArray* NSBundle::localizations() {
    std::lock_guard guard(_contents->mutex);
    if (!_contents->localizations) _contents->localizations = readLocalizations(_contents->resources);
    return _contents->localizations;
}

// Called under the bundle's lock, which is never held while the user's languages are looked up. String tables
// are in the languages of their time and go with them.
void NSBundle::chooseLocalizations(NSArray* languages) {
    if (_contents->languages && _contents->languages->isEqualToArray(languages)) return;
    auto preferred = NSMutableArray::init();
    for (id language : languages)
        addLocalizationsFor(static_cast<NSString*>(language)->toUTF8(), localizations(), preferred);
    auto* own = cast<NSString>(infoDictionary()->objectForKey(u"CFBundleDevelopmentRegion"_ns));
    if (own) addLocalizationsFor(own->toUTF8(), localizations(), preferred);
    addLocalizationsFor("en", localizations(), preferred);
    _contents->preferredLocalizations = preferred->copy();
    _contents->languages.set(languages);
    _contents->tables = NSMutableDictionary::init();
}

NSArray* NSBundle::preferredLocalizations() {
    NSArray* languages = userLanguages();
    std::lock_guard guard(_contents->mutex);
    chooseLocalizations(languages);
    return Retained(_contents->preferredLocalizations).autorelease();
}

// The table in the preferred localisation, or an empty one.
Retained<NSDictionary> NSBundle::stringTable(NSString* name) {
    AutoreleasePool pool;
    NSArray* languages = userLanguages();
    std::lock_guard guard(_contents->mutex);
    chooseLocalizations(languages);
    if (id known = _contents->tables->objectForKey(name))
        return Retained<NSDictionary>::retaining(static_cast<NSDictionary*>(known));
    auto table = readTable(pathForResource(name, u"strings"_ns, nullptr, _contents->preferredLocalizations));
    _contents->tables->setObject_forKey(table, name);
    return table;
}

NSDictionary* NSBundle::localizedInfoDictionary() {
    auto table = stringTable(u"InfoPlist"_ns);
    return table->count() ? std::move(table).autorelease() : nullptr;
}

NSString* NSBundle::localizedStringForKey_value_table(NSString* key, NSString* value, NSString* table) {
    if (key) {
        NSString* name = table && table->length() ? table : u"Localizable"_ns;
        auto strings = stringTable(name);
        if (auto* text = cast<NSString>(strings->objectForKey(key)))
            return Retained<NSString>::retaining(text).autorelease();
    }
    if (value && value->length()) return value;
    return key ? key : u""_ns;
}

}  // namespace pelvor
