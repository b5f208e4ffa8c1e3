// SPDX-License-Identifier: Apache-2.0
// Tests of data, and of reading and writing files with them.
#include "Foundation/NSData.h"

#include "Foundation/NSMutableData.h"
#include "Platform/Foundation/Messages.h"
#include "TemporaryFolder.h"

namespace {

NSData* bytes(std::string_view text) {
    return NSData::dataWithBytes_length(text.data(), static_cast<NSUInteger>(text.size()));
}

std::string text(NSData* data) { return {static_cast<const char*>(data->bytes()), data->length()}; }

TEST(NSDataTest, HoldsACopyOfTheBytes) {
    char buffer[] = "abcdef";
    NSData* data = NSData::dataWithBytes_length(buffer, 6);
    buffer[0] = 'X';
    EXPECT_EQ(text(data), "abcdef");
    EXPECT_EQ(text(data->subdataWithRange({2, 3})), "cde");
    data->getBytes_range(buffer, {4, 2});
    EXPECT_STREQ(buffer, "efcdef");
    data->getBytes_length(buffer, 99);
    EXPECT_STREQ(buffer, "abcdef");
    EXPECT_EQ(data->copy().get(), data);
}

TEST(NSDataTest, TakesMemoryOverOrBorrowsIt) {
    void* memory = std::malloc(3);
    std::memcpy(memory, "abc", 3);
    NSData* data = NSData::dataWithBytesNoCopy_length(memory, 3);
    EXPECT_TRUE(data->bytes() == memory && data->copy() == data && NSData::dataWithData(data) == data);
    char buffer[] = "xyz";
    NSData* borrowed = NSData::dataWithBytesNoCopy_length_freeWhenDone(buffer, 3, false);
    auto copy = borrowed->copy();
    buffer[0] = 'X';
    EXPECT_EQ(text(borrowed) + text(copy), "Xyzxyz");
    id own = send<id>(NSMutableData::classObject(), "dataWithBytesNoCopy:length:freeWhenDone:"_sel,
                      static_cast<void*>(buffer), 3, false);
    buffer[0] = 'Y';
    cast<NSMutableData>(own)->appendBytes_length("!", 1);
    EXPECT_EQ(text(cast<NSData>(own)), "Xyz!");
}

TEST(NSDataTest, ComparesAndDescribes) {
    NSData *data = bytes("ab"), *same = NSMutableData::dataWithData(data);
    EXPECT_TRUE(data->isEqual(same) && data->hash() == same->hash());
    for (id other : {id(bytes("ac")), id(bytes("abc")), id(u"ab"_ns)})
        EXPECT_FALSE(data->isEqual(other)) << other;
    EXPECT_TRUE(NSData::data()->isEqualToData(NSMutableData::data()));
    EXPECT_EQ(NSData::data()->hash(), NSMutableData::data()->hash());
    EXPECT_EQ(shown(bytes("\x01\x02\xaa\xff\x10"), NSData::data()), "<0102aaff 10> <>");
}

TEST(NSDataTest, Changes) {
    NSMutableData* data = NSMutableData::dataWithData(bytes("abc"));
    expectSteps(data,
                {"appendBytes:length: 'de 2 -> abcde", "appendData: . -> abcdeabcde",
                 "replaceBytesInRange:withBytes:length: 1,7 'X 1 -> aXde",
                 "replaceBytesInRange:withBytes: 1,2 '123 -> a12e"},
                text);
    data->replaceBytesInRange_withBytes_length({0, 1}, data->bytes(), 4);
    expectSteps(data,
                {"replaceBytesInRange:withBytes: 5,4 '1234 -> a12e11234",
                 "resetBytesInRange: 1,2 -> a--e11234", "setLength: 2 -> a-", "increaseLengthBy: 2 -> a---"},
                [](NSData* each) {
                    std::string shown = text(each);
                    std::ranges::replace(shown, '\0', '-');
                    return shown;
                });
    auto copy = data->copy();
    data->setData(bytes("z"));
    EXPECT_EQ(copy->length(), 4u);
    EXPECT_THROW(data->replaceBytesInRange_withBytes({2, 1}, "x"), NSException);
    EXPECT_EQ(text(data), "z");
}

TEST(NSDataFileTest, WritesAndReadsFiles) {
    TemporaryFolder folder;
    auto path = [&](const char* name) { return NSString::ofUTF8(folder.path(name)); };
    for (bool isAtomic : {false, true}) {
        EXPECT_TRUE(bytes("second")->writeToFile_atomically(path("file"), isAtomic));
        for (NSData* read : {NSData::dataWithContentsOfFile(path("file")),
                             static_cast<NSData*>(NSMutableData::dataWithContentsOfFile(path("file")))})
            EXPECT_EQ(text(read), "second");
        EXPECT_FALSE(bytes("x")->writeToFile_atomically(nullptr, isAtomic));
    }
    EXPECT_TRUE(NSData::data()->writeToFile_atomically(path("file"), true));
    EXPECT_EQ(NSData::dataWithContentsOfFile(path("file"))->length(), 0u);
    for (NSString* none : {path("absent"), path("."), static_cast<NSString*>(nullptr)})
        EXPECT_EQ(NSData::dataWithContentsOfFile(none), nullptr) << none;
    EXPECT_GT(NSData::dataWithContentsOfFile(u"/proc/self/status"_ns)->length(), 0u);
}

}  // namespace
