// SPDX-License-Identifier: Apache-2.0
// FormatScope: a document in a window, and the user who formats its text. Also what most tests of windows use
// besides.
#pragma once

#include <filesystem>

#include "Foundation/NSUndoManager.h"
#include "Foundation/NSUserDefaults.h"
#include "Interface/NSMenu.h"
#include "Interface/NSMenuItem.h"
#include "Interface/NSScrollView.h"
#include "Interface/NSTextField.h"
#include "InterfaceScope.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "NSView-PelvorAdditions.h"
#include "PBPostLoader.h"
#include "TemporaryFolder.h"
#include "Text/NSColor.h"
#include "Text/NSFont.h"
#include "Text/NSParagraphStyle.h"
#include "Text/NSTextStorage.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/WRDocument.h"
#include "Writer/Windows/ColorParts.h"
#include "Writer/Windows/Preferences.h"
#include "Writer/Windows/WRDocumentWindow.h"
#include "Writer/Windows/WRFormatCommands.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WRPalette.h"
#include "Writer/Windows/WRTextWork.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {

/// Makes Writer's windows ready, and goes to where the style sheet of all documents is.
inline void prepareWindows() {
    registerLibrary(windowsLibrary);
    WRTextWork::pauseAfterEdit = {};  // the tests' clock stands still
    PBPostLoader::processClassesStartingRegistry(false);
    std::filesystem::current_path(WRITER_PAGES);
}

/// A user without settings, for a scope. No file keeps what is set meanwhile.
struct DefaultsScope {
    DefaultsScope() { NSUserDefaults::setStandardUserDefaults(defaults); }
    ~DefaultsScope() { NSUserDefaults::setStandardUserDefaults(nullptr); }
    Retained<NSUserDefaults> defaults = NSUserDefaults::initVolatile();
};

/// The first view of the class that stands in the window itself; null if no view is.
template <class View>
View* partOf(WRDocumentWindow* window) {
    for (id part : window->window()->contentView()->subviews())
        if (auto* found = cast<View>(part)) return found;
    return nullptr;
}

/// Shows a plain text in a window, and gives commands as menus do.
struct FormatScope : DefaultsScope {
    explicit FormatScope(NSString* text) {
        prepareWindows();
        open(text);
        screen.turn();
    }
    /// Shows another text in a window of its own, which the commands are for from now on. The window before
    /// ends, unless somebody retains it.
    void open(NSString* text) {
        document = WRDocument::initWithPath_reader_answer(NSString::ofUTF8(folder.write("b.txt", "")),
                                                          nullptr, NSDictionary::of({{WRTextKey, text}}));
        NSString* problem = nullptr;
        window = WRDocumentWindow::create(document, NSDictionary::dictionary(), &problem);
        if (!window) throw std::runtime_error(shown(problem));
        window->show();
        view = window->pageView();
    }
    void findAllPages() {
        while (!view->isComplete()) screen.turn();
    }
    /// A text of so many lines, each of which is a number.
    static Retained<NSString> numberedLines(unsigned count) {
        auto text = NSMutableString::init();
        for (unsigned i = 0; i < count; ++i) text->appendFormat(u"%u\n"_ns, i);
        return text;
    }
    /// Pages of 200 points each way, as the settings of a document.
    static NSDictionary* smallPages(float margin) {
        auto* settings = NSMutableDictionary::dictionary();
        for (NSString* key : {WRPageWidthKey, WRPageHeightKey})
            settings->setObject_forKey(NSNumber::numberWithFloat(200), key);
        for (NSString* key : {WRLeftMarginKey, WRRightMarginKey, WRTopMarginKey, WRBottomMarginKey})
            settings->setObject_forKey(NSNumber::numberWithFloat(margin), key);
        return settings;
    }
    void select(NSUInteger location, NSUInteger length = 0) {
        view->setSelectedRange({location, length});
        screen.turn();
    }
    /// Types in the place of all that is in the field that has the keys, and presses Return.
    void enter(NSWindow* panel, std::u16string_view text) {
        send(panel->firstResponder(), "selectAll:"_sel, id(nullptr));
        screen.type(text);
        screen.press(u'\r');
    }
    Retained<NSMenuItem> item(SEL action, NSInteger tag = 0, id represented = nullptr) {
        auto made = NSMenuItem::initWithTitle_action_keyEquivalent(u"Change"_ns, action, u""_ns);
        made->setTag(tag);
        made->setRepresentedObject(represented);
        return made;
    }
    void choose(SEL action, NSInteger tag = 0, id represented = nullptr) {
        screen.app->sendAction_to_from(action, nullptr, item(action, tag, represented).get());
        screen.turn();
    }
    /// "off", "on" or "mixed"; "disabled" if the item cannot be chosen.
    std::string state(SEL action, NSInteger tag = 0, id represented = nullptr) {
        auto shownItem = item(action, tag, represented);
        auto taker = screen.app->targetForAction(action);
        if (!taker || !send<bool>(taker, "validateMenuItem:"_sel, shownItem.get())) return "disabled";
        return shownItem->state() < 0 ? "mixed" : shownItem->state() ? "on" : "off";
    }
    /// What each run of the text has for the attribute, "0-5 …", without runs that have nothing.
    std::string runs(NSString* key) {
        std::string text;
        for (AttributeRun run : view->textStorage()->runsInRange({0, view->textStorage()->length()}))
            if (id value = run.attributes->objectForKey(key)) {
                text +=
                    std::to_string(run.range.location) + "-" + std::to_string(NSMaxRange(run.range)) + " ";
                if (auto* font = cast<NSFont>(value))
                    text += shown(font->fontName(), font->pointSize()) + "\n";
                else if (auto* color = cast<NSColor>(value))
                    text += shown(hexOfColor(color)) + "\n";
                else
                    text += shown(value) + "\n";
            }
        return text;
    }
    NSParagraphStyle* styleAt(NSUInteger place) {
        return cast<NSParagraphStyle>(view->textStorage()->attribute_atIndex_effectiveRange(
            NSParagraphStyleAttributeName, place, nullptr));
    }
    void undo() {
        view->undoManager()->undo();
        screen.turn();
    }
    void redo() {
        view->undoManager()->redo();
        screen.turn();
    }

    TemporaryFolder folder;
    InterfaceScope screen;
    Retained<WRDocument> document;
    Retained<WRDocumentWindow> window;
    WRPageView* view = nullptr;
};

}  // namespace pelvor
