// SPDX-License-Identifier: Apache-2.0
#include "Menus/NSMenuItem-PelvorAdditions.h"

#include "BaseInterfaceLibrary.h"
#include "Foundation/NSMutableAttributedString.h"
#include "Interface/NSEvent.h"
#include "PBGUIUtil.h"
#include "Prelude.h"
#include "Text/NSColor.h"
#include "Text/NSParagraphStyle.h"
#include "Text/NSTextTab.h"

namespace {

extern Library menuTestLibrary;

// A shortcut as a host has it: a function key or a letter, alone or before a second key.
class MTShortcut final : public NSObject {
    PELVOR_CLASS(MTShortcut, NSObject);

  public:
    bool isMultikey() { return multikey; }
    bool isFunctionKey() { return functionKey; }
    NSString* keyString() { return u"\xF708"_ns; }
    NSString* caseSensitiveKeyString() { return u"K"_ns; }
    NSUInteger caseSensitiveModifiers() { return NSCommandKeyMask | NSShiftKeyMask; }
    NSString* displayKeyString() { return u"K, F"_ns; }
    NSString* displayModifierString() { return u"Ctrl+"_ns; }

    bool multikey = false, functionKey = false;

  protected:
    ~MTShortcut() = default;
};

PELVOR_DEFINE_CLASS(MTShortcut, menuTestLibrary) {
    methods.instance<"isMultikey", &MTShortcut::isMultikey>();
    methods.instance<"isFunctionKey", &MTShortcut::isFunctionKey>();
    methods.instance<"keyString", &MTShortcut::keyString>();
    methods.instance<"caseSensitiveKeyString", &MTShortcut::caseSensitiveKeyString>();
    methods.instance<"caseSensitiveModifiers", &MTShortcut::caseSensitiveModifiers>();
    methods.instance<"displayKeyString", &MTShortcut::displayKeyString>();
    methods.instance<"displayModifierString", &MTShortcut::displayModifierString>();
}

class MTEditor : public NSObject {
    PELVOR_CLASS(MTEditor, NSObject);

  public:
    bool validateCopy(NSMenuItem* item) { return lastItem = item, canCopy; }
    void validateCut(NSMenuItem* item) { lastItem = item; }

    NSMenuItem* lastItem = nullptr;
    bool canCopy = true;
};

PELVOR_DEFINE_CLASS(MTEditor, menuTestLibrary) {
    methods.instance<"validateCopy:", &MTEditor::validateCopy>();
    methods.instance<"validateCut:", &MTEditor::validateCut>();
}

Library menuTestLibrary{"MenuTest", {}, kClassesOf<MTShortcut, MTEditor>, {}};

MTShortcut* shortcut(bool isMultikey, bool isFunctionKey = false) {
    auto made = make<MTShortcut>();
    made->multikey = isMultikey;
    made->functionKey = isFunctionKey;
    return std::move(made).autorelease();
}

class MenuItemAdditions : public ::testing::Test {
  protected:
    MenuItemAdditions() {
        registerLibrary(baseInterfaceLibrary);
        static const bool hasPosed = (PBMenuItem::performPosing(), true);
        EXPECT_TRUE(hasPosed);
        item = NSMenuItem::initWithTitle_action_keyEquivalent(u"Find"_ns, "find:"_sel, u"f"_ns);
    }
    std::string shownText() {
        return item->attributedTitle() ? shown(item->attributedTitle()->string()) : "";
    }

