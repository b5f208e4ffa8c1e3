// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/PagePDF.h"

#include "Foundation/NSData.h"
#include "Writer/Pages/DrawingScope.h"

namespace pelvor {

NSData* pdfOfPages(PageDocument& document, NSString* title, NSRange pages, NSString** reason) {
    document.findPages(NSNotFound);  // headers and footers may tell how many there are
    auto context = NSGraphicsContext::initForPDFWithTitle(title);
    DrawingScope scope(context);
    for (NSUInteger page = pages.location; page < NSMaxRange(pages); ++page) {
        context->beginPageWithSize(document.frame().paper);
        document.drawPage(page);
    }
    return context->dataWithReason(reason);
}

}  // namespace pelvor
