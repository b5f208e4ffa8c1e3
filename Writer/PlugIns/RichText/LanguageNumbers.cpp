// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/LanguageNumbers.h"

namespace pelvor {
namespace {

struct Language {
    std::int32_t number;
    std::string_view name;
};

// Of several with one language, the usual one first.
constexpr Language kLanguages[] = {
    {1078, "af-ZA"},      {1052, "sq-AL"},  {1118, "am-ET"}, {1025, "ar-SA"},  {3073, "ar-EG"},
    {2049, "ar-IQ"},      {5121, "ar-DZ"},  {6145, "ar-MA"}, {1067, "hy-AM"},  {1068, "az-AZ"},
    {1069, "eu-ES"},      {1059, "be-BY"},  {1093, "bn-IN"}, {2117, "bn-BD"},  {5146, "bs-BA"},
    {1026, "bg-BG"},      {1109, "my-MM"},  {1027, "ca-ES"}, {2052, "zh-CN"},  {1028, "zh-TW"},
    {3076, "zh-HK"},      {4100, "zh-SG"},  {1050, "hr-HR"}, {1029, "cs-CZ"},  {1030, "da-DK"},
    {1043, "nl-NL"},      {2067, "nl-BE"},  {1033, "en-US"}, {2057, "en-GB"},  {3081, "en-AU"},
    {4105, "en-CA"},      {5129, "en-NZ"},  {6153, "en-IE"}, {7177, "en-ZA"},  {16393, "en-IN"},
    {1061, "et-EE"},      {1080, "fo-FO"},  {1065, "fa-IR"}, {1124, "fil-PH"}, {1035, "fi-FI"},
    {1036, "fr-FR"},      {2060, "fr-BE"},  {3084, "fr-CA"}, {4108, "fr-CH"},  {5132, "fr-LU"},
    {1122, "fy-NL"},      {1110, "gl-ES"},  {1079, "ka-GE"}, {1031, "de-DE"},  {2055, "de-CH"},
    {3079, "de-AT"},      {4103, "de-LU"},  {5127, "de-LI"}, {1032, "el-GR"},  {1095, "gu-IN"},
    {1037, "he-IL"},      {1081, "hi-IN"},  {1038, "hu-HU"}, {1039, "is-IS"},  {1057, "id-ID"},
    {2108, "ga-IE"},      {1040, "it-IT"},  {2064, "it-CH"}, {1041, "ja-JP"},  {1099, "kn-IN"},
    {1087, "kk-KZ"},      {1107, "km-KH"},  {1042, "ko-KR"}, {1088, "ky-KG"},  {1108, "lo-LA"},
    {1142, "la"},         {1062, "lv-LV"},  {1063, "lt-LT"}, {1134, "lb-LU"},  {1071, "mk-MK"},
    {1086, "ms-MY"},      {1100, "ml-IN"},  {1082, "mt-MT"}, {1102, "mr-IN"},  {1104, "mn-MN"},
    {1121, "ne-NP"},      {1044, "nb-NO"},  {2068, "nn-NO"}, {1154, "oc-FR"},  {1096, "or-IN"},
    {1123, "ps-AF"},      {1045, "pl-PL"},  {2070, "pt-PT"}, {1046, "pt-BR"},  {1094, "pa-IN"},
    {1047, "rm-CH"},      {1048, "ro-RO"},  {1049, "ru-RU"}, {1103, "sa-IN"},  {3098, "sr-Cyrl-RS"},
    {2074, "sr-Latn-RS"}, {1051, "sk-SK"},  {1060, "sl-SI"}, {3082, "es-ES"},  {1034, "es-ES"},
    {2058, "es-MX"},      {11274, "es-AR"}, {1089, "sw-KE"}, {1053, "sv-SE"},  {2077, "sv-FI"},
    {1114, "syr-SY"},     {1097, "ta-IN"},  {1092, "tt-RU"}, {1098, "te-IN"},  {1054, "th-TH"},
    {1105, "bo-CN"},      {1055, "tr-TR"},  {1058, "uk-UA"}, {1056, "ur-PK"},  {1066, "vi-VN"},
    {1106, "cy-GB"},      {1085, "yi"},
};

constexpr std::int32_t kWithoutRegion = 0x3FF;

}  // namespace

std::string_view languageOfNumber(std::int32_t number) {
    for (const Language& language : kLanguages) {
        if (language.number == number) return language.name;
        if ((language.number & kWithoutRegion) == number)
            return language.name.substr(0, language.name.find('-'));
    }
    return {};
}

std::int32_t numberOfLanguage(std::string_view name) {
    for (const Language& language : kLanguages)
        if (language.name == name) return language.number;
    for (const Language& language : kLanguages) {
        if (language.name.substr(0, language.name.find('-')) != name) continue;
        // A few languages share their number without a region.
        const std::int32_t number = language.number & kWithoutRegion;
        return languageOfNumber(number) == name ? number : language.number;
    }
    return 0;
}

}  // namespace pelvor
