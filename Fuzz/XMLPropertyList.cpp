// SPDX-License-Identifier: Apache-2.0
// XML property lists: any document gives a list or an error, and the road for plain documents agrees with the
// parser.
#include "PropertyListChecks.h"

using namespace pelvor;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    AutoreleasePool pool;
    fuzz::limitSharing();
    std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (bytes.starts_with("bplist")) return -1;
    id list = fuzz::read(bytes, fuzz::optionsFor(size));
    if (bytes.size() < 2 || bytes[0] != '<' || bytes[1] == '\0') return 0;
    // A comment behind everything is harmless, but takes the document off the plain road.
    id parsed = fuzz::read(std::string(bytes) + "<!---->", fuzz::optionsFor(size));
    if (!list) return 0;
    if (!parsed) {
        // Data in the old style may begin with "<" as well.
        fuzz::require(bytes.substr(0, 2) != "<?", "the parser reads what the plain road reads");
        return 0;
    }
    fuzz::require(parsed->isEqual(list), "both roads read the same");
    std::string text = fuzz::requireXMLRoundTrip(list);
    fuzz::require(!text.empty(), "what was read as XML can be written as XML");
    fuzz::require(fuzz::write(parsed, NSPropertyListXMLFormat_v1_0) == text,
                  "both roads read the same kinds");
    fuzz::requireBinaryRoundTrip(list);
    return 0;
}
