// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSURL-Contents.h"

#include "Foundation/LibraryTexts.h"
#include "Foundation/NSFileError.h"
#include "Foundation/NSHTTPURLResponse.h"
#include "Foundation/NSPropertyListSerialization.h"
#include "Foundation/NSURLConnection.h"
#include "Foundation/NSURLError.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

// The path of the file that a file URL names; null if this is a file of another machine, or no file URL.
NSString* pathOf(NSURL* url) {
    if (!url->isFileURL()) return nullptr;
    NSString* host = url->host();
    bool isHere =
        !host || host->length() == 0 || host->caseInsensitiveCompare(u"localhost"_ns) == NSOrderedSame;
    return isHere ? url->path() : nullptr;
}

// What the server sends; null, with the reason in the user's language, if it did not send what was asked for.
NSData* loaded(NSURL* url, NSString*& reason) {
    NSURLResponse* response = nullptr;
    NSURLError* error = nullptr;
    NSData* data = NSURLConnection::sendSynchronousRequest_returningResponse_error(
        NSURLRequest::requestWithURL(url), &response, &error);
    auto* head = cast<NSHTTPURLResponse>(response);
    const NSInteger status = head ? head->statusCode() : 0;
    if (data && status / 100 == 2) return data;
    reason = error ? error->localizedReason()
                   : NSString::stringWithFormat(
                         localizedLibraryText(u"_the server answered with the status %d"_ns), status);
    return nullptr;
}

NSData* contents(NSURL* url) {
    if (!url) return nullptr;
    if (url->isFileURL()) return pathOf(url) ? NSData::dataWithContentsOfFile(pathOf(url)) : nullptr;
    NSString* reason = nullptr;
    return loaded(url, reason);
}

// A property list in a file is read as such, which refuses what is no regular file.
id listIn(NSURL* url, NSString*& reason) {
    if (url && url->isFileURL()) {
        id list = NSPropertyListSerialization::propertyListWithContentsOfFile_options_format_error(
            pathOf(url), NSPropertyListImmutable, nullptr, nullptr);
        if (!list) reason = NSFileError::lastReadErrorAtPath(pathOf(url))->localizedReason();
        return list;
    }
    NSData* data = loaded(url, reason);
    return data ? NSPropertyListSerialization::propertyListWithData_options_format_error(
                      data, NSPropertyListImmutable, nullptr, nullptr)
                : nullptr;
}

}  // namespace

Retained<NSData> NSData_URLContents::initWithContentsOfURL(NSURL* url) {
    AutoreleasePool pool;
    return Retained<NSData>::retaining(contents(url));
}

NSData* NSData_URLContents::dataWithContentsOfURL(NSURL* url) {
    return initWithContentsOfURL(url).autorelease();
}

Retained<NSArray> NSArray_URLContents::initWithContentsOfURL(NSURL* url) {
    AutoreleasePool pool;
    NSString* reason = nullptr;
    return Retained<NSArray>::retaining(cast<NSArray>(listIn(url, reason)));
}

NSArray* NSArray_URLContents::arrayWithContentsOfURL(NSURL* url) {
    return initWithContentsOfURL(url).autorelease();
}

Retained<NSDictionary> NSDictionary_URLContents::initWithContentsOfURL(NSURL* url) {
    AutoreleasePool pool;
    return Retained<NSDictionary>::retaining(dictionaryWithContentsOfURL_reason(url, nullptr));
}

NSDictionary* NSDictionary_URLContents::dictionaryWithContentsOfURL_reason(NSURL* url, NSString** reason) {
    NSString* failure = nullptr;
    auto* dictionary = cast<NSDictionary>(listIn(url, failure));
    if (!dictionary && !failure)
        failure = NSURLError::create(NSURLErrorBadServerResponse, "")->localizedReason();
    if (reason) *reason = failure;
    return dictionary;
}

NSDictionary* NSDictionary_URLContents::dictionaryWithContentsOfURL(NSURL* url) {
    return initWithContentsOfURL(url).autorelease();
}

Retained<NSString> NSString_URLContents::initWithContentsOfURL_encoding(NSURL* url,
                                                                        NSStringEncoding encoding) {
    AutoreleasePool pool;
    NSData* data = contents(url);
    return data ? NSString::initWithData_encoding(data, encoding) : nullptr;
}

NSString* NSString_URLContents::stringWithContentsOfURL_encoding(NSURL* url, NSStringEncoding encoding) {
    return initWithContentsOfURL_encoding(url, encoding).autorelease();
}

namespace {

void defineDataMethods(MethodTable<NSData>& methods) {
    methods.classLevel<"dataWithContentsOfURL:", &NSData_URLContents::dataWithContentsOfURL>();
    methods.classLevel<"initWithContentsOfURL:", &NSData_URLContents::initWithContentsOfURL>();
}

void defineArrayMethods(MethodTable<NSArray>& methods) {
    methods.classLevel<"arrayWithContentsOfURL:", &NSArray_URLContents::arrayWithContentsOfURL>();
    methods.classLevel<"initWithContentsOfURL:", &NSArray_URLContents::initWithContentsOfURL>();
}

void defineDictionaryMethods(MethodTable<NSDictionary>& methods) {
    methods
        .classLevel<"dictionaryWithContentsOfURL:", &NSDictionary_URLContents::dictionaryWithContentsOfURL>();
    methods.classLevel<"initWithContentsOfURL:", &NSDictionary_URLContents::initWithContentsOfURL>();
}

void defineStringMethods(MethodTable<NSString>& methods) {
    methods.classLevel<"stringWithContentsOfURL:encoding:",
                       &NSString_URLContents::stringWithContentsOfURL_encoding>();
    methods.classLevel<"initWithContentsOfURL:encoding:",
                       &NSString_URLContents::initWithContentsOfURL_encoding>();
}

}  // namespace

constinit const Category NSData_URLContents_category = Category::of<NSData, defineDataMethods>("URLContents");
constinit const Category NSArray_URLContents_category =
    Category::of<NSArray, defineArrayMethods>("URLContents");
constinit const Category NSDictionary_URLContents_category =
    Category::of<NSDictionary, defineDictionaryMethods>("URLContents");
constinit const Category NSString_URLContents_category =
    Category::of<NSString, defineStringMethods>("URLContents");

}  // namespace pelvor
