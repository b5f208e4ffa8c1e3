// SPDX-License-Identifier: Apache-2.0
#include "PBAutoscrollingTableView.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include "BaseInterfaceLibrary.h"
#include "Interface/NSEvent.h"
#include "Interface/NSWindow.h"
#include "Runtime/AutoreleasePool.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBAutoscrollingTableView, baseInterfaceLibrary) {
    methods.instance<"_selectRowWithPrefix:inColumn:",
                     &PBAutoscrollingTableView::_selectRowWithPrefix_inColumn>();
    methods.instance<"moveUp:", &PBAutoscrollingTableView::moveUp>();
    methods.instance<"moveDown:", &PBAutoscrollingTableView::moveDown>();
    methods.instance<"moveToBeginningOfDocument:", &PBAutoscrollingTableView::moveToBeginningOfDocument>();
    methods.instance<"moveToEndOfDocument:", &PBAutoscrollingTableView::moveToEndOfDocument>();
    methods.instance<"pageUp:", &PBAutoscrollingTableView::pageUp>();
    methods.instance<"pageDown:", &PBAutoscrollingTableView::pageDown>();
    methods.instance<"insertNewline:", &PBAutoscrollingTableView::insertNewline>();
    methods.instance<"insertNewlineIgnoringFieldEditor:",
                     &PBAutoscrollingTableView::insertNewlineIgnoringFieldEditor>();
}

// MARK: Typing

void PBAutoscrollingTableView::insertText(id text) {
    if (!text) return;
    const auto self = Retained<PBAutoscrollingTableView>::retaining(this);
    if (text->respondsToSelector("string"_sel)) text = send<id>(text, "string"_sel);
    auto* typed = cast<NSString>(text);
    if (!typed) raiseBadArgument("insertText:", "the text is neither a string nor an attributed string");

    constexpr double kTicksOfPause = 90;
    const std::int32_t now = TickCount();
    const auto passed = static_cast<std::int32_t>(static_cast<std::uint32_t>(now) -
                                                  static_cast<std::uint32_t>(_autoscrollTypingTime));
    if (std::abs(static_cast<double>(passed)) < kTicksOfPause && _autoscrollTypingString)
        typed = _autoscrollTypingString->stringByAppendingString(typed);
    if (typed != _autoscrollTypingString) _autoscrollTypingString = typed->copy();
    _autoscrollTypingTime = now;

    const auto letters = _autoscrollTypingString;
    if (numberOfColumns() > 0) _selectRowWithPrefix_inColumn(letters, 0);
}

namespace {

// Finds values whose lower-case text begins with a text. Most values are plain strings that differ from it in
// their first letters; they are told without making their lower-case form.
class PrefixFinder {
  public:
    explicit PrefixFinder(NSString* prefix)
        : _prefix(Retained<NSString>::retaining(prefix->lowercaseString())), _units(_prefix) {}

    bool finds(id value) {
        if (!value) return false;
        if (isPlainString(value)) {
            if (const std::optional<bool> quick = compareASCII(static_cast<NSString*>(value))) return *quick;
        } else if (value->respondsToSelector("string"_sel)) {
            value = send<id>(value, "string"_sel);
        }
        if (!value || !value->respondsToSelector("lowercaseString"_sel)) return false;
        auto* text = cast<NSString>(send<id>(value, "lowercaseString"_sel));
        return text && (_prefix->length() == 0 || text->hasPrefix(_prefix));
    }

  private:
    // Whether the value is of a class of strings that adds no methods for the messages that `finds` sends.
    bool isPlainString(id value) {
        Class* cls = value->isa();
        if (std::find(_plainClasses.begin(), _plainClasses.end(), cls) != _plainClasses.end()) return true;
        const auto methodOf = [](Class* owner) { return owner->instanceMethod("lowercaseString"_sel); };
        if (!cast<NSString>(value) || methodOf(cls) != methodOf(NSString::classObject()) ||
            cls->instanceMethod("string"_sel))
            return false;
        _plainClasses.push_back(cls);
        return true;
    }

