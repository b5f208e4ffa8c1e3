// SPDX-License-Identifier: Apache-2.0
// A recovery file of any bytes: a text and an origin, which come back from a file of their own, or a reason.
#include <cstring>
#include <string>

#include "Foundation/NSData.h"
#include "Foundation/NSLog.h"
#include "Require.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Registry.h"
#include "Writer/Recovery/RecoveryFormat.h"
#include "Writer/Recovery/RecoveryLibrary.h"

namespace pelvor {
namespace {

constexpr std::size_t kHeadSize = 12, kChecksumPlace = 8;

// Gives the records the checksums that they should have, so that their content is read.
std::string withChecksums(std::string bytes) {
    std::size_t place = kRecoverySignature.size();
    for (std::uint32_t length; place + kHeadSize <= bytes.size(); place += kHeadSize + length) {
        std::memcpy(&length, bytes.data() + place, sizeof length);
        if (length > bytes.size() - place - kHeadSize) break;
        const std::string_view record = std::string_view(bytes).substr(place, kHeadSize + length);
        const std::uint32_t sum =
            recoveryChecksum(record.substr(kHeadSize), recoveryChecksum(record.substr(0, kChecksumPlace)));
        std::memcpy(bytes.data() + place + kChecksumPlace, &sum, sizeof sum);
    }
    return bytes;
}

std::optional<RecoveryContent> check(std::string_view bytes) {
    std::string reason;
    auto content = readRecovery(bytes, reason);
    require(content.has_value() == reason.empty(), "a text or a reason");
    return content;
}

void checkReturn(const RecoveryContent& content) {
    std::string bytes(kRecoverySignature);
    RecoveryAttributes attributes;
    addOriginRecord(bytes, archivedOrigin(content.origin).get());
    require(addEditRecord(bytes, attributes, content.text, {0, content.text->length()}, 0), "a record");
    const auto again = check(bytes);
    require(again.has_value(), "what was written is read");
    require(again->origin.file == content.origin.file, "another file");
    require(again->text->string()->isEqualToString(content.text->string()), "another text");
    for (AttributeRun run : content.text->runs())
        for (NSDictionaryEntry entry : run.attributes)
            require(again->text->attribute_atIndex_effectiveRange(static_cast<NSString*>(entry.key),
                                                                  run.range.location, nullptr),
                    "an attribute is lost");
}

}  // namespace
}  // namespace pelvor

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    using namespace pelvor;
    static const bool isRegistered = (registerLibrary(recoveryLibrary), true);
    AutoreleasePool pool;
    LogSinkScope silence([](const LogEntry&) {});
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    check(bytes);
    if (auto content = check(withChecksums(bytes)); content && isRegistered) checkReturn(*content);
    return 0;
}
