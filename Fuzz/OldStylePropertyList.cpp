// SPDX-License-Identifier: Apache-2.0
// Old-style property lists: any text gives a list or an error, and the list survives the other formats.
#include "PropertyListChecks.h"

using namespace pelvor;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    AutoreleasePool pool;
    fuzz::limitSharing();
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (bytes.starts_with("bplist") || bytes.starts_with("<?")) return -1;
    id list = fuzz::read(bytes, fuzz::optionsFor(size));
    if (!list) return 0;
    fuzz::requireBinaryRoundTrip(list);
    fuzz::requireXMLRoundTrip(list);
    // In an array it is the same.
    std::string_view mark("\xFE\xFF\xFF\xFE", 4);
    if (bytes.substr(0, 1).find_first_of(mark) == bytes.npos && !bytes.starts_with("\xEF\xBB\xBF")) {
        id wrapped = fuzz::read("(" + std::string(bytes) + "\n)", NSPropertyListImmutable);
        if (wrapped) fuzz::requireBinaryRoundTrip(wrapped);
    }
    return 0;
}
