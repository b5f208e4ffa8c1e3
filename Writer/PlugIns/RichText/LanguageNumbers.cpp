// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/LanguageNumbers.h"

#include <algorithm>

namespace pelvor {
namespace {

struct Language {
    std::int32_t number;
    std::u16string_view name;
};

// Of several with one language, the usual one first.
constexpr Language kLanguages[] = {
    {1078, u"af-ZA"},      {1052, u"sq-AL"},       {1118, u"am-ET"},      {1025, u"ar-SA"},
    {3073, u"ar-EG"},      {2049, u"ar-IQ"},       {5121, u"ar-DZ"},      {6145, u"ar-MA"},
    {7169, u"ar-TN"},      {10241, u"ar-SY"},      {11265, u"ar-JO"},     {12289, u"ar-LB"},
    {13313, u"ar-KW"},     {14337, u"ar-AE"},      {1067, u"hy-AM"},      {1101, u"as-IN"},
    {1068, u"az-AZ"},      {1069, u"eu-ES"},       {1059, u"be-BY"},      {1093, u"bn-IN"},
    {2117, u"bn-BD"},      {5146, u"bs-BA"},       {1150, u"br-FR"},      {1026, u"bg-BG"},
    {1109, u"my-MM"},      {1027, u"ca-ES"},       {1155, u"co-FR"},      {2052, u"zh-CN"},
    {2052, u"zh-Hans"},    {1028, u"zh-TW"},       {1028, u"zh-Hant"},    {3076, u"zh-HK"},
    {4100, u"zh-SG"},      {1050, u"hr-HR"},       {1029, u"cs-CZ"},      {1030, u"da-DK"},
    {1043, u"nl-NL"},      {2067, u"nl-BE"},       {1033, u"en-US"},      {2057, u"en-GB"},
    {3081, u"en-AU"},      {4105, u"en-CA"},       {5129, u"en-NZ"},      {6153, u"en-IE"},
    {7177, u"en-ZA"},      {16393, u"en-IN"},      {13321, u"en-PH"},     {18441, u"en-SG"},
    {1061, u"et-EE"},      {1080, u"fo-FO"},       {1065, u"fa-IR"},      {1124, u"fil-PH"},
    {1035, u"fi-FI"},      {1036, u"fr-FR"},       {2060, u"fr-BE"},      {3084, u"fr-CA"},
    {4108, u"fr-CH"},      {5132, u"fr-LU"},       {6156, u"fr-MC"},      {1122, u"fy-NL"},
    {1110, u"gl-ES"},      {1079, u"ka-GE"},       {1031, u"de-DE"},      {2055, u"de-CH"},
    {3079, u"de-AT"},      {4103, u"de-LU"},       {5127, u"de-LI"},      {1032, u"el-GR"},
    {1095, u"gu-IN"},      {1037, u"he-IL"},       {1081, u"hi-IN"},      {1038, u"hu-HU"},
    {1039, u"is-IS"},      {1057, u"id-ID"},       {2108, u"ga-IE"},      {1169, u"gd-GB"},
    {1040, u"it-IT"},      {2064, u"it-CH"},       {1041, u"ja-JP"},      {1099, u"kn-IN"},
    {1087, u"kk-KZ"},      {1107, u"km-KH"},       {1042, u"ko-KR"},      {1088, u"ky-KG"},
    {1108, u"lo-LA"},      {1142, u"la"},          {1062, u"lv-LV"},      {1063, u"lt-LT"},
    {1134, u"lb-LU"},      {1071, u"mk-MK"},       {1086, u"ms-MY"},      {1100, u"ml-IN"},
    {1082, u"mt-MT"},      {1153, u"mi-NZ"},       {1102, u"mr-IN"},      {1104, u"mn-MN"},
    {1121, u"ne-NP"},      {1044, u"nb-NO"},       {1044, u"no"},         {2068, u"nn-NO"},
    {1154, u"oc-FR"},      {1096, u"or-IN"},       {1123, u"ps-AF"},      {1045, u"pl-PL"},
    {2070, u"pt-PT"},      {1046, u"pt-BR"},       {1094, u"pa-IN"},      {1047, u"rm-CH"},
    {1048, u"ro-RO"},      {1049, u"ru-RU"},       {1103, u"sa-IN"},      {3098, u"sr-Cyrl-RS"},
    {2074, u"sr-Latn-RS"}, {10266, u"sr-Cyrl-RS"}, {9242, u"sr-Latn-RS"}, {1115, u"si-LK"},
    {1051, u"sk-SK"},      {1060, u"sl-SI"},       {3082, u"es-ES"},      {1034, u"es-ES"},
    {2058, u"es-MX"},      {11274, u"es-AR"},      {13322, u"es-CL"},     {9226, u"es-CO"},
    {10250, u"es-PE"},     {8202, u"es-VE"},       {21514, u"es-US"},     {1089, u"sw-KE"},
    {1053, u"sv-SE"},      {2077, u"sv-FI"},       {1114, u"syr-SY"},     {1097, u"ta-IN"},
    {1092, u"tt-RU"},      {1098, u"te-IN"},       {1054, u"th-TH"},      {1105, u"bo-CN"},
    {1055, u"tr-TR"},      {1058, u"uk-UA"},       {1070, u"hsb-DE"},     {1152, u"ug-CN"},
    {1056, u"ur-PK"},      {1091, u"uz-UZ"},       {1066, u"vi-VN"},      {1106, u"cy-GB"},
    {1076, u"xh-ZA"},      {1085, u"yi"},          {1077, u"zu-ZA"},
};

constexpr std::int32_t kWithoutRegion = 0x3FF;

// Whether the name is the other one, or the other one and further parts.
bool beginsWith(std::u16string_view name, std::u16string_view other) {
    const auto simple = [](char16_t unit) {
        return unit == u'_' ? u'-' : unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit | 0x20) : unit;
    };
    return name.size() >= other.size() && (name.size() == other.size() || name[other.size()] == u'-') &&
           std::equal(other.begin(), other.end(), name.begin(),
                      [&](char16_t a, char16_t b) { return simple(a) == simple(b); });
}

}  // namespace

std::u16string_view languageOfNumber(std::int32_t number) {
    for (const Language& language : kLanguages) {
        if (language.number == number) return language.name;
        if ((language.number & kWithoutRegion) == number)
            return language.name.substr(0, language.name.find(u'-'));
    }
    return {};
}

std::int32_t numberOfLanguage(std::u16string_view name) {
    while (!name.empty()) {
        for (const Language& language : kLanguages)
            if (beginsWith(language.name, name)) return language.number;
        const std::size_t end = name.find_last_of(u"-_");
        name = name.substr(0, end == name.npos ? 0 : end);
    }
    return 0;
}

bool isLanguageName(std::u16string_view text) {
    constexpr std::size_t kLongest = 35;
    return !text.empty() && text.size() <= kLongest &&
           std::all_of(text.begin(), text.end(), [](char16_t unit) {
               return (unit >= u'0' && unit <= u'9') || ((unit | 0x20) >= u'a' && (unit | 0x20) <= u'z') ||
                      unit == u'-' || unit == u'_';
           });
}

}  // namespace pelvor
