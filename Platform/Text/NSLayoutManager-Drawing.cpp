// SPDX-License-Identifier: Apache-2.0
// Drawing of laid-out text.
#include <algorithm>
#include <exception>
#include <optional>

#include "Foundation/NSDictionary.h"
#include "Foundation/NSNumber.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"
#include "Text/Drawing/Canvas.h"
#include "Text/Drawing/GlyphDrawing.h"
#include "Text/Layout/LayoutState.h"
#include "Text/NSColor.h"
#include "Text/NSGraphicsContext.h"
#include "Text/NSLayoutManager.h"

namespace pelvor {
namespace {

id valueOf(const LineRun& run, NSString* key) {
    NSDictionary* attributes = run.style->attributes;
    return attributes ? attributes->objectForKey(key) : nullptr;
}

int numberOf(const LineRun& run, NSString* key) {
    auto number = cast<NSNumber>(valueOf(run, key));
    return number ? number->intValue() : 0;
}

// The colour under the first of the keys that has one, else black.
NSColor* colorOf(const LineRun& run, NSString* key) {
    if (auto color = cast<NSColor>(valueOf(run, key))) return color;
    auto color = cast<NSColor>(valueOf(run, NSForegroundColorAttributeName));
    return color ? color : NSColor::blackColor();
}

// Lines under or through text: of the line's runs, where the text stands and not the blanks at its end.
struct Stroke {
    float left, right, y, thickness;
};

void drawLines(NSGraphicsContext* context, NSColor* color, int style, Stroke stroke) {
    if (stroke.right <= stroke.left) return;
    context->setColor(color);
    const float thickness = (style & 0xF) == NSUnderlineStyleThick ? 2 * stroke.thickness : stroke.thickness;
    const float width = stroke.right - stroke.left;
    context->fillRect({{stroke.left, stroke.y - thickness / 2}, {width, thickness}});
    if ((style & 0xF) == NSUnderlineStyleDouble)
        context->fillRect({{stroke.left, stroke.y + 1.5F * thickness}, {width, thickness}});
}

class LineDrawing {
  public:
    LineDrawing(NSLayoutManager* layoutManager, NSGraphicsContext* context, NSRange range)
        : _layoutManager(layoutManager), _context(context), _range(range) {}

    void draw(LayoutState& state, const LinePlace& place, NSPoint origin) {
        const Line& line = state.at(place);
        const NSRect rect = state.rectOf(place);
        LineGlyphs& glyphs = state.glyphsOf(place);
        _blockUnit = place.block.unit;
        _left = origin.x + pointsOf(line.textLeft);
        _baseline = origin.y + rect.origin.y + state.baselineOf(place);
        id view = nullptr;
        if (const std::size_t index = state.containerOf(_blockUnit + line.start);
            index < state.containers.size())
            view = state.containers[index]->textView();
        std::optional<SavedState> unclipped;
        if (line.isCut && line.textWidth >= 0) {
            unclipped.emplace(_context->canvas());
            _context->clipToRect(
                {{_left, origin.y + rect.origin.y}, {pointsOf(line.textWidth), rect.size.height}});
        }
        for (const LineRun& run : glyphs.runs())
            if (run.kind == TextRun::Kind::text) drawText(glyphs, run);
        for (const LineRun& run : glyphs.runs()) strike(run, glyphs.textEnd());
        // Cells may ask about other lines, and the glyphs of this one be forgotten.
        std::vector<Picture> pictures;
        for (const LineRun& run : glyphs.runs())
            if (run.kind == TextRun::Kind::attachment && isWanted(run)) pictures.push_back(pictureOf(run));
        for (const Picture& picture : pictures) drawPicture(picture, view);
    }
    /// Raises what a cell raised first.
    void finish() {
        if (_failure) std::rethrow_exception(_failure);
    }

  private:
    bool isWanted(const LineRun& run) const {
        // A sign belongs to the unit before it, the last one of a line that ends with a hyphen.
        const std::uint32_t start = run.isSign && run.start > 0 ? run.start - 1 : run.start;
        const std::uint32_t end = std::max(run.end, start + 1);
        return _blockUnit + start < NSMaxRange(_range) && _blockUnit + end > _range.location;
    }
    float baselineOf(const LineRun& run) const { return _baseline - pointsOf(run.style->shift); }

