// SPDX-License-Identifier: Apache-2.0
// Tests of reading binary property lists made by hand: all widths, and lists that lie about themselves.
#include "Platform/Foundation/PropertyListSamples.h"

namespace {

std::string bigEndian(std::uint64_t value, unsigned size) {
    std::string bytes;
    while (size-- > 0) bytes += static_cast<char>(value >> 8 * size);
    return bytes;
}

// What the end of a list says of it.
struct Trailer {
    unsigned offsetSize = 1, referenceSize = 1;
    std::uint64_t count = 0, top = 0, table = 0;

    std::string bytes() const {
        return std::string(6, '\0') + bigEndian(offsetSize, 1) + bigEndian(referenceSize, 1) +
               bigEndian(count, 8) + bigEndian(top, 8) + bigEndian(table, 8);
    }
};

// A list of the objects' bytes, the first of them the root, with offsets and references of that size.
std::string bytesOf(const std::vector<std::string>& objects, unsigned offsetSize = 1,
                    unsigned referenceSize = 1) {
    std::string bytes = "bplist00", table;
    for (const std::string& object : objects) {
        table += bigEndian(bytes.size(), offsetSize);
        bytes += object;
    }
    return bytes + table + Trailer{offsetSize, referenceSize, objects.size(), 0, bytes.size()}.bytes();
}

using namespace std::string_literals;

TEST(BinaryPropertyLists, HoldValuesOfAllWidthsAndReferencesOfAnySize) {
    const std::string text(300, 'x');
    const std::pair<std::string, std::string> objects[] = {
        {"\x10\xFF"s, "255"},
        {"\x11\xFF\xFF"s, "65535"},
        {"\x12\xFF\xFF\xFF\xFF"s, "4294967295"},
        {"\x13" + bigEndian(UINT64_MAX, 8), "-1"},
        {"\x14" + bigEndian(0, 8) + bigEndian(UINT64_MAX, 8), "18446744073709551615"},
        {"\x14" + bigEndian(UINT64_MAX, 8) + bigEndian(UINT64_MAX, 8), "-1"},
        {"\x22\x3F\x80\x00\x00"s, "1"},
        {"\x23\x3F\xF8\x00\x00\x00\x00\x00\x00"s, "1.5"},
        {"\x80\x07"s, "7"},
        {"\x81\x01\x00"s, "256"},
        {"\x08", "0"},
        {"\x09", "1"},
        {"\x52" + "ab"s, "ab"},
        {"\x64\x00\xE4\xD8\x3D\xDE\x00\x65\xE5"s, "\u00E4\U0001F600\u65E5"},
        {"\x42\x00\x07"s, "<0007>"},
        {"\x5F\x11\x01\x2C" + text, text},
        {"\x33\x40\x4E\x00\x00\x00\x00\x00\x00"s, "2001-01-01 00:01:00 +0000"},
    };
    for (const auto& [object, value] : objects) EXPECT_EQ(shown(listOf(bytesOf({object}, 2))), value);
    for (unsigned size = 1; size <= 8; ++size) {
        id list =
            listOf(bytesOf({"\xD1" + bigEndian(1, size) + bigEndian(2, size), "\x51k", "\x51v"}, size, size));
        EXPECT_EQ(shown(list), "{\n    k = v;\n}") << size;
    }
}

TEST(BinaryPropertyLists, AreRefusedWhenTheirObjectsAreWrong) {
    const std::string tooMany = bigEndian(std::uint64_t{1} << 63, 8);
    const std::pair<const char*, std::vector<std::vector<std::string>>> rows[] = {
        {"at byte 8: an object of an unknown kind", {{"\x00"s}, {"\x70"}, {"\xC0"}}},
        {"at byte 8: a number of an impossible size", {{"\x15" + std::string(32, 'x')}}},
        {"at byte 8: a number that does not fit 64 bits", {{"\x14" + std::string(16, 'x')}}},
        {"at byte 8: a real number of an impossible size", {{"\x21" + std::string(2, 'x')}}},
        {"at byte 8: a date that is no moment", {{"\x33\x7F\xF0\x00\x00\x00\x00\x00\x00"s}}},
        {"at byte 8: an identifier of an impossible size", {{"\x8F" + std::string(16, 'x')}}},
        {"at byte 8: an object that reaches past the list's end",
         {{"\x13xxx"},
          {"\x55xxxx"},
          {"\x5F\x13" + bigEndian(UINT64_MAX, 8)},
          {"\x6F\x13" + tooMany},
          {"\xDF\x13" + tooMany}}},
        {"at byte 9: an object without a length", {{"\x5F\x51x"}, {"\x5F"}}},
        {"at byte 10: a character that is not ASCII", {{"\x52\x61\xE4"s}}},
        {"at byte 9: a reference to an object that does not exist", {{"\xA1\x01"}}},
        {"at byte 11: a key that is no string", {{"\xD1\x01\x01", "\x10\x07"}}},
        {"at byte 8: an array or dictionary that contains itself",
         {{"\xA1\x00"s}, {"\xA1\x01", "\xD1\x02\x00"s, "\x51k"}}},
    };
    for (const auto& [reason, lists] : rows)
        for (const auto& objects : lists) EXPECT_EQ(refusal(bytesOf(objects)), reason);
}

TEST(BinaryPropertyLists, AreRefusedWhenTheirTrailerIsWrong) {
    const std::pair<const char*, std::vector<Trailer>> rows[] = {
        {"offsets of an impossible size", {{0, 1, 1, 0, 9}, {9, 1, 1, 0, 9}}},
        {"references of an impossible size", {{1, 0, 1, 0, 9}, {1, 255, 1, 0, 9}}},
        {"a root object that does not exist", {{1, 1, 0, 0, 9}, {1, 1, 1, 1, 9}}},
        {"more objects than the list can hold", {{1, 1, 2, 0, 9}, {8, 1, UINT64_MAX / 4, 0, 9}}},
        {"a table of offsets outside the list",
         {{1, 1, 1, 0, 7}, {1, 1, 1, 0, 11}, {1, 1, 1, 0, UINT64_MAX}}},
        {"an object outside the list", {{1, 1, 1, 0, 8}}},
    };
    for (const auto& [reason, trailers] : rows)
        for (const Trailer& trailer : trailers)
            EXPECT_THAT(refusal("bplist00\x09\x08" + trailer.bytes()), EndsWith(reason));
    EXPECT_EQ(refusal("bplist15\x09\x08" + Trailer{1, 1, 1, 0, 9}.bytes()),
              "a binary list of an unknown version");
    EXPECT_EQ(refusal("bplist00"), "at byte 8: a binary list that is cut off");
}

// Arrays of two references each to the next one, `depth` of them above a number.
std::string doublingList(unsigned depth) {
    std::vector<std::string> objects;
    for (unsigned i = 1; i <= depth; ++i) objects.push_back("\xA2" + bigEndian(i, 1) + bigEndian(i, 1));
    objects.push_back("\x10\x07");
    return bytesOf(objects);
}

TEST(BinaryPropertyLists, MayShareContainersWithinBounds) {
    auto* shared = cast<NSArray>(listOf(doublingList(10)));
    auto* separate = cast<NSArray>(read(doublingList(10), NSPropertyListMutableContainers).list);
    ASSERT_TRUE(shared && separate && separate->isEqual(shared));
    EXPECT_EQ(shared->objectAtIndex(0), shared->objectAtIndex(1));
    EXPECT_NE(separate->objectAtIndex(0), separate->objectAtIndex(1));
    for (auto options : {NSPropertyListImmutable, NSPropertyListMutableContainers,
                         NSPropertyListMutableContainersAndLeaves}) {
        Reading reading = read(doublingList(60), options);
        ASSERT_TRUE(reading.error);
        EXPECT_EQ(shown(reading.error->reason()), "references that repeat too many objects");
    }
}

TEST(BinaryPropertyLists, CountTheDepthOfWhatTheyShare) {
    std::vector<std::string> objects{"\xA2" + bigEndian(1, 2) + bigEndian(511, 2)};
    for (unsigned i = 2; i <= 511; ++i) objects.push_back("\xA1" + bigEndian(i, 2));
    objects.push_back("\xA0");
    ASSERT_EQ(refusal(bytesOf(objects, 2, 2)), "");
    // The chain, of 511 arrays, is read first and then found again one array deeper.
    objects[0] = "\xA2" + bigEndian(1, 2) + bigEndian(512, 2);
    objects.push_back("\xA1" + bigEndian(1, 2));
    EXPECT_THAT(refusal(bytesOf(objects, 2, 2)), EndsWith("nested more than 512 deep"));
}

TEST(BinaryPropertyLists, MayNotStandForMuchMoreThanTheyHave) {
    // A thousand arrays that are all the same thousand references, each to a string of a thousand bytes.
    std::string bytes = "bplist00\xAF\x11\x03\xE8";
    for (unsigned i = 0; i < 1000; ++i) bytes += bigEndian(i + 1, 2);
    const std::size_t string = bytes.size();
    bytes += "\x5F\x11\x03\xE8" + std::string(1000, 'x');
    Trailer trailer{2, 2, 1001, 0, bytes.size()};
    std::string table = bigEndian(8, 2);
    for (int i = 0; i < 1000; ++i) table += bigEndian(string, 2);
    EXPECT_TRUE(refusal(bytes + table + trailer.bytes()).ends_with("objects that overlap"));
    // Mutable strings are made again only so often.
    const std::string text(100'000, 'x');
    const std::string list = bytesOf(
        {"\xAF\x11\x07\xD0" + repeated("\x01", 2000), "\x5F\x12" + bigEndian(text.size(), 4) + text}, 4);
    EXPECT_TRUE(listOf(list));
    EXPECT_FALSE(read(list, NSPropertyListMutableContainersAndLeaves).list);
}

}  // namespace
