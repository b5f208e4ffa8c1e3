// SPDX-License-Identifier: Apache-2.0
#include "Interface/Input/LayoutNames.h"

#include <unicode/uloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>

#include "Foundation/NSArray.h"
#include "Foundation/NSData.h"
#include "Foundation/UserLanguages.h"
#include "Interface/KeyboardLayouts.h"

namespace pelvor {
namespace {

struct Row {
    std::string_view name;
    std::int32_t system;
};
constexpr Row kScripts[] = {
    {"Arab", smArabic},     {"Armn", smArmenian}, {"Beng", smBengali},     {"Cyrl", smCyrillic},
    {"Deva", smDevanagari}, {"Ethi", smEthiopic}, {"Geor", smGeorgian},    {"Grek", smGreek},
    {"Gujr", smGujarati},   {"Guru", smGurmukhi}, {"Hans", smSimpChinese}, {"Hant", smTradChinese},
    {"Hebr", smHebrew},     {"Jpan", smJapanese}, {"Khmr", smKhmer},       {"Knda", smKannada},
    {"Kore", smKorean},     {"Laoo", smLao},      {"Latn", smRoman},       {"Mlym", smMalayalam},
    {"Mong", smMongolian},  {"Mymr", smBurmese},  {"Orya", smOriya},       {"Sinh", smSinhalese},
    {"Taml", smTamil},      {"Telu", smTelugu},   {"Thai", smThai},        {"Tibt", smTibetan},
};
constexpr Row kLatinLanguages[] = {
    {"cs", smCentralEuroRoman}, {"et", smCentralEuroRoman}, {"hu", smCentralEuroRoman},
    {"lt", smCentralEuroRoman}, {"lv", smCentralEuroRoman}, {"pl", smCentralEuroRoman},
    {"sk", smCentralEuroRoman}, {"vi", smVietnamese},
};

template <std::size_t n>
std::int32_t find(const Row (&rows)[n], std::string_view name, std::int32_t otherwise) {
    const auto* found = std::ranges::find(rows, name, &Row::name);
    return found == std::end(rows) ? otherwise : found->system;
}

/// A catalogue of translated texts, as the message libraries of the system write them: a magic number, the
/// version, the number of texts, the places of the tables of keys and of texts, whose rows are a length and a
/// place. The keys are sorted.
class Catalogue {
  public:
    explicit Catalogue(std::string_view bytes) : _bytes(bytes) {}

    std::optional<std::string_view> text(std::string_view key) const {
        if (word(0) != 0x950412DE) return std::nullopt;
        for (std::size_t first = 0, end = word(8); first < end;) {
            const std::size_t middle = first + (end - first) / 2;
            const auto found = entry(word(12), middle);
            if (!found) return std::nullopt;
            if (*found == key) return entry(word(16), middle);
            if (*found < key)
                first = middle + 1;
            else
                end = middle;
        }
        return std::nullopt;
    }

  private:
    std::uint32_t word(std::size_t place) const {
        std::uint32_t value = 0;
        if (place + sizeof value <= _bytes.size()) std::memcpy(&value, _bytes.data() + place, sizeof value);
        return value;
    }
    std::optional<std::string_view> entry(std::size_t table, std::size_t index) const {
        const std::size_t length = word(table + 8 * index), place = word(table + 8 * index + 4);
        if (place + length > _bytes.size()) return std::nullopt;
        return _bytes.substr(place, length);
    }

    std::string_view _bytes;
};

NSData* catalogueIn(std::string_view folders, const std::string& language) {
    for (std::size_t start = 0; start <= folders.size();) {
        const std::size_t end = std::min(folders.find(':', start), folders.size());
        const std::string path = std::string(folders.substr(start, end - start)) + "/locale/" + language +
                                 "/LC_MESSAGES/xkeyboard-config.mo";
        if (NSData* data = NSData::dataWithContentsOfFile(NSString::ofUTF8(path))) return data;
        start = end + 1;
    }
    return nullptr;
}

}  // namespace

std::string localizedLayoutName(const std::string& name) {
    const char* variable = std::getenv("XDG_DATA_DIRS");
    const std::string_view folders = variable && *variable ? variable : "/usr/local/share:/usr/share";
    for (id each : userLanguages()) {
        std::string language = static_cast<NSString*>(each)->toUTF8();
        std::ranges::replace(language, '-', '_');
        if (language == "en") break;  // the names are English
        NSData* data = catalogueIn(folders, language);
        const auto text =
            data ? Catalogue({static_cast<const char*>(data->bytes()), data->length()}).text(name)
                 : std::nullopt;
        if (text && !text->empty()) return std::string(*text);
    }
    return name;
}

std::string languageTag(const std::string& language) {
    if (language.empty()) return "";
    char tag[ULOC_FULLNAME_CAPACITY] = "";
    UErrorCode error = U_ZERO_ERROR;
    uloc_toLanguageTag(language.c_str(), tag, sizeof tag, false, &error);
    return U_FAILURE(error) || !std::strcmp(tag, "und") ? "" : tag;
}

std::int32_t scriptSystemOfLanguage(const std::string& language) {
    char full[ULOC_FULLNAME_CAPACITY] = "", script[ULOC_SCRIPT_CAPACITY] = "", name[ULOC_LANG_CAPACITY] = "";
    UErrorCode error = U_ZERO_ERROR;
    uloc_addLikelySubtags(language.c_str(), full, sizeof full, &error);
    uloc_getScript(full, script, sizeof script, &error);
    uloc_getLanguage(full, name, sizeof name, &error);
    if (U_FAILURE(error) || !*script) return smRoman;
    const std::int32_t system = find(kScripts, script, smUnicodeScript);
    return system == smRoman ? find(kLatinLanguages, name, smRoman) : system;
}

}  // namespace pelvor