    AutoreleasePool pool;
    Retained<NSMenuItem> item;
    MTShortcut* keys = shortcut(true);
};

NSAttributedString* inRed(NSString* text) {
    return NSAttributedString::initWithString_attributes(
               text, NSDictionary::of({{NSForegroundColorAttributeName, NSColor::redColor()}}))
        .autorelease();
}

id colourOf(NSAttributedString* text) {
    return text->attribute_atIndex_effectiveRange(NSForegroundColorAttributeName, 0, nullptr);
}

TEST_F(MenuItemAdditions, EveryItemIsAPBMenuItem) {
    EXPECT_TRUE(cast<PBMenuItem>(item.get()));
    EXPECT_EQ(shown(trueTitle(item), send<NSString*>(item.get(), "trueTitle"_sel)), "Find Find");
    item->setTitle(u"Search"_ns);
    EXPECT_EQ(shown(item->title(), trueTitle(item)), "Search Find");
    item->setTitle(u""_ns);
    item->setTitle(u"Look"_ns);
    EXPECT_EQ(shown(trueTitle(item)), "Look");
    item->setTitle(nullptr);
    EXPECT_EQ(shown(item->title()), "Look");
    static_cast<PBMenuItem*>(item.get())->setTrueTitle(nullptr);
    item->setTitle(u"Seek"_ns);
    EXPECT_EQ(shown(trueTitle(item)), "Seek");
    send(item.get(), "awakeFromNib"_sel);
    item->setTitle(u"Peek"_ns);
    EXPECT_EQ(shown(trueTitle(item)), "Seek");
}

TEST_F(MenuItemAdditions, KeepAnEmptyFirstTitle) {
    auto empty = NSMenuItem::init();
    _setMultikeyShortcut_withTitle(empty, keys, u"Find"_ns);
    EXPECT_EQ(shown(empty->title(), trueTitle(empty)), "Find ");
}

TEST_F(MenuItemAdditions, ShowTheKeysOfAShortcutBehindTheTitle) {
    setPelvorShortcut(item, keys);
    EXPECT_EQ(shownText(), "Find\tCtrl+K, F");
    EXPECT_EQ(shown(item->title(), item->keyEquivalent()->length()), "Find 0");
    EXPECT_EQ(item->keyEquivalentModifierMask(), NSCommandKeyMask | NSShiftKeyMask);
    NSAttributedString* text = item->attributedTitle();
    auto* style = static_cast<NSParagraphStyle*>(
        text->attribute_atIndex_effectiveRange(NSParagraphStyleAttributeName, 12, nullptr));
    EXPECT_EQ(shown(style->tabStops()->lastObject()), "250R");
    id found = nullptr, title = nullptr;
    EXPECT_TRUE(_getMultikeyShortcut_andOriginalTitle(item, &found, &title));
    EXPECT_EQ(found, keys);
    EXPECT_EQ(shown(title), "Find");

    item->setTitle(u"Find again"_ns);
    EXPECT_EQ(shownText(), "Find again\tCtrl+K, F");
    item->setAttributedTitle(inRed(u"Red"_ns));
    EXPECT_EQ(shownText() + shown(item->title()), "Red\tCtrl+K, FRed");
    EXPECT_EQ(colourOf(item->attributedTitle()), NSColor::redColor());
    item->setAttributedTitle(nullptr);  // the plain title comes back, and the keys stay
    EXPECT_EQ(shownText(), "Red\tCtrl+K, F");
    EXPECT_EQ(colourOf(item->attributedTitle()), nullptr);
}

TEST_F(MenuItemAdditions, PutOneShortcutInThePlaceOfAnother) {
    setPelvorShortcut(item, keys);
    setPelvorShortcut(item, shortcut(false));
    EXPECT_EQ(shownText() + shown(item->title(), item->keyEquivalent()), "Find K");
    setPelvorShortcut(item, shortcut(false, true));
    EXPECT_EQ(item->keyEquivalent()->characterAtIndex(0), NSF5FunctionKey);
    item->setAttributedTitle(inRed(u"Red"_ns));
    setPelvorShortcut(item, keys);
    setPelvorShortcut(item, shortcut(false));
    EXPECT_EQ(shownText(), "Red");  // still an attributed title
    EXPECT_EQ(colourOf(item->attributedTitle()), NSColor::redColor());
    EXPECT_FALSE(_getMultikeyShortcut_andOriginalTitle(item, nullptr, nullptr));
}

TEST_F(MenuItemAdditions, TakeAShortcutAwayAndKeepTheItemsPlace) {
    auto menu = NSMenu::init();
    menu->addItem(NSMenuItem::separatorItem());
    menu->addItem(item);
    menu->addItem(NSMenuItem::separatorItem());
    setPelvorShortcut(item, keys);
    const auto changes = menu->changeCount();
    setPelvorShortcut(item, nullptr);
    EXPECT_EQ(shownText() + shown(item->title(), item->keyEquivalent()->length()), "Find 0");
    EXPECT_EQ(item->keyEquivalentModifierMask(), 0u);
    EXPECT_EQ(menu->indexOfItem(item), 1);
    EXPECT_GE(menu->changeCount(), changes + 2);
}

TEST_F(MenuItemAdditions, ColourTitles) {
    NSColor *red = NSColor::redColor(), *blue = NSColor::blueColor();
    setAttributedTitleColor(item, nullptr);
    EXPECT_EQ(shownText(), "");
    setAttributedTitleColor(item, red);
    EXPECT_EQ(shownText(), "Find");
    EXPECT_EQ(colourOf(item->attributedTitle()), red);
    setPelvorShortcut(item, keys);
    setAttributedTitleColor(item, blue);
    EXPECT_EQ(shownText(), "Find\tCtrl+K, F");
    setPelvorShortcut(item, nullptr);
    EXPECT_EQ(colourOf(item->attributedTitle()), blue);
    setAttributedTitleColor(item, nullptr);
    EXPECT_EQ(colourOf(item->attributedTitle()), nullptr);
    auto untitled = NSMenuItem::init();
    setAttributedTitleColor(untitled, red);
    EXPECT_EQ(untitled->attributedTitle(), nullptr);
}

TEST_F(MenuItemAdditions, LeaveTitlesToThePlatformInAScope) {
    setPelvorShortcut(item, keys);
    {
        PBMenuItem::PlainTitles scope;
        item->setTitle(u"Plain"_ns);
        item->setAttributedTitle(nullptr);
        EXPECT_EQ(shownText() + shown(item->title()), "Plain");
    }
    EXPECT_EQ(shown(item->title()), "Plain");
}

TEST_F(MenuItemAdditions, BuildMenus) {
    auto menu = NSMenu::init();
    auto editor = make<MTEditor>();
    addItems(menu, NSArray::of({item, NSMenuItem::separatorItem()}));
    auto copy = addItemWithTitle_target_action(menu, u"Copy"_ns, editor, "copy:"_sel);
    EXPECT_EQ(copy->retainCount(), 2u);
    EXPECT_EQ(copy->target(), editor);
    EXPECT_EQ(itemWithAction(menu, "copy:"_sel), copy);
    EXPECT_EQ(itemWithAction(menu, "paste:"_sel), nullptr);
    EXPECT_EQ(menu->indexOfItem(copy), 2);
    EXPECT_EQ(RAISED(addItems(menu, NSArray::of({menu}))),
              "NSInvalidArgumentException: addItems: an object of the array is no menu item");
}

TEST_F(MenuItemAdditions, FindValidatorsByTheNameOfTheAction) {
    auto editor = make<MTEditor>();
    auto copy = NSMenuItem::initWithTitle_action_keyEquivalent(u"Copy"_ns, "copy:"_sel, u""_ns);
    bool result = false;
    EXPECT_TRUE(dispatchValidationTo_result(copy, editor, &result));
    EXPECT_TRUE(result && editor->lastItem == copy);
    editor->canCopy = false;
    EXPECT_TRUE(dispatchValidationTo_result(copy, editor, &result));
    EXPECT_FALSE(result);
    EXPECT_TRUE(dispatchValidationTo_result(copy, editor, nullptr));
    result = true;
    EXPECT_FALSE(dispatchValidationTo_result(item, editor, &result));  // there is no validateFind:
    EXPECT_FALSE(dispatchValidationTo_result(NSMenuItem::separatorItem(), editor, &result));
    EXPECT_FALSE(dispatchValidationTo_result(copy, nullptr, &result));
    EXPECT_TRUE(result);
    LogLines log;
    auto cut = NSMenuItem::initWithTitle_action_keyEquivalent(u"Cut"_ns, "cut:"_sel, u""_ns);
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(dispatchValidationTo_result(cut, editor, &result));
    EXPECT_FALSE(result);
    EXPECT_THAT(log.lines, testing::ElementsAre("-[MTEditor validateCut:] returns nothing, so that its menu "
                                                "items stay disabled: declare it bool"));
}

// MARK: Pruning

// A menu as letters: "f" is an item with the action find:, "-" a separator, "=" one that belongs to find:,
// "o" any other item.
struct Letters {
    Retained<NSMenu> menu = NSMenu::init();
    explicit Letters(const std::string& letters) {
        for (char letter : letters) {
            auto item = letter == 'f'
                            ? NSMenuItem::initWithTitle_action_keyEquivalent(u"f"_ns, "find:"_sel, u""_ns)
                        : letter == 'o'
                            ? NSMenuItem::initWithTitle_action_keyEquivalent(u"o"_ns, "other:"_sel, u""_ns)
                            : Retained<NSMenuItem>::retaining(NSMenuItem::separatorItem());
            if (letter == '=') item->setRepresentedObject(u"find:"_ns);
            menu->addItem(item);
        }
    }
    std::string text() {
        std::string letters;
        for (const auto& item : menu->items())
            letters += !item->isSeparatorItem()    ? item->title()->toUTF8()
                       : item->representedObject() ? "="
                                                   : "-";
        return letters;
    }
};

TEST_F(MenuItemAdditions, PruneMenus) {
    using Prune = void (*)(NSMenu*, SEL);
    auto pruned = [](Prune prune) {
        return [prune](const std::string& letters) {
            Letters menu(letters);
            prune(menu.menu, "find:"_sel);
            return menu.text();
        };
    };
    expectAll({"ff=offo=f -> oo", "oo -> oo", "f= -> ", "f-f -> -"},
              pruned(&PBRemoveItemsFromMenuWithSelector));
    expectAll({"ff=offo=f -> ff=offo", "f- -> f-", "f= -> "},
              pruned(&PBRemoveBottomItemsFromMenuWithSelector));
    expectAll({"ff=offo=f -> offo=f", "-f -> -f", "f= -> "}, pruned(&PBRemoveTopItemsFromMenuWithSelector));
}

TEST_F(MenuItemAdditions, SortAndRetitleItems) {
    Letters menu("");
    std::vector<Object*> items;
    for (NSString* title : {u"beta"_ns, u"Alpha"_ns, u"Gamma"_ns})
        items.push_back(NSMenuItem::initWithTitle_action_keyEquivalent(title, SEL(), u""_ns).autorelease());
    PBAppendItemsToMenu(menu.menu,
                        NSArray::arrayWithObjects_count(items.data(), 3)
                            ->sortedArrayUsingFunction_context(&PBCompareMenuItemsByTitle, nullptr));
    EXPECT_EQ(menu.text(), "AlphabetaGamma");
    EXPECT_FALSE(setTitleIfNeeded(item, NSString::ofUTF8("Find")));
    EXPECT_TRUE(setTitleIfNeeded(item, u"Seek"_ns));
    EXPECT_EQ(shown(item->title()), "Seek");
}

}  // namespace
