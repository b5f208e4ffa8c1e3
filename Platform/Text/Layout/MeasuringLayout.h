// SPDX-License-Identifier: Apache-2.0
// MeasuringLayout: measures and draws one text after the other, without a layout of the text's own.
#pragma once

#include <memory>

#include "Text/NSLayoutManager.h"
#include "Text/NSString-Drawing.h"
#include "Text/NSTextContainer.h"
#include "Text/NSTextStorage.h"

namespace pelvor {

/// A layout that remembers the text that it had last. Each thread keeps one for the next use; a use inside
/// another one, such as by the cell of an attachment, has a layout of its own.
class MeasuringLayout {
  public:
    static constexpr NSSize kNoLimit{NSTextContainer::kUnlimitedExtent, NSTextContainer::kUnlimitedExtent};

    MeasuringLayout() : _tools(std::move(spare())) {
        if (!_tools) _tools = std::make_unique<Tools>();
    }
    ~MeasuringLayout() { spare() = std::move(_tools); }
    MeasuringLayout(const MeasuringLayout&) = delete;
    MeasuringLayout& operator=(const MeasuringLayout&) = delete;

    /// Null as attributes stands for none.
    void set(NSString* string, NSDictionary* attributes);
    void set(NSAttributedString* string);

    /// As `boundingRectWithSize:options:attributes:` describes it. Zeros for an empty text.
    NSRect box(NSSize size, NSStringDrawingOptions options);
    /// Lines that begin below the size are not drawn.
    void draw(NSPoint point, NSSize size);
    /// Draws into the current graphics context, clipped to the rectangle.
    void drawInside(NSRect rect);

  private:
    struct Tools {
        Tools();

        Retained<NSTextStorage> storage = NSTextStorage::init();
        Retained<NSLayoutManager> layoutManager = NSLayoutManager::init();
        Retained<NSTextContainer> container = NSTextContainer::initWithContainerSize(kNoLimit);
    };

    static std::unique_ptr<Tools>& spare();
    void setWidth(float width, bool usesLeading);
    NSRange glyphs() { return {0, _tools->storage->length()}; }

    std::unique_ptr<Tools> _tools;
};

}  // namespace pelvor
