// SPDX-License-Identifier: Apache-2.0
#include "Foundation/Strings/EncodingList.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <iterator>
#include <string>

namespace pelvor {
namespace {

// Encodings without a constant in the interface have the platform's published number for them, with the
// highest bit set.
constexpr NSStringEncoding published(std::uint32_t number) { return 0x80000000u | number; }

constexpr EncodingEntry kUsualEncodings[] = {
    {NSUTF8StringEncoding, "UTF-8", "utf-8", "Unicode (UTF-8)"},
    {NSUnicodeStringEncoding, "UTF-16", "utf-16", "Unicode (UTF-16)"},
    {NSUTF16BigEndianStringEncoding, "UTF-16BE", "utf-16be", "Unicode (UTF-16BE)"},
    {NSUTF16LittleEndianStringEncoding, "UTF-16LE", "utf-16le", "Unicode (UTF-16LE)"},
    {NSUTF32StringEncoding, "UTF-32", "utf-32", "Unicode (UTF-32)"},
    {NSUTF32BigEndianStringEncoding, "UTF-32BE", "utf-32be", "Unicode (UTF-32BE)"},
    {NSUTF32LittleEndianStringEncoding, "UTF-32LE", "utf-32le", "Unicode (UTF-32LE)"},
    {published(0x04000100), "UTF-7", "utf-7", "Unicode (UTF-7)"},

    {NSASCIIStringEncoding, "US-ASCII", "us-ascii", "Western (ASCII)"},
    {NSNonLossyASCIIStringEncoding, nullptr, "x-nonlossy-ascii", "Non-lossy ASCII"},
    {NSISOLatin1StringEncoding, "ISO-8859-1", "iso-8859-1", "Western (ISO Latin 1)"},
    {published(0x020F), "ibm-923_P100-1998", "iso-8859-15", "Western (ISO Latin 9)"},
    {NSWindowsCP1252StringEncoding, "ibm-5348_P100-1997", "windows-1252", "Western (Windows Latin 1)"},
    {NSMacOSRomanStringEncoding, "macos-0_2-10.2", "macintosh", "Western (Mac OS Roman)"},
    {published(0x0A04), nullptr, "x-mac-roman-latin1", "Western (Mac OS Roman, Latin 1 order)"},
    {NSNEXTSTEPStringEncoding, nullptr, "x-nextstep", "Western (NextStep)"},
    {published(0x0400), "ibm-437_P100-1995", "ibm437", "Western (DOS United States)"},
    {published(0x0410), "ibm-850_P100-1995", "ibm850", "Western (DOS Latin 1)"},
    {published(0x0415), "ibm-860_P100-1995", "ibm860", "Portuguese (DOS)"},
    {published(0x0416), "ibm-861_P100-1995", "ibm861", "Icelandic (DOS)"},
    {published(0x0418), "ibm-863_P100-1995", "ibm863", "Canadian French (DOS)"},
    {published(0x041A), "ibm-865_P100-1995", "ibm865", "Nordic (DOS)"},

    {NSISOLatin2StringEncoding, "ibm-912_P100-1995", "iso-8859-2", "Central European (ISO Latin 2)"},
    {NSWindowsCP1250StringEncoding, "ibm-5346_P100-1998", "windows-1250",
     "Central European (Windows Latin 2)"},
    {published(0x1D), "macos-29-10.2", "x-mac-centraleurroman", "Central European (Mac OS)"},
    {published(0x0412), "ibm-852_P100-1995", "ibm852", "Central European (DOS Latin 2)"},
    {published(0x0203), "ibm-913_P100-2000", "iso-8859-3", "South European (ISO Latin 3)"},
    {published(0x0204), "ibm-914_P100-1995", "iso-8859-4", "North European (ISO Latin 4)"},
    {published(0x020A), "iso-8859_10-1998", "iso-8859-10", "Nordic (ISO Latin 6)"},
    {published(0x020D), "ibm-921_P100-1995", "iso-8859-13", "Baltic (ISO Latin 7)"},
    {published(0x0507), "ibm-9449_P100-2002", "windows-1257", "Baltic (Windows)"},
    {published(0x0406), "ibm-775_P100-1996", "ibm775", "Baltic (DOS)"},
    {published(0x020E), "iso-8859_14-1998", "iso-8859-14", "Celtic (ISO Latin 8)"},

    {published(0x0205), "ibm-915_P100-1995", "iso-8859-5", "Cyrillic (ISO 8859-5)"},
    {NSWindowsCP1251StringEncoding, "ibm-5347_P100-1998", "windows-1251", "Cyrillic (Windows)"},
    {published(0x07), "macos-7_3-10.2", "x-mac-cyrillic", "Cyrillic (Mac OS)"},
    {published(0x0A02), "ibm-878_P100-1996", "koi8-r", "Cyrillic (KOI8-R)"},
    {published(0x0A08), "ibm-1168_P100-2002", "koi8-u", "Ukrainian (KOI8-U)"},
    {published(0x0413), "ibm-855_P100-1995", "ibm855", "Cyrillic (DOS)"},
    {published(0x041B), "ibm-866_P100-1995", "ibm866", "Russian (DOS)"},
    {published(0x0207), "ibm-9005_X110-2007", "iso-8859-7", "Greek (ISO 8859-7)"},
    {NSWindowsCP1253StringEncoding, "ibm-5349_P100-1998", "windows-1253", "Greek (Windows)"},
    {published(0x06), "macos-6_2-10.4", "x-mac-greek", "Greek (Mac OS)"},
    {published(0x0405), "ibm-737_P100-1997", "ibm737", "Greek (DOS)"},
    {published(0x041C), "ibm-869_P100-1995", "ibm869", "Modern Greek (DOS)"},
    {published(0x0209), "ibm-920_P100-1995", "iso-8859-9", "Turkish (ISO Latin 5)"},
    {NSWindowsCP1254StringEncoding, "ibm-5350_P100-1998", "windows-1254", "Turkish (Windows Latin 5)"},
    {published(0x23), "macos-35-10.2", "x-mac-turkish", "Turkish (Mac OS)"},
    {published(0x0414), "ibm-857_P100-1995", "ibm857", "Turkish (DOS)"},
    {published(0x0208), "ibm-5012_P100-1999", "iso-8859-8", "Hebrew (ISO 8859-8)"},
    {published(0x0505), "ibm-9447_P100-2002", "windows-1255", "Hebrew (Windows)"},
    {published(0x0417), "ibm-862_P100-1995", "ibm862", "Hebrew (DOS)"},
    {published(0x0206), "ibm-1089_P100-1995", "iso-8859-6", "Arabic (ISO 8859-6)"},
    {published(0x0506), "ibm-9448_X100-2005", "windows-1256", "Arabic (Windows)"},
    {published(0x0419), "ibm-864_X110-1999", "ibm864", "Arabic (DOS)"},

    {published(0x020B), "iso-8859_11-2001", "iso-8859-11", "Thai (ISO 8859-11)"},
    {published(0x041D), "windows-874-2000", "windows-874", "Thai (Windows, DOS)"},
    {published(0x0508), "ibm-5354_P100-1998", "windows-1258", "Vietnamese (Windows)"},
    {NSShiftJISStringEncoding, "ibm-943_P15A-2003", "shift_jis", "Japanese (Windows, DOS)"},
    {NSJapaneseEUCStringEncoding, "euc-jp-2007", "euc-jp", "Japanese (EUC)"},
    {NSISO2022JPStringEncoding, "ISO_2022,locale=ja,version=0", "iso-2022-jp", "Japanese (ISO 2022-JP)"},
    {published(0x0822), "ISO_2022,locale=ja,version=1", "iso-2022-jp-1", "Japanese (ISO 2022-JP-1)"},
    {published(0x0821), "ISO_2022,locale=ja,version=2", "iso-2022-jp-2", "Japanese (ISO 2022-JP-2)"},
    {published(0x0632), "gb18030", "gb18030", "Chinese (GB 18030)"},
    {published(0x0421), "windows-936-2000", "gbk", "Simplified Chinese (Windows, DOS)"},
    {published(0x0930), "ibm-1383_P110-1999", "gb2312", "Simplified Chinese (EUC)"},
    {published(0x0A05), "HZ", "hz-gb-2312", "Simplified Chinese (HZ)"},
    {published(0x0830), "ISO_2022,locale=zh,version=0", "iso-2022-cn", "Chinese (ISO 2022-CN)"},
    {published(0x0A03), "windows-950-2000", "big5", "Traditional Chinese (Big5)"},
    {published(0x0A06), "ibm-1375_P100-2008", "big5-hkscs", "Traditional Chinese (Big5-HKSCS)"},
    {published(0x0931), "euc-tw-2014", "euc-tw", "Traditional Chinese (EUC)"},
    {published(0x0940), "ibm-970_P110_P110-2006_U2", "euc-kr", "Korean (EUC)"},
    {published(0x0422), "windows-949-2000", "windows-949", "Korean (Windows, DOS)"},
    {published(0x0840), "ISO_2022,locale=ko,version=0", "iso-2022-kr", "Korean (ISO 2022-KR)"},
    {published(0x0C02), "ibm-37_P100-1995", "ibm037", "Western (EBCDIC)"},
};

// Names that ICU does not know, as letters and digits.
constexpr struct {
    const char* name;
    const char* documentName;
} kFurtherNames[] = {
    {"cnbig5", "big5"},     {"macgreek", "x-mac-greek"}, {"macturkish", "x-mac-turkish"},
    {"ucs2be", "utf-16be"}, {"ucs2le", "utf-16le"},      {"ucs4be", "utf-32be"},
    {"ucs4le", "utf-32le"}, {"uhc", "windows-949"},      {"xmacukrainian", "x-mac-cyrillic"},
};

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The letters and digits, in lower case.
std::string plainName(std::string_view name) {
    std::string plain;
    for (char c : name) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        if (isDigit(c) || (c >= 'a' && c <= 'z')) plain += c;
    }
    return plain;
}

// ICU's name of the converter that the name means, or null.
const char* converterNamed(const char* name) {
    UErrorCode error = U_ZERO_ERROR;
    return ucnv_getAlias(name, 0, &error);
}

// "x-" in front is often left out or put there, and numbers of code pages follow any of several words.
const char* converterNamedAlike(std::string name) {
    if (name.starts_with('x')) name.erase(0, 1);
    if (const char* converter = converterNamed(name.c_str())) return converter;
    for (std::string_view prefix : {"cp", "codepage", "dos", "ms", "win", "windows"}) {
        std::string number = name.starts_with(prefix) ? name.substr(prefix.size()) : "";
        if (number.empty() || !std::all_of(number.begin(), number.end(), isDigit)) continue;
        if (const char* converter = converterNamed(("windows-" + number).c_str())) return converter;
        return converterNamed(("ibm-" + number).c_str());
    }
    return nullptr;
}

// The number of an encoding without a published one comes from its name, so that it is the same everywhere.
NSStringEncoding numberByName(const char* converterName) {
    std::uint32_t hash = 2166136261u;
    for (char c : plainName(converterName)) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
    return 0xA0000000u | ((hash ^ hash >> 28) & 0x0FFFFFFFu);
}

// The best known name that means this converter and no other.
const char* documentNameOf(const char* converterName) {
    auto isItsOwn = [&](const char* name) {
        const char* meant = name ? converterNamed(name) : nullptr;
        return meant && std::string_view(meant) == converterName;
    };
    UErrorCode error = U_ZERO_ERROR;
    for (const char* standard : {"MIME", "IANA"}) {
        error = U_ZERO_ERROR;
        const char* name = ucnv_getStandardName(converterName, standard, &error);
        if (isItsOwn(name)) return name;
    }
    error = U_ZERO_ERROR;
    const std::uint16_t count = ucnv_countAliases(converterName, &error);
    for (std::uint16_t i = 1; i < count; ++i)
        if (const char* name = ucnv_getAlias(converterName, i, &error); isItsOwn(name)) return name;
    return converterName;
}

template <class Entries, class Predicate>
const EncodingEntry* findIf(const Entries& entries, Predicate predicate) {
    auto found = std::find_if(std::begin(entries), std::end(entries), predicate);
    return found == std::end(entries) ? nullptr : &*found;
}

// The usual encodings and all others of ICU.
const std::vector<EncodingEntry>& everyEncoding() {
    static const std::vector<EncodingEntry> encodings = [] {
        std::vector<EncodingEntry> all(std::begin(kUsualEncodings), std::end(kUsualEncodings));
        for (std::int32_t i = 0; i < ucnv_countAvailable(); ++i) {
            const char* converter = ucnv_getAvailableName(i);
            auto hasConverter = [&](const EncodingEntry& entry) {
                return entry.converterName && std::string_view(entry.converterName) == converter;
            };
            if (findIf(kUsualEncodings, hasConverter)) continue;
            const char* name = documentNameOf(converter);
            all.push_back({numberByName(converter), converter, name, name});
        }
        return all;
    }();
    return encodings;
}

// Most searches end in the usual encodings, without a list of all.
template <class Predicate>
const EncodingEntry* findEncodingIf(Predicate predicate) {
    const EncodingEntry* usual = findIf(kUsualEncodings, predicate);
    return usual ? usual : findIf(everyEncoding(), predicate);
}

}  // namespace

