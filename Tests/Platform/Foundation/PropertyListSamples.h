// SPDX-License-Identifier: Apache-2.0
// What the tests of property lists share: reading and writing in one line, and a list with every kind of
// value.
#pragma once

#include <pthread.h>

#include "Foundation/NSPropertyListError.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "Prelude.h"
#include "Sanitizers.h"

namespace pelvor::testing {

constexpr auto kXML = NSPropertyListXMLFormat_v1_0, kBinary = NSPropertyListBinaryFormat_v1_0,
               kOldStyle = NSPropertyListOldStyleFormat;

struct Reading {
    id list = nullptr;
    NSPropertyListError* error = nullptr;
    NSPropertyListFormat format{};
};

inline NSData* dataOf(std::string_view bytes) {
    return NSData::dataWithBytes_length(bytes.data(), static_cast<NSUInteger>(bytes.size()));
}

inline Reading read(std::string_view bytes,
                    NSPropertyListMutabilityOptions options = NSPropertyListImmutable) {
    Reading reading;
    reading.list = NSPropertyListSerialization::propertyListWithData_options_format_error(
        dataOf(bytes), options, &reading.format, &reading.error);
    return reading;
}

/// The list of that text: "{a = (b, c);}".
inline id listOf(std::string_view text) { return read(text).list; }

/// The reason for which the bytes are refused, with its place; "" if they are read.
inline std::string refusal(std::string_view bytes) {
    NSPropertyListError* error = read(bytes).error;
    return error ? shown(error) : "";
}

/// The list as text or bytes; "refused: …" with the reason if it cannot be written.
inline std::string written(id list, NSPropertyListFormat format = kXML) {
    NSPropertyListError* error = nullptr;
    NSData* data =
        NSPropertyListSerialization::dataWithPropertyList_format_options_error(list, format, 0, &error);
    if (!data) return "refused: " + shown(error);
    return {static_cast<const char*>(data->bytes()), data->length()};
}

inline constexpr std::string_view kXMLHeader =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";

/// A document with that content, in the form that programs write.
inline std::string document(std::string_view content) {
    return std::string(kXMLHeader) + std::string(content) + "\n</plist>\n";
}

inline NSData* sampleData(NSUInteger length) {
    std::string bytes(length, '\0');
    for (NSUInteger i = 0; i < length; ++i) bytes[i] = static_cast<char>(i * 7);
    return dataOf(bytes);
}

/// A dictionary with every kind of value, nested, each in several forms.
inline NSDictionary* richList() {
    using Real = std::numeric_limits<double>;
    auto whole = &NSNumber::numberWithLongLong;
    auto real = &NSNumber::numberWithDouble;
    auto date = &NSDate::dateWithTimeIntervalSinceReferenceDate;
    NSArray* strings =
        NSArray::of({u""_ns, u"plain"_ns, u" <kept> & \"quoted\" ]]> 'so' "_ns, u"a\r\nb\rc\td"_ns,
                     u"Gr\u00FC\u00DFe, \u65E5\u672C, \U0001F600"_ns, u"\u007F\u0085\u2028\uFFFD\uFDD0"_ns,
                     u"a string of more than fifteen characters, plain"_ns});
    NSArray* numbers = NSArray::of(
        {whole(0), whole(-1), whole(255), whole(256), whole(65536), whole(INT64_MIN), whole(INT64_MAX),
         NSNumber::numberWithUnsignedLongLong(UINT64_MAX), NSNumber::numberWithBool(true),
         NSNumber::numberWithBool(false), real(0.1), real(1), real(Real::max()), real(Real::denorm_min()),
         real(HUGE_VAL), real(-HUGE_VAL), NSNumber::numberWithFloat(0.1f)});
    NSArray* dates = NSArray::of(
        {date(0), date(-1), date(-978307200.0), date(1e9), date(-6.3e10), date(-7e10), date(9e11)});
    NSArray* data =
        NSArray::of({sampleData(0), sampleData(1), sampleData(2), sampleData(3), sampleData(200)});
    NSDictionary* inner = NSDictionary::of({{u"b"_ns, strings}, {u"a \u00E4 & \U0001F600"_ns, u"x"_ns}});
    return NSDictionary::of(
        {{u"strings"_ns, strings},
         {u"numbers"_ns, numbers},
         {u"dates"_ns, dates},
         {u"data"_ns, data},
         {u"empty"_ns, listOf("((), {})")},
         {u"nested"_ns, NSArray::of({inner, NSArray::of({inner, NSArray::of({inner})})})}});
}

/// Arrays in each other, `depth` of them.
inline id nestedArrays(unsigned depth) {
    NSArray* array = NSArray::array();
    while (--depth > 0) array = NSArray::of({array});
    return array;
}

/// Runs the work on a thread with a stack of 256 KiB, or where frames are larger than usual, as those of
/// gcc's address sanitizer, of eight times as much.
template <class Work>
void runOnSmallStack(Work work) {
    constexpr std::size_t kStack = (PELVOR_ADDRESS_SANITIZER ? 2048 : 256) * 1024;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, kStack);
    pthread_t thread;
    auto start = [](void* context) -> void* {
        AutoreleasePool pool;
        return (*static_cast<Work*>(context))(), nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, start, &work), 0);
    pthread_join(thread, nullptr);
}

inline std::string repeated(std::string_view text, std::size_t count) {
    std::string result;
    while (count-- > 0) result += text;
    return result;
}

}  // namespace pelvor::testing
using namespace pelvor::testing;
