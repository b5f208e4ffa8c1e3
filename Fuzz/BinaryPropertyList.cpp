// SPDX-License-Identifier: Apache-2.0
// Binary property lists: any bytes behind the magic give a list or an error, mutable lists equal immutable
// ones.
#include "PropertyListChecks.h"

using namespace pelvor;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    AutoreleasePool pool;
    fuzz::limitSharing();
    std::string bytes(reinterpret_cast<const char*>(data), size);
    if (!bytes.starts_with("bplist")) bytes.insert(0, "bplist00");
    id list = fuzz::read(bytes, NSPropertyListImmutable);
    id mutableList = fuzz::read(bytes, NSPropertyListMutableContainersAndLeaves);
    if (!list) {
        fuzz::require(!mutableList, "a mutable list is refused where an immutable one is");
        return 0;
    }
    // A mutable one may exceed the bound for what is made again.
    if (mutableList) fuzz::require(mutableList->isEqual(list), "mutable and immutable lists are equal");
    fuzz::requireBinaryRoundTrip(list);
    fuzz::requireXMLRoundTrip(list);
    return 0;
}
