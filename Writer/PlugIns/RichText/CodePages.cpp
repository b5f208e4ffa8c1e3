// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/CodePages.h"

#include <algorithm>
#include <utility>

namespace pelvor {
namespace {

// Code pages whose names are not made of their numbers.
NSStringEncoding encodingOfCodePage(int number) {
    constexpr std::pair<int, std::string_view> kNames[] = {
        {708, "ISO-8859-6"},
        {932, "windows-31j"},
        {936, "GBK"},
        {949, "windows-949"},
        {950, "Big5"},
        {1361, "johab"},
        {10000, "macintosh"},
        {10001, "Shift_JIS"},
        {10002, "Big5"},
        {10003, "EUC-KR"},
        {10006, "x-mac-greek"},
        {10007, "x-mac-cyrillic"},
        {10008, "GB2312"},
        {10029, "x-mac-centraleurroman"},
        {10081, "x-mac-turkish"},
        {20866, "KOI8-R"},
        {21866, "KOI8-U"},
        {54936, "GB18030"},
        {65001, "UTF-8"},
    };
    for (const auto& [page, name] : kNames)
        if (page == number) return encodingForName(name);
    if (const NSStringEncoding encoding = encodingForName("windows-" + std::to_string(number)))
        return encoding;
    if (number >= 28591 && number <= 28605)
        return encodingForName("ISO-8859-" + std::to_string(number - 28590));
    return encodingForName("cp" + std::to_string(number));
}

// The characters of the font "Symbol" from 0x20 to 0x7F and from 0xA0 on.
constexpr std::u16string_view kGreekSymbols =
    u" !∀#∃%&∋()∗+,−./0123456789:;<=>?"
    u"≅ΑΒΧΔΕΦΓΗΙϑΚΛΜΝΟΠΘΡΣΤΥςΩΞΨΖ[∴]⊥_"
    u"‾αβχδεφγηιϕκλμνοπθρστυϖωξψζ{|}∼\x7F"
    u"€ϒ′≤⁄∞ƒ♣♦♥♠↔←↑→↓°±″≥×∝∂•÷≠≡≈…⏐⎯↵"
    u"ℵℑℜ℘⊗⊕∅∩∪⊃⊇⊄⊂⊆∈∉∠∇®©™∏√⋅¬∧∨⇔⇐⇑⇒⇓"
    u"◊〈®©™∑⎛⎜⎝⎡⎢⎣⎧⎨⎩⎪\uF8FF〉∫⌠⎮⌡⎞⎟⎠⎤⎥⎦⎫⎬⎭\uFFFD";

char16_t greekSymbol(std::size_t code) {
    if (code >= 0x20 && code < 0x80) return kGreekSymbols[code - 0x20];
    return code >= 0xA0 && code < 0x100 ? kGreekSymbols[code - 0xA0 + 0x60] : u'\uFFFD';
}

bool isEastAsian(int number) {
    return number == 932 || number == 936 || number == 949 || number == 950 || number == 1361 ||
           number == 54936 || (number >= 10001 && number <= 10003) || number == 10008;
}

}  // namespace

int codePageOfCharacterSet(int characterSet) {
    constexpr std::pair<int, int> kPages[] = {
        {2, CodePage::symbol},
        {77, 10000},
        {78, 10001},
        {79, 10003},
        {80, 10008},
        {81, 10002},
        {83, 10006},
        {85, 10081},
        {88, 10029},
        {89, 10007},
        {128, 932},
        {129, 949},
        {130, 1361},
        {134, 936},
        {136, 950},
        {161, 1253},
        {162, 1254},
        {163, 1258},
        {177, 1255},
        {178, 1256},
        {186, 1257},
        {204, 1251},
        {222, 874},
        {238, 1250},
        {254, 437},
        {255, 850},
    };
    for (const auto& [set, page] : kPages)
        if (set == characterSet) return page;
    return 0;
}

CodePage::CodePage(int number) : _number(number) {
    if (isSymbolic()) return;
    _encoding = encodingOfCodePage(number);
    if (!_encoding) {
        _number = 1252;
        _encoding = NSWindowsCP1252StringEncoding;
    }
    _known.resize(isEastAsian(_number) ? 0x10000 : 0x100);
}

std::size_t CodePage::lengthAfterLead(std::uint8_t lead) const {
    if (lead < 0x80) return 1;
    if (_number == 65001) return lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 1;
    if (!isEastAsian(_number)) return 1;
    if (_number == 932 || _number == 10001)
        return lead == 0x80 || (lead >= 0xA0 && lead <= 0xDF) || lead > 0xFC ? 1 : 2;
    return lead == 0x80 || lead == 0xFF ? 1 : 2;
}

bool CodePage::append(std::string_view character, std::u16string& units) {
    std::size_t code = 0;
    for (char byte : character) code = code << 8 | static_cast<std::uint8_t>(byte);
    if (isSymbolic()) {
        const char16_t unit = _number == symbol ? static_cast<char16_t>(0xF000 + code) : greekSymbol(code);
        units.push_back(unit);
        return unit != u'\uFFFD';
    }
    if (code < _known.size() && _known[code]) {
        units.push_back(_known[code]);
        return _known[code] != u'\uFFFD';
    }
    std::u16string text(1, u'\uFFFD');
    if (auto decoded = decodeBytes(character, _encoding); decoded && !decoded->empty())
        text = *decoded;
    else if (_number == 1252 || (character.size() == 1 && code < 0xA0))
        text[0] = static_cast<char16_t>(code);  // the holes of code pages are the controls of that number
    if (text.size() == 1 && code < _known.size()) _known[code] = text[0];
    units += text;
    return text[0] != u'\uFFFD';
}

}  // namespace pelvor
