// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/RichText/RichTextBuilder.h"

#include <utility>

namespace pelvor {

void RichTextBuilder::startRun(std::uint32_t format) {
    _runs.push_back({length(), format, 0});
    _isParagraphStart = false;
}

void RichTextBuilder::appendOpen() {
    if (_runs.empty() || _isParagraphStart) startRun(_runs.empty() ? 0 : _runs.back().character);
    if (_hasOpenBreak) _units.append(u'\f');
    for (; _openCells > 0; --_openCells) _units.append(u'\t');
    _hasOpen = _hasOpenBreak = false;
}

void RichTextBuilder::endParagraph(std::uint32_t format) {
    for (; _paragraphRun < _runs.size(); ++_paragraphRun) _runs[_paragraphRun].paragraph = format;
    _isParagraphStart = true;
}

void RichTextBuilder::append(const RichTextBuilder& other) {
    const std::size_t start = length();
    for (Run run : other._runs) _runs.push_back({start + run.start, run.character, run.paragraph});
    _units.append(other._units.view());
    _paragraphRun = _runs.size();
    _isParagraphStart = true;
}

}  // namespace pelvor
