// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRProgressLine.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "Writer/LocalizedText.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRProgressLine, writerLibrary) {
    methods.creator<"init", &WRProgressLine::init>();
    methods.instance<"showTask:done:of:", &WRProgressLine::showTask_done_of>();
    methods.instance<"clear", &WRProgressLine::clear>();
}

Retained<WRProgressLine> WRProgressLine::init(Class* cls) {
    auto self = make<WRProgressLine>(cls);
    self->_isTerminal = isatty(STDOUT_FILENO) != 0;
    return self;
}

void WRProgressLine::showTask_done_of(NSString* task, unsigned long long done, unsigned long long total) {
    if (!_isTerminal) return;
    const auto percent = static_cast<unsigned>(total ? std::min(done, total) * 100 / total : 100);
    NSString* text = localizedFormat(u"_%@: %u %%"_ns, task, percent);
    if (_text && _text->isEqualToString(text)) return;
    _text.set(text);
    std::fprintf(stdout, "\r\x1B[K%s", text->toUTF8().c_str());
    std::fflush(stdout);
}

void WRProgressLine::clear() {
    if (!_text) return;
    _text = nullptr;
    std::fputs("\r\x1B[K", stdout);
}

}  // namespace pelvor
