// SPDX-License-Identifier: Apache-2.0
// FormatScope: a document in a window, whose text is formatted.
#pragma once

#include <filesystem>

#include "Foundation/NSUndoManager.h"
#include "Interface/NSMenuItem.h"
#include "InterfaceScope.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "PBPostLoader.h"
#include "Runtime/Message.h"
#include "TemporaryFolder.h"
#include "Text/NSFont.h"
#include "Text/NSParagraphStyle.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/WRDocument.h"
#include "Writer/Windows/WRDocumentWindow.h"
#include "Writer/Windows/WRFormatCommands.h"
#include "Writer/Windows/WRPageView.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace pelvor {

/// Shows a plain text in a window, and gives commands as menus do.
struct FormatScope {
    explicit FormatScope(NSString* text) {
        registerLibrary(windowsLibrary);
        PBPostLoader::processClassesStartingRegistry(false);
        std::filesystem::current_path(WRITER_PAGES);  // where the style sheet of all documents is
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
    void select(NSUInteger location, NSUInteger length = 0) {
        view->setSelectedRange({location, length});
        screen.turn();
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
                auto* font = cast<NSFont>(value);
                auto* name = font ? NSString::stringWithFormat(u"%@ %g"_ns, font->fontName(),
                                                               static_cast<double>(font->pointSize()))
                                  : value->description();
                text += std::to_string(run.range.location) + "-" + std::to_string(NSMaxRange(run.range)) +
                        " " + name->toUTF8() + "\n";
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
