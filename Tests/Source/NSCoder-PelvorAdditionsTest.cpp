// SPDX-License-Identifier: Apache-2.0
#include "NSCoder-PelvorAdditions.h"

#include "Foundation/NSKeyedArchiver.h"
#include "Foundation/NSKeyedUnarchiver.h"
#include "Prelude.h"

namespace {

TEST(NSCoderPelvorAdditions, ReadBytesThatFitTheBuffer) {
    auto archiver = NSKeyedArchiver::init();
    archiver->encodeBytes_length_forKey("0123456789", 10, u"block"_ns);
    auto coder = NSKeyedUnarchiver::initForReadingWithData_allowedClasses(archiver->encodedData(), nullptr);
    char buffer[12] = "untouched";
    EXPECT_EQ(decodeBytesIntoBuffer_bufferLength_forKey(coder, buffer, 8, u"block"_ns), 0u);
    EXPECT_EQ(decodeBytesIntoBuffer_bufferLength_forKey(coder, buffer, 8, u"none"_ns), 0u);
    EXPECT_STREQ(buffer, "untouched");
    EXPECT_EQ(decodeBytesIntoBuffer_bufferLength_forKey(coder, buffer, 10, u"block"_ns), 10u);
    EXPECT_STREQ(buffer, "0123456789");
}

}  // namespace
