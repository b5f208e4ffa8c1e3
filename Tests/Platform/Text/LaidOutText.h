// SPDX-License-Identifier: Apache-2.0
// A text with its layout, and ways to write down how it is laid out.
#pragma once

#include <sstream>

#include "Foundation/NSDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSString.h"
#include "Text/NSLayoutManager.h"
#include "Text/NSMutableParagraphStyle.h"
#include "Text/NSTextContainer.h"
#include "Text/NSTextStorage.h"
#include "Text/TextAttributes.h"

namespace pelvor {

/// A text in containers of those sizes, without padding.
struct LaidOutText {
    explicit LaidOutText(std::initializer_list<NSSize> sizes = {{300, 1.0e7F}}) {
        layoutManager = NSLayoutManager::init();
        storage = NSTextStorage::init();
        for (NSSize size : sizes) addContainer(size);
        storage->addLayoutManager(layoutManager);
    }
    LaidOutText(NSString* text, NSDictionary* attributes,
                std::initializer_list<NSSize> sizes = {{300, 1.0e7F}})
        : LaidOutText(sizes) {
        set(text, attributes);
    }

    NSTextContainer* addContainer(NSSize size) {
        auto container = NSTextContainer::initWithContainerSize(size);
        container->setLineFragmentPadding(0);
        layoutManager->addTextContainer(container);
        containers.push_back(container);
        return container;
    }
    void set(NSString* text, NSDictionary* attributes) {
        storage->beginEditing();
        storage->replaceCharactersInRange_withString({0, storage->length()}, text);
        storage->setAttributes_range(attributes, {0, storage->length()});
        storage->endEditing();
    }

    NSRange lineRange(NSUInteger unit) {
        NSRange range;
        layoutManager->lineFragmentRectForGlyphAtIndex_effectiveRange(unit, &range);
        return range;
    }
    NSRect lineRect(NSUInteger unit) {
        return layoutManager->lineFragmentRectForGlyphAtIndex_effectiveRange(unit, nullptr);
    }
    /// Where the unit begins, in the container.
    float x(NSUInteger unit) {
        return lineRect(unit).origin.x + layoutManager->locationForGlyphAtIndex(unit).x;
    }
    /// The lines' texts, as far as there are containers for them.
    std::vector<std::string> lines() {
        std::vector<std::string> texts;
        for (NSUInteger unit = 0; unit < storage->length();) {
            const NSRange range = lineRange(unit);
            if (range.length == 0) break;
            texts.push_back(storage->string()->substringWithRange(range)->toUTF8());
            unit = NSMaxRange(range);
        }
        return texts;
    }
    /// Everything about the lines, one below the other.
    std::string account() {
        std::ostringstream text;
        for (NSUInteger unit = 0; unit < storage->length();) {
            NSRange range;
            NSTextContainer* container =
                layoutManager->textContainerForGlyphAtIndex_effectiveRange(unit, nullptr);
            const NSRect rect = layoutManager->lineFragmentRectForGlyphAtIndex_effectiveRange(unit, &range);
            if (range.length == 0) break;
            std::size_t number = 0;
            while (number < containers.size() && containers[number].get() != container) ++number;
            text << range.location << "+" << range.length << " in " << number << " " << rect << " "
                 << layoutManager->lineFragmentUsedRectForGlyphAtIndex_effectiveRange(unit, nullptr) << "\n";
            unit = NSMaxRange(range);
        }
        text << layoutManager->extraLineFragmentRect();
        return text.str();
    }

    Retained<NSTextStorage> storage;
    Retained<NSLayoutManager> layoutManager;
    std::vector<Retained<NSTextContainer>> containers;
};

inline NSDictionary* inFont(const char* name, float size) {
    return NSDictionary::of({{NSFontAttributeName, NSFont::fontWithName_size(NSString::ofUTF8(name), size)}});
}
inline NSDictionary* plain() { return inFont("DejaVuSans", 12); }

/// Plain attributes with a paragraph style that the function sets up.
template <class SetUp>
NSDictionary* styled(SetUp setUp) {
    auto style = NSMutableParagraphStyle::init();
    setUp(style.get());
    return NSDictionary::of({{NSFontAttributeName, NSFont::fontWithName_size(u"DejaVuSans"_ns, 12)},
                             {NSParagraphStyleAttributeName, style->copy().get()}});
}

}  // namespace pelvor
