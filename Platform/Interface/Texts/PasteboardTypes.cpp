// SPDX-License-Identifier: Apache-2.0
#include "Interface/Texts/PasteboardTypes.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSData.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSPasteboardTypes.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "Foundation/NSStringEncoding.h"
#include "Foundation/NSURL.h"

namespace pelvor {
namespace {

struct TypeName {
    NSString* const* type;
    const char* name;
};

// Of a type the best name first.
constexpr TypeName kNames[] = {
    {&NSStringPboardType, "UTF8_STRING"},
    {&NSStringPboardType, "text/plain;charset=utf-8"},
    {&NSStringPboardType, "text/plain"},
    {&NSStringPboardType, "STRING"},
    {&NSStringPboardType, "TEXT"},
    {&NSRTFPboardType, "text/rtf"},
    {&NSRTFPboardType, "application/rtf"},
    {&NSRTFPboardType, "text/richtext"},
    {&NSHTMLPboardType, "text/html"},
    {&NSFilenamesPboardType, "text/uri-list"},
    {&NSTabularTextPboardType, "text/tab-separated-values"},
    {&NSTIFFPboardType, "image/tiff"},
    {&NSPDFPboardType, "application/pdf"},
    {&NSPostScriptPboardType, "application/postscript"},
};

// What types without a name of their own are called, so that two programs of this library can exchange them.
constexpr std::string_view kPrefix = "application/x-pelvorbase.";

bool isLatin1(std::string_view name) { return name == "STRING" || name == "TEXT"; }

std::string bytesOf(NSData* data) {
    return {static_cast<const char*>(data->bytes()), static_cast<std::size_t>(data->length())};
}

NSData* dataOf(std::string_view bytes) { return NSData::of(std::as_bytes(std::span(bytes))); }

std::string addressList(NSData* data) {
    std::string list;
    id paths = NSPropertyListSerialization::propertyListWithData_options_format_error(
        data, NSPropertyListImmutable, nullptr, nullptr);
    auto array = cast<NSArray>(paths);
    for (NSUInteger i = 0; array && i < array->count(); ++i)
        if (auto path = cast<NSString>(array->objectAtIndex(i)); path && path->isAbsolutePath())
            list += NSURL::fileURLWithPath(path)->absoluteString()->toUTF8() + "\r\n";
    return list;
}

NSData* pathList(std::string_view content) {
    auto paths = NSMutableArray::init();
    while (!content.empty()) {
        const std::size_t end = std::min(content.find_first_of("\r\n"), content.size());
        const std::string_view line = content.substr(0, end);
        content.remove_prefix(std::min(end + 1, content.size()));
        if (line.empty() || line.front() == '#') continue;
        NSURL* address = NSURL::URLWithString(NSString::ofUTF8(line));
        if (address && address->isFileURL() && address->path()) paths->addObject(address->path());
    }
    if (paths->count() == 0) return nullptr;
    return NSPropertyListSerialization::dataWithPropertyList_format_options_error(
        paths, NSPropertyListXMLFormat_v1_0, 0, nullptr);
}

}  // namespace

std::vector<std::string> foreignNamesOfType(NSString* type) {
    std::vector<std::string> names;
    for (const TypeName& each : kNames)
        if (type->isEqualToString(*each.type)) names.emplace_back(each.name);
    if (!names.empty()) return names;
    const std::string text = type->toUTF8();
    return {text.find('/') == std::string::npos ? std::string(kPrefix) + text : text};
}

NSString* typeOfForeignName(std::string_view name) {
    for (const TypeName& each : kNames)
        if (name == each.name) return *each.type;
    if (name.substr(0, kPrefix.size()) == kPrefix) return NSString::ofUTF8(name.substr(kPrefix.size()));
    return name.find('/') == std::string_view::npos ? nullptr : NSString::ofUTF8(name);
}

std::string foreignContent(NSString* type, NSData* data, std::string_view name) {
    if (type->isEqualToString(NSFilenamesPboardType)) return addressList(data);
    if (isLatin1(name)) {
        auto text = NSString::initWithData_encoding(data, NSUTF8StringEncoding);
        NSData* latin =
            text ? text->dataUsingEncoding_allowLossyConversion(NSISOLatin1StringEncoding, true) : nullptr;
        return latin ? bytesOf(latin) : std::string();
    }
    return bytesOf(data);
}

NSData* contentOfForeign(NSString* type, std::string_view content, std::string_view name) {
    if (type->isEqualToString(NSFilenamesPboardType)) return pathList(content);
    if (isLatin1(name)) {
        auto text = NSString::initWithData_encoding(dataOf(content), NSISOLatin1StringEncoding);
        return text ? text->dataUsingEncoding(NSUTF8StringEncoding) : nullptr;
    }
    return dataOf(content);
}

}  // namespace pelvor