const EncodingEntry* findEncoding(NSStringEncoding number) {
    return findEncodingIf([&](const EncodingEntry& entry) { return entry.number == number; });
}

const EncodingEntry* findEncodingNamed(std::string_view name) {
    const std::string plain = plainName(name);
    if (plain.empty() || name.find('\0') != name.npos) return nullptr;
    auto isCalled = [](const char* other) {
        return
            [other](const EncodingEntry& entry) { return ucnv_compareNames(entry.documentName, other) == 0; };
    };
    if (const EncodingEntry* entry = findIf(kUsualEncodings, isCalled(plain.c_str()))) return entry;
    for (const auto& further : kFurtherNames)
        if (further.name == plain) return findIf(kUsualEncodings, isCalled(further.documentName));
    const char* converter = converterNamed(plain.c_str());
    if (!converter) converter = converterNamedAlike(plain);
    if (!converter) return nullptr;
    return findEncodingIf([&](const EncodingEntry& entry) {
        return entry.converterName && std::string_view(entry.converterName) == converter;
    });
}

std::span<const EncodingEntry> allEncodings() { return everyEncoding(); }

std::vector<std::string_view> namesOf(const EncodingEntry& encoding) {
    std::vector<std::string_view> names{encoding.documentName};
    auto add = [&](const char* name) {
        if (name && findEncodingNamed(name) == findEncoding(encoding.number) &&
            std::find(names.begin(), names.end(), name) == names.end())
            names.push_back(name);
    };
    UErrorCode error = U_ZERO_ERROR;
    const std::uint16_t count =
        encoding.converterName ? ucnv_countAliases(encoding.converterName, &error) : std::uint16_t{0};
    for (std::uint16_t i = 0; i < count; ++i) add(ucnv_getAlias(encoding.converterName, i, &error));
    for (const auto& further : kFurtherNames)
        if (std::string_view(further.documentName) == encoding.documentName) add(further.name);
    return names;
}

}  // namespace pelvor
