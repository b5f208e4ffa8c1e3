// SPDX-License-Identifier: Apache-2.0
#include "Foundation/UserLanguages.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSUserDefaults.h"

namespace pelvor {

constinit NSString* const PelvorLanguages = u"PelvorLanguages"_ns;

namespace {

std::string_view environmentValue(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

// Returns the locale for messages; "" if no variable sets it.
std::string_view messagesLocale() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (std::string_view value = environmentValue(name); !value.empty()) return value;
    return "";
}

bool isCLocale(std::string_view locale) {
    std::string_view language = locale.substr(0, locale.find('.'));
    return language == "C" || language == "POSIX";
}

bool isLanguageCode(std::string_view code) {
    return code.size() >= 2 && code.size() <= 3 &&
           std::all_of(code.begin(), code.end(), [](char c) { return c >= 'a' && c <= 'z'; });
}

std::string_view scriptOfModifier(std::string_view modifier) {
    if (modifier == "latin") return "-Latn";
    return modifier == "cyrillic" ? "-Cyrl" : "";
}

void addOnce(std::vector<std::string>& languages, std::string language) {
    if (std::find(languages.begin(), languages.end(), language) == languages.end())
        languages.push_back(std::move(language));
}

// Adds the languages of "sr_RS.UTF-8@latin": "sr-Latn-RS", "sr-Latn" and "sr".
void addLocale(std::vector<std::string>& languages, std::string_view locale) {
    std::size_t at = locale.find('@');
    std::string_view script = scriptOfModifier(at == locale.npos ? "" : locale.substr(at + 1));
    locale = locale.substr(0, locale.find_first_of(".@"));
    std::size_t separator = locale.find_first_of("_-");
    std::string language(locale.substr(0, separator));
    if (!isLanguageCode(language)) return;
    std::string written = language + std::string(script);
    if (separator != locale.npos)
        addOnce(languages, written + "-" + std::string(locale.substr(separator + 1)));
    addOnce(languages, written);
    addOnce(languages, language);
}

std::vector<std::string> environmentLanguages() {
    std::vector<std::string> languages;
    std::string_view locale = messagesLocale();
    if (isCLocale(locale)) return languages;
    std::string_view list = environmentValue("LANGUAGE");
    while (!list.empty()) {
        std::size_t end = std::min(list.find(':'), list.size());
        addLocale(languages, list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    if (languages.empty()) addLocale(languages, locale);
    return languages;
}

}  // namespace

NSArray* userLanguages() {
    NSArray* chosen = NSUserDefaults::standardUserDefaults()->stringArrayForKey(PelvorLanguages);
    if (chosen && chosen->count() > 0) return chosen;
    NSMutableArray* languages = NSMutableArray::array();
    for (const std::string& language : environmentLanguages())
        languages->addObject(NSString::ofUTF8(language));
    if (languages->count() == 0) languages->addObject(u"en"_ns);
    return NSArray::arrayWithArray(languages);
}

}  // namespace pelvor
