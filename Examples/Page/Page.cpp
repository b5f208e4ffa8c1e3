// SPDX-License-Identifier: Apache-2.0
// Page: sets a text in pages of A4, justified and hyphenated. Usage: Page TEXT.txt PAGES.pdf
#include <cstdio>

#include "BaseTextLibrary.h"
#include "Foundation/NSArray.h"
#include "Runtime/AutoreleasePool.h"
#include "Text/NSFont.h"
#include "Text/NSGraphicsContext.h"
#include "Text/NSLayoutManager.h"
#include "Text/NSMutableParagraphStyle.h"
#include "Text/NSString-Drawing.h"
#include "Text/NSTextContainer.h"
#include "Text/NSTextStorage.h"
#include "Text/TextAttributes.h"

namespace {

using namespace pelvor;

constexpr NSSize kPaper{595, 842};
constexpr float kMargin = 72;

NSDictionary* bodyAttributes() {
    auto style = NSMutableParagraphStyle::init();
    style->setAlignment(NSJustifiedTextAlignment);
    style->setFirstLineHeadIndent(18);
    style->setParagraphSpacing(4);
    style->setHyphenationFactor(1);
    return NSDictionary::of({{NSFontAttributeName, NSFont::userFontOfSize(11)},
                             {NSParagraphStyleAttributeName, style.get()},
                             {NSLanguageAttributeName, u"en"_ns}});
}

// The delegate of the layout manager: gives the text one page more where it is left without room.
class Pages : public NSObject {
    PELVOR_CLASS(Pages, NSObject);

  public:
    static Retained<Pages> make() { return pelvor::make<Pages>(classObject()); }
    void addTo(NSLayoutManager* layout) {
        auto page =
            NSTextContainer::initWithContainerSize({kPaper.width - 2 * kMargin, kPaper.height - 2 * kMargin});
        page->setLineFragmentPadding(0);
        layout->addTextContainer(page);
    }
    void layoutManager_didCompleteLayoutForTextContainer_atEnd(NSLayoutManager* layout, NSTextContainer* page,
                                                               bool) {
        if (!page) addTo(layout);
    }
};

constexpr Library* kDependencies[] = {&baseTextLibrary};
constexpr Class* kClasses[] = {&Pages::classRecord};
constinit Library pageLibrary{"Page", kDependencies, kClasses, {}};

PELVOR_DEFINE_CLASS(Pages, pageLibrary) {
    methods.instance<"layoutManager:didCompleteLayoutForTextContainer:atEnd:",
                     &Pages::layoutManager_didCompleteLayoutForTextContainer_atEnd>();
}

void drawPage(NSLayoutManager* layout, NSTextContainer* page, NSUInteger number) {
    const NSRange glyphs = layout->glyphRangeForTextContainer(page);
    layout->drawBackgroundForGlyphRange_atPoint(glyphs, {kMargin, kMargin});
    layout->drawGlyphsForGlyphRange_atPoint(glyphs, {kMargin, kMargin});
    NSDictionary* attributes = NSDictionary::of({{NSFontAttributeName, NSFont::userFontOfSize(9)}});
    NSString* text = NSString::stringWithFormat(u"%u"_ns, number);
    const float width = sizeWithAttributes(text, attributes).width;
    drawAtPoint_withAttributes(text, {(kPaper.width - width) / 2, kPaper.height - kMargin / 2}, attributes);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return std::fputs("usage: Page TEXT.txt PAGES.pdf\n", stderr), 2;
    AutoreleasePool pool;
    registerLibrary(pageLibrary);
    NSString* text = NSString::stringWithContentsOfFile(NSString::ofUTF8(argv[1]));
    if (!text) return std::fprintf(stderr, "%s cannot be read\n", argv[1]), 1;

    auto storage = NSTextStorage::initWithString_attributes(text, bodyAttributes());
    auto layout = NSLayoutManager::init();
    auto pages = Pages::make();
    storage->addLayoutManager(layout);
    layout->setDelegate(pages);
    pages->addTo(layout);
    if (storage->length() > 0) layout->ensureLayoutForCharacterRange({0, storage->length()});

    auto document = NSGraphicsContext::initForPDFWithTitle(NSString::ofUTF8(argv[1])->lastPathComponent());
    NSGraphicsContext::setCurrentContext(document);
    NSArray* containers = layout->textContainers();
    for (NSUInteger i = 0; i < containers->count(); ++i) {
        document->beginPageWithSize(kPaper);
        drawPage(layout, cast<NSTextContainer>(containers->objectAtIndex(i)), i + 1);
    }
    NSGraphicsContext::setCurrentContext(nullptr);
    NSString* reason = nullptr;
    if (!document->writeToFile_reason(NSString::ofUTF8(argv[2]), &reason))
        return std::fprintf(stderr, "%s\n", reason->UTF8String()), 1;
    std::printf("%u pages\n", document->numberOfPages());
}
