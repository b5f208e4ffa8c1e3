// SPDX-License-Identifier: Apache-2.0
// WRRuler: shows and changes the indents and tab stops of paragraphs.
#pragma once

#include <optional>
#include <vector>

#include "Interface/NSView.h"

namespace pelvor {

class NSParagraphStyle;
class NSTextTab;
class WRFormatCommands;
class WRRulerGuide;

/// A ruler above the pages, whose marks stand where they are in the text below. It shows the width of the
/// text between the margins, and of the paragraph that the selection begins in the indents and the tab stops.
/// Marks are dragged, and a line over the pages shows their place meanwhile; a click sets a tab stop, a
/// double click changes its kind, and dragging off the ruler removes it. Each is one step to undo and
/// concerns all selected paragraphs. Places snap to the lines of the ruler unless the Alt key is down.
/// Numbers count from the leading edge of the text, in a unit that the context menu sets. Main thread.
class WRRuler : public NSView, NSView::HiddenCreators {
    PELVOR_CLASS(WRRuler, NSView);

  public:
    // C++ only
    static constexpr float kHeight = 24;
    static Retained<WRRuler> create(WRFormatCommands* commands, NSRect frame);

    /// Where the place stands on the ruler, in points of the text from the leading edge of the lines.
    float xOfPlace(float place);
    /// The abbreviation of the unit, which the user defaults have.
    NSString* unit() { return _unitName; }
    /// Adds an item for each unit, whose represented object is the unit's abbreviation.
    static void addUnitsToMenu(NSMenu* menu);
    /// The abbreviation of the unit that the user wants.
    static NSString* wantedUnit();

    /// The selection, the formats, or what is seen of the pages may have changed.
    void placeDidChange(id notification);
    /// The represented object of the sender is the abbreviation of a unit.
    void takeUnitFrom(id sender);
    void defaultsDidChange(id notification);

    bool isFlipped() override { return true; }
    bool isOpaque() override { return true; }
    bool acceptsFirstMouse(NSEvent*) override { return true; }
    void viewWillDraw() override;
    void drawRect(NSRect dirty) override;
    void mouseDown(NSEvent* event) override;
    void mouseDragged(NSEvent* event) override;
    void mouseUp(NSEvent* event) override;
    NSMenu* menuForEvent(NSEvent* event) override;

  protected:
    WRRuler() = default;
    ~WRRuler();

  private:
    enum class Kind { tab, firstLine, head, tail };
    struct Mark {
        Kind kind;
        float place;  // from the leading edge
        Retained<NSTextTab> tab;
    };
    struct Drag {
        Mark mark;
        float place;
        bool isNew, isOff, hasMoved;
    };
    // What is drawn, to see whether it has changed.
    struct Look {
        float edge, width, scale;  // of the text: x of its leading edge, its width in points
        bool isRightToLeft;

        friend bool operator==(const Look&, const Look&) = default;
    };

    Look currentLook();
    std::vector<Mark> marks();
    std::optional<Mark> markAt(NSPoint point);
    float placeAt(float x) { return (x - _look.edge) / _look.scale * (_look.isRightToLeft ? -1 : 1); }
    float labelStep();
    float tickStep();
    void chooseUnit();
    void follow(NSPoint point, bool snaps);
    void drawScale();
    void drawMark(const Mark& mark, float place);
    void apply(const Drag& drag);
    void changeKind(NSTextTab* tab);
    void showGuide();

    Retained<WRFormatCommands> _commands;
    Retained<NSString> _unitName;
    float _unit = 1;  // in points
    Look _look{};
    Retained<NSParagraphStyle> _style;
    std::optional<Drag> _drag;
    Retained<WRRulerGuide> _guide;  // while a mark is dragged
};

}  // namespace pelvor
