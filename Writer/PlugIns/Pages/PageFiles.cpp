// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/Pages/PageFiles.h"

#include "Foundation/NSData.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "Runtime/AutoreleasePool.h"
#include "Text/NSColor.h"
#include "Text/NSGraphicsContext.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/Pages/PageDocument.h"
#include "Writer/PlugIns/TextFiles/TextFileReading.h"
#include "Writer/PlugIns/TextFiles/TextFileWriting.h"

namespace pelvor {
namespace {

// Draws on the context while it lives.
class DrawingScope {
  public:
    explicit DrawingScope(NSGraphicsContext* context)
        : _before(Retained<NSGraphicsContext>::retaining(NSGraphicsContext::currentContext())) {
        NSGraphicsContext::setCurrentContext(context);
    }
    ~DrawingScope() { NSGraphicsContext::setCurrentContext(_before); }
    DrawingScope(const DrawingScope&) = delete;

  private:
    Retained<NSGraphicsContext> _before;
};

// Writes what was drawn. Null, or the answer that tells why it could not be done.
NSDictionary* writeDrawing(NSGraphicsContext* context, NSString* path, unsigned long long& bytes) {
    NSString* reason = nullptr;
    NSData* data = context->dataWithReason(&reason);
    if (!data) return errorAnswer(WRErrorFile, reason);
    bytes += data->length();
    return writeFile(data, path);
}

NSDictionary* answerOf(PageDocument& document, NSArray* paths, unsigned long long bytes) {
    return NSDictionary::of({{WRPageCountKey, NSNumber::numberWithUnsignedInt(document.pageCount())},
                             {WRPathsKey, paths},
                             {WRByteCountKey, NSNumber::numberWithUnsignedLongLong(bytes)}});
}

NSString* pathOfPage(NSString* path, NSUInteger page, NSUInteger count) {
    if (count == 1) return path;
    const NSUInteger digits = NSString::stringWithFormat(u"%u"_ns, count)->length();
    NSString* number = NSString::stringWithFormat(u"%u"_ns, page + 1);
    while (number->length() < digits) number = u"0"_ns->stringByAppendingString(number);
    NSString* extension = path->pathExtension();
    NSString* name = NSString::stringWithFormat(u"%@-%@"_ns, path->stringByDeletingPathExtension(), number);
    return extension->length() ? name->stringByAppendingPathExtension(extension) : name;
}

}  // namespace

NSDictionary* writePDF(PageDocument& document, NSString* title, NSString* path) {
    auto context = NSGraphicsContext::initForPDFWithTitle(title);
    {
        DrawingScope scope(context);
        for (NSUInteger page = 0; page < document.pageCount(); ++page) {
            context->beginPageWithSize(document.frame().paper);
            document.drawPage(page);
        }
    }
    unsigned long long bytes = 0;
    if (NSDictionary* failure = writeDrawing(context, path, bytes)) return failure;
    return answerOf(document, NSArray::of({path}), bytes);
}

NSDictionary* writeImages(PageDocument& document, NSNumber* resolution, NSString* path) {
    const float scale = (resolution ? resolution->floatValue() : 96) / 72;
    const NSSize paper = document.frame().paper;
    auto* paths = NSMutableArray::array();
    unsigned long long bytes = 0;
    for (NSUInteger page = 0; page < document.pageCount(); ++page) {
        auto context = NSGraphicsContext::initWithImageSize_scale(paper, scale);
        {
            DrawingScope scope(context);
            context->setColor(NSColor::whiteColor());
            context->fillRect({{0, 0}, paper});
            document.drawPage(page);
        }
        NSString* file = pathOfPage(path, page, document.pageCount());
        if (NSDictionary* failure = writeDrawing(context, file, bytes)) return failure;
        paths->addObject(file);
    }
    return answerOf(document, paths, bytes);
}

}  // namespace pelvor