    void drawText(const LineGlyphs& glyphs, const LineRun& run) {
        if (!isWanted(run)) return;
        _context->setColor(colorOf(run, NSForegroundColorAttributeName));
        GlyphRun drawn;
        drawn.font = run.font;
        drawn.isRightToLeft = run.level & 1;
        if (auto slant = cast<NSNumber>(valueOf(run, NSObliquenessAttributeName)))
            drawn.obliqueness = slant->floatValue();
        drawn.expansion = static_cast<float>(run.style->expansion);
        // Of a run that is only partly wanted, the glyphs of wanted units.
        const auto all = glyphs.glyphsOf(run);
        const auto wants = [&](const PlacedGlyph& glyph) {
            return run.isSign || NSLocationInRange(_blockUnit + glyphs.start() + glyph.unit, _range);
        };
        Extent pen = run.left;
        for (std::size_t first = 0, last; first < all.size(); first = last) {
            const Extent left = pen;
            const bool isWanted = wants(all[first]);
            std::uint32_t least = all[first].unit, most = least;
            for (last = first; last < all.size() && wants(all[last]) == isWanted; ++last) {
                pen += all[last].advance;
                least = std::min(least, all[last].unit);
                most = std::max(most, all[last].unit);
            }
            if (!isWanted) continue;
            drawn.glyphs = all.subspan(first, last - first);
            if (!run.isSign) {
                const bool isAll = first == 0 && last == all.size();
                drawn.text = glyphs.units().data();
                drawn.range = isAll ? NSRange{run.start - glyphs.start(), run.end - run.start}
                                    : NSRange{least, most + 1 - least};
            }
            drawGlyphs(_context, drawn, {_left + pointsOf(left), baselineOf(run)});
        }
        if (auto address = cast<NSString>(valueOf(run, NSLinkAttributeName)))
            _context->addLink_inRect(address,
                                     {{_left + pointsOf(run.left), baselineOf(run) - run.font->ascender()},
                                      {pointsOf(run.width), run.font->ascender() - run.font->descender()}});
    }

    void strike(const LineRun& run, std::uint32_t textEnd) {
        if (!isWanted(run) || run.kind == TextRun::Kind::lineEnd || (run.start >= textEnd && !run.isSign))
            return;
        const float left = _left + pointsOf(run.left), right = left + pointsOf(run.width);
        NSFont* font = run.style->font;
        const float thickness = std::max(font->underlineThickness(), 0.5F);
        if (const int style = numberOf(run, NSUnderlineStyleAttributeName))
            drawLines(_context, colorOf(run, NSUnderlineColorAttributeName), style,
                      {left, right, baselineOf(run) - font->underlinePosition(), thickness});
        if (const int style = numberOf(run, NSStrikethroughStyleAttributeName))
            drawLines(_context, colorOf(run, NSStrikethroughColorAttributeName), style,
                      {left, right, baselineOf(run) - font->xHeight() / 2, thickness});
    }

    struct Picture {
        Retained<Object> cell;
        NSRect frame;
        NSUInteger index;
    };
    Picture pictureOf(const LineRun& run) const {
        const NSRect frame{{_left + pointsOf(run.left) + run.frame.origin.x,
                            baselineOf(run) - run.frame.origin.y - run.frame.size.height},
                           run.frame.size};
        return {Retained<Object>::retaining(run.style->attachment->attachmentCell()), frame,
                _blockUnit + run.start};
    }
    void drawPicture(const Picture& picture, id view) {
        const SEL draw = "drawWithFrame:inView:characterIndex:layoutManager:"_sel;
        if (!picture.cell || !picture.cell->respondsToSelector(draw)) return;
        const SavedState state(_context->canvas());
        try {
            send(picture.cell.get(), draw, picture.frame, view, picture.index, _layoutManager);
        } catch (...) {
            if (!_failure) _failure = std::current_exception();
        }
    }

    NSLayoutManager* _layoutManager;
    NSGraphicsContext* _context;
    NSRange _range;
    NSUInteger _blockUnit = 0;
    float _left = 0, _baseline = 0;
    std::exception_ptr _failure;
};

}  // namespace

void NSLayoutManager::drawBackgroundForGlyphRange_atPoint(NSRange range, NSPoint origin) {
    requireRange(range, _state->length(), "drawBackgroundForGlyphRange:atPoint:");
    NSGraphicsContext* context = NSGraphicsContext::currentContext();
    if (!context) return;
    const UprightState upright(context->canvas(), origin);
    _state->eachLine(range, [&](const LinePlace& place, NSRange) {
        const NSRect used = _state->usedRectOf(place);
        const Extent textLeft = _state->at(place).textLeft;
        for (const LineRun& run : _state->glyphsOf(place).runs()) {
            auto color = cast<NSColor>(valueOf(run, NSBackgroundColorAttributeName));
            const NSRange units{place.block.unit + run.start, run.end - run.start};
            if (!color || (run.width <= 0) || NSIntersectionRange(units, range).length == 0) continue;
            context->setColor(color);
            context->fillRect({{origin.x + pointsOf(textLeft + run.left), origin.y + used.origin.y},
                               {pointsOf(run.width), used.size.height}});
        }
    });
}

void NSLayoutManager::drawGlyphsForGlyphRange_atPoint(NSRange range, NSPoint origin) {
    requireRange(range, _state->length(), "drawGlyphsForGlyphRange:atPoint:");
    NSGraphicsContext* context = NSGraphicsContext::currentContext();
    if (!context) return;
    const UprightState upright(context->canvas(), origin);
    LineDrawing drawing(this, context, range);
    _state->eachLine(range, [&](const LinePlace& place, NSRange) { drawing.draw(*_state, place, origin); });
    drawing.finish();
}

}  // namespace pelvor