    // Nothing if letters beyond ASCII decide.
    std::optional<bool> compareASCII(NSString* text) {
        const unichar* units = text->contiguousCharacters();
        if (!units) return std::nullopt;
        const std::u16string_view wanted = _units.view();
        const std::size_t count = std::min<std::size_t>(text->length(), wanted.size());
        for (std::size_t i = 0; i < count; ++i) {
            const unichar unit = units[i];
            if (unit >= 0x80) return std::nullopt;
            const bool isCapital = unit >= 'A' && unit <= 'Z';
            if ((isCapital ? unit + ('a' - 'A') : unit) != wanted[i]) return false;
        }
        return count == wanted.size();
    }

    Retained<NSString> _prefix;
    StringUnits _units;
    std::vector<Class*> _plainClasses;  // seen so far
};

}  // namespace

bool PBAutoscrollingTableView::_selectRowWithPrefix_inColumn(NSString* prefix, int colIdx) {
    requireArgument(prefix, "_selectRowWithPrefix:inColumn:", "the prefix");
    requireIndex(static_cast<NSUInteger>(colIdx), static_cast<NSUInteger>(numberOfColumns()),
                 "_selectRowWithPrefix:inColumn:");
    const auto self = Retained<PBAutoscrollingTableView>::retaining(this);
    const auto source = Retained<Object>::retaining(delegate());
    const SEL getter = "tableView:objectValueForTableColumn:row:"_sel;
    if (!source || !source->respondsToSelector(getter)) return false;
    const auto column = columns()[static_cast<std::size_t>(colIdx)];
    const NSInteger count = numberOfRows();
    constexpr NSInteger kRowsInAPool = 256;

    PrefixFinder finder(prefix);
    NSInteger row = 0;
    bool isFound = false;
    while (row < count && !isFound) {
        AutoreleasePool pool;
        const NSInteger end = std::min(count, row + kRowsInAPool);
        while (row < end && !(isFound = finder.finds(send<id>(source, getter, this, column.get(), row))))
            ++row;
    }
    if (!isFound || row >= numberOfRows()) return false;  // the delegate may have changed the number

    selectRow_byExtendingSelection(row, false);
    scrollRowToVisible(row);
    const SEL action = this->action();
    const auto receiver = Retained<Object>::retaining(delegate());
    if (action && receiver && receiver->respondsToSelector(action))
        receiver->performSelector_withObject(action, this);
    return true;
}

// MARK: Other keys

void PBAutoscrollingTableView::keyDown(NSEvent* event) {
    if (event) interpretKeyEvents(NSArray::of({event}));
}

void PBAutoscrollingTableView::mouseDown(NSEvent* event) {
    _autoscrollTypingString = nullptr;
    NSTableView::mouseDown(event);
}

void PBAutoscrollingTableView::doCommandBySelector(SEL selector) {
    if (respondsToSelector(selector)) return NSTableView::doCommandBySelector(selector);
    handOnCurrentEvent();
}

void PBAutoscrollingTableView::handOnCurrentEvent() {
    _autoscrollTypingString = nullptr;
    NSEvent* event = window() ? window()->currentEvent() : nullptr;
    if (event) NSTableView::keyDown(event);
}

void PBAutoscrollingTableView::moveUp(id) { handOnCurrentEvent(); }
void PBAutoscrollingTableView::moveDown(id) { handOnCurrentEvent(); }
void PBAutoscrollingTableView::moveToBeginningOfDocument(id) { handOnCurrentEvent(); }
void PBAutoscrollingTableView::moveToEndOfDocument(id) { handOnCurrentEvent(); }
void PBAutoscrollingTableView::pageUp(id) { handOnCurrentEvent(); }
void PBAutoscrollingTableView::pageDown(id) { handOnCurrentEvent(); }
void PBAutoscrollingTableView::insertNewline(id) { handOnCurrentEvent(); }
void PBAutoscrollingTableView::insertNewlineIgnoringFieldEditor(id) { handOnCurrentEvent(); }

}  // namespace pelvor
