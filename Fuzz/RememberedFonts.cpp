// SPDX-License-Identifier: Apache-2.0
// The lines of a file of remembered fonts that somebody has edited, behind the line that says for what
// environment they hold. What is read can be written, and is read again as it was.
#include "Require.h"
#include "TemporaryFolder.h"
#include "Text/Fonts/FontMemory.h"

using namespace pelvor;

namespace {

bool areSame(const FontList& a, const FontList& b) {
    if (a.best != b.best || a.fonts.size() != b.fonts.size()) return false;
    for (std::size_t i = 0; i < a.fonts.size(); ++i)
        if (a.fonts[i].families != b.fonts[i].families || a.fonts[i].entry.file != b.fonts[i].entry.file ||
            a.fonts[i].entry.index != b.fonts[i].entry.index)
            return false;
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TemporaryFolder folder;
    const FontMemory memory(folder.path("fonts")), copy(folder.path("copy"));
    static const std::string head = [&] {
        memory.write({}, {});
        const std::string text = folder.read("fonts");
        return text.substr(0, text.find('\n') + 1);
    }();
    folder.write("fonts", head + std::string(reinterpret_cast<const char*>(data), size));
    const std::optional<FontList> list = memory.read();
    if (!list) return 0;
    for (const auto& [family, place] : list->best)
        require(place < list->fonts.size(), "the best font of a family is in the list");
    copy.write(*list, {});
    const std::optional<FontList> again = copy.read();
    require(again && areSame(*again, *list), "what was read can be written");
    return 0;
}
