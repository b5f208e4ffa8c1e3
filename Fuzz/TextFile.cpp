// SPDX-License-Identifier: Apache-2.0
// Reads any bytes as a text file and as a Markdown document, and writes the text again.
#include <cstdlib>

#include "Foundation/EncodingDetection.h"
#include "Writer/PlugIns/Markdown/MarkdownText.h"
#include "Writer/PlugIns/TextFiles/TextFileDecoding.h"
#include "Writer/TextParagraphs.h"

namespace {

void require(bool holds) {
    if (!holds) std::abort();
}

// Paragraphs and what ends them are the whole text.
void checkParagraphs(std::u16string_view text) {
    for (std::u16string_view rest = text; !rest.empty();) {
        const std::size_t before = rest.size();
        const std::size_t length = pelvor::takeParagraph(rest).size();
        const std::size_t ending = before - rest.size() - length;
        require(ending <= 2 && (ending > 0 || rest.empty()));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace pelvor;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const TextFileSource source(bytes);
    const TextFileContent content = decodeTextFile(source, {});
    const std::u16string_view units = content.text.view();
    if (content.fault != TextFileFault::none) {
        require(content.fault == TextFileFault::notText && units.empty());
        return 0;
    }
    require(units.find(u'\0') == units.npos);
    const TextFileContent again = decodeTextFile(source, content.encodingName);
    require(again.text.view() == units && again.hasByteOrderMark == content.hasByteOrderMark);
    if (!content.isLossy) {
        const NSStringEncoding encoding = encodingForName(content.encodingName);
        const std::string mark(content.hasByteOrderMark ? markOfEncoding(encoding) : "");
        require(mark + encodeUnits(units, encoding).value() == bytes);
    }
    checkParagraphs(units);
    const std::u16string text = textOfMarkdown(units).text;
    require(text.size() <= units.size() + 1);
    require(text.empty() || text.back() == u'\n');
    return 0;
}
