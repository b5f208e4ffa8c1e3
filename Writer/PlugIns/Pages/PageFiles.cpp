// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/Pages/PageFiles.h"

#include <algorithm>

#include "Foundation/NSData.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"
#include "Text/NSColor.h"
#include "Text/NSGraphicsContext.h"
#include "Writer/Pages/DrawingScope.h"
#include "Writer/Pages/PagePDF.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/TextFiles/TextFileWriting.h"

namespace pelvor {
namespace {

constexpr float kLongestEdge = 32767;  // of an image, in pixels

// Writes what was drawn. Null, or the answer that tells why it could not be done.
NSDictionary* writeDrawing(NSGraphicsContext* context, NSString* path, unsigned long long& bytes) {
    NSString* reason = nullptr;
    NSData* data = context->dataWithReason(&reason);
    if (!data) return unwritableAnswer(path, reason);
    bytes += data->length();
    return writeFile(data, path);
}

NSDictionary* answerOf(PageDocument& document, NSArray* paths, unsigned long long bytes) {
    return NSDictionary::of({{WRPageCountKey, NSNumber::numberWithUnsignedInt(document.pageCount())},
                             {WRPathsKey, paths},
                             {WRByteCountKey, NSNumber::numberWithUnsignedLongLong(bytes)}});
}

}  // namespace

NSDictionary* writePDF(PageDocument& document, NSString* title, NSString* path) {
    NSString* reason = nullptr;
    NSData* data = pdfOfPages(document, title, {0, document.pageCount()}, &reason);
    if (!data) return unwritableAnswer(path, reason);
    if (NSDictionary* failure = writeFile(data, path)) return failure;
    return answerOf(document, NSArray::of({path}), data->length());
}

NSArray* pathsOfImages(NSString* path, NSUInteger count) {
    if (count == 1) return NSArray::of({path});
    auto* paths = NSMutableArray::array();
    const NSUInteger digits = NSString::stringWithFormat(u"%u"_ns, count)->length();
    NSString* extension = path->pathExtension();
    for (NSUInteger page = 1; page <= count; ++page) {
        NSString* number = NSString::stringWithFormat(u"%u"_ns, page);
        while (number->length() < digits) number = u"0"_ns->stringByAppendingString(number);
        NSString* name =
            NSString::stringWithFormat(u"%@-%@"_ns, path->stringByDeletingPathExtension(), number);
        paths->addObject(extension->length() ? name->stringByAppendingPathExtension(extension) : name);
    }
    return paths;
}

float scaleOfResolution(NSNumber* resolution) { return (resolution ? resolution->floatValue() : 96) / 72; }

bool hasImageOfScale(const PageDocument& document, float scale) {
    const NSSize paper = document.frame().paper;
    return std::max(paper.width, paper.height) * scale <= kLongestEdge;
}

NSDictionary* writeImages(PageDocument& document, float scale, NSArray* paths) {
    const NSSize paper = document.frame().paper;
    const NSUInteger count = document.pageCount();
    unsigned long long bytes = 0;
    for (NSUInteger page = 0; page < count; ++page) {
        Retained<NSDictionary> failure;
        {
            AutoreleasePool pool;
            auto context = NSGraphicsContext::initWithImageSize_scale(paper, scale);
            DrawingScope scope(context);
            context->setColor(NSColor::whiteColor());
            context->fillRect({{0, 0}, paper});
            document.drawPage(page);
            failure.set(writeDrawing(context, static_cast<NSString*>(paths->objectAtIndex(page)), bytes));
        }
        if (failure) return std::move(failure).autorelease();
    }
    return answerOf(document, paths, bytes);
}

}  // namespace pelvor
