// SPDX-License-Identifier: Apache-2.0
#include "Menus/NSMenuItem-PelvorAdditions.h"

#include <unordered_map>

#include "Foundation/NSLog.h"
#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSString.h"
#include "NSFont-PelvorAdditions.h"
#include "NSObject-PelvorAdditions.h"
#include "Runtime/Message.h"
#include "Runtime/NSMethodSignature.h"
#include "Runtime/Registry.h"
#include "Shared/ArgumentChecks.h"
#include "Text/NSColor.h"
#include "Text/NSMutableParagraphStyle.h"
#include "Text/NSTextTab.h"

namespace pelvor {

class PBValidatorCache {
  public:
    // The validator for the action, or the null selector.
    SEL validatorFor(SEL action, id target) {
        const auto [entry, isNew] = _validators.try_emplace(action);
        if (isNew) {
            NSString* name = NSString::ofUTF8(action.name());
            name =
                NSString::stringWithFormat(u"validate%@%@"_ns, name->substringToIndex(1)->capitalizedString(),
                                           name->substringFromIndex(1));
            const SEL validator = registerSelector(name->toUTF8());
            if (target->respondsToSelector(validator)) {
                _validators[action] = validator;
                logIfWithoutResult(target, validator);
            }
        }
        return _validators[action];
    }

  private:
    static void logIfWithoutResult(id target, SEL validator) {
        NSMethodSignature* signature = target->methodSignatureForSelector(validator);
        if (signature && signature->methodReturnLength() == 0)
            NSLog(u"-[%s %s] returns nothing, so that its menu items stay disabled: declare it bool"_ns,
                  target->class_()->publicName(), validator.name());
    }

    std::unordered_map<SEL, SEL> _validators;
};

NSString* const PBMenuItemShortcutAttributeName = u"_PBMenuItemShortcutAttribute"_ns;
NSString* const PBMenuItemOriginalTitleAttributeName = u"_PBMenuItemOriginalTitleAttribute"_ns;

namespace {

void defineItemAdditions(MethodTable<NSMenuItem>& methods) {
    methods.instance<"trueTitle", &trueTitle>();
    methods.instance<"_getMultikeyShortcut:andOriginalTitle:", &_getMultikeyShortcut_andOriginalTitle>();
    methods.instance<"_setMultikeyShortcut:withTitle:", &_setMultikeyShortcut_withTitle>();
    methods.instance<"setPelvorShortcut:", &setPelvorShortcut>();
    methods.instance<"setAttributedTitleColor:", &setAttributedTitleColor>();
}

void defineMenuAdditions(MethodTable<NSMenu>& methods) {
    methods.instance<"addItems:", &addItems>();
    methods.instance<"addItemWithTitle:target:action:", &addItemWithTitle_target_action>();
    methods.instance<"itemWithAction:", &itemWithAction>();
    methods.instance<"_pelvorMenuRef", &_pelvorMenuRef>();
    methods.instance<"_pelvorMenuID", &_pelvorMenuID>();
    methods.instance<"highlightInMenuBar:", &highlightInMenuBar>();
}

void defineValidation(MethodTable<NSObject>& methods) {
    methods.instance<"dispatchValidationTo:result:", &dispatchValidationTo_result>();
    methods.instance<"dispatchValidationTo:cache:result:", &dispatchValidationTo_cache_result>();
}

}  // namespace

constinit const Category NSMenuItem_PelvorAdditions_category =
    Category::of<NSMenuItem, defineItemAdditions>("PelvorAdditions");
constinit const Category NSMenu_PelvorAdditions_category =
    Category::of<NSMenu, defineMenuAdditions>("PelvorAdditions");
constinit const Category NSObject_PelvorValidatedUserInterfaceItemAdditions_category =
    Category::of<NSObject, defineValidation>("PelvorValidatedUserInterfaceItemAdditions");

// MARK: Titles with shortcuts

namespace {

constexpr float kShortcutTab = 250;

NSRange wholeOf(NSAttributedString* text) { return {0, text->length()}; }

bool isString(id object) { return object->isKindOfClass(NSString::classObject()); }

id firstAttribute(NSMenuItem* item, NSString* name) {
    NSAttributedString* shown = item->attributedTitle();
    if (!shown || shown->length() == 0) return nullptr;
    return shown->attribute_atIndex_effectiveRange(name, 0, nullptr);
}

NSDictionary* plainAttributes() {
    return NSDictionary::of({{NSFontAttributeName, NSFont_PelvorAdditions::menuItemFont()}});
}

// The title with the keys of the shortcut at a tab stop behind it.
Retained<NSAttributedString> decorated(id title, id shortcut) {
    auto* attributed = cast<NSAttributedString>(title);
    auto text = attributed ? attributed->mutableCopy()
                           : NSMutableAttributedString::initWithString_attributes(
                                 static_cast<NSString*>(title), plainAttributes());
    NSString* keys =
        NSString::stringWithFormat(u"\t%@%@"_ns, send<NSString*>(shortcut, "displayModifierString"_sel),
                                   send<NSString*>(shortcut, "displayKeyString"_sel));
    text->appendAttributedString(
        NSAttributedString::initWithString_attributes(keys, plainAttributes()).get());
    auto style = NSParagraphStyle::defaultParagraphStyle()->mutableCopy();
    style->setTabStops(
        NSArray::of({NSTextTab::initWithType_location(NSRightTabStopType, kShortcutTab).autorelease()}));
    text->addAttributes_range(NSDictionary::of({{NSParagraphStyleAttributeName, style->copy().autorelease()},
                                                {PBMenuItemShortcutAttributeName, shortcut},
                                                {PBMenuItemOriginalTitleAttributeName,
                                                 static_cast<NSObject*>(title)->copy().autorelease()}}),
                              wholeOf(text));
    return text->copy();
}

void setPlainTitle(NSMenuItem* item, NSString* title) {
    PBMenuItem::PlainTitles scope;
    item->setTitle(title);
}

void setShownTitle(NSMenuItem* item, NSAttributedString* title) {
    PBMenuItem::PlainTitles scope;
    item->setAttributedTitle(title);
}

}  // namespace

id originalTitleOf(NSMenuItem* item) { return firstAttribute(item, PBMenuItemOriginalTitleAttributeName); }

bool _getMultikeyShortcut_andOriginalTitle(NSMenuItem* item, id* shortcut, id* title) {
    requireArgument(item, "_getMultikeyShortcut:andOriginalTitle:", "the item");
    NSAttributedString* shown = item->attributedTitle();
    if (title) {
        id original = originalTitleOf(item);
        if (!original && shown && shown->length() > 0) original = shown;
        *title = original ? original : item->title();
    }
    id found = firstAttribute(item, PBMenuItemShortcutAttributeName);
    if (!found || !send<bool>(found, "isMultikey"_sel)) return false;
    if (shortcut) *shortcut = found;
    return true;
}

void _setMultikeyShortcut_withTitle(NSMenuItem* item, id shortcut, id title) {
    constexpr const char* kOperation = "_setMultikeyShortcut:withTitle:";
    requireArgument(item, kOperation, "the item");
    requireArgument(title, kOperation, "the title");
    auto* attributed = cast<NSAttributedString>(title);
    if (!attributed && !isString(title))
        raiseBadArgument(kOperation, "the title is neither a string nor an attributed string");
    const auto held = Retained<Object>::retaining(title);  // perhaps what the item shows now
    if (shortcut) {
        const auto shown = decorated(title, shortcut);
        item->setKeyEquivalent(u""_ns);
        setShownTitle(item, shown);
    } else {
        setShownTitle(item, attributed);
        if (!attributed) setPlainTitle(item, static_cast<NSString*>(title));
    }
}

void setPelvorShortcut(NSMenuItem* item, id shortcut) {
    requireArgument(item, "setPelvorShortcut:", "the item");
    id title = nullptr;
    _getMultikeyShortcut_andOriginalTitle(item, nullptr, &title);
    item->setKeyEquivalentModifierMask(shortcut ? send<NSUInteger>(shortcut, "caseSensitiveModifiers"_sel)
                                                : 0);
    if (shortcut && send<bool>(shortcut, "isMultikey"_sel)) {
        _setMultikeyShortcut_withTitle(item, shortcut, title);
        return;
    }
    NSString* key = u""_ns;
    if (shortcut)
        key = send<NSString*>(shortcut, send<bool>(shortcut, "isFunctionKey"_sel)
                                            ? "keyString"_sel
                                            : "caseSensitiveKeyString"_sel);
    item->setKeyEquivalent(key ? key : u""_ns);
    _setMultikeyShortcut_withTitle(item, nullptr, title);
    const auto menu = Retained<NSMenu>::retaining(item->menu());
    if (shortcut || !menu) return;
    // A menu that has shown the key equivalent is to forget it.
    const auto held = Retained<NSMenuItem>::retaining(item);
    const NSInteger index = menu->indexOfItem(item);
    menu->removeItemAtIndex(index);
    menu->insertItem_atIndex(item, index);
}

NSString* trueTitle(NSMenuItem* item) {
    requireArgument(item, "trueTitle", "the item");
    auto* itsOwn = cast<PBMenuItem>(item);
    return itsOwn ? itsOwn->trueTitle() : item->title();
}

// MARK: Colours

namespace {

Retained<NSAttributedString> coloured(NSAttributedString* text, NSColor* color) {
    auto changed = text->mutableCopy();
    if (color)
        changed->addAttribute_value_range(NSForegroundColorAttributeName, color, wholeOf(changed));
    else
        changed->removeAttribute_range(NSForegroundColorAttributeName, wholeOf(changed));
    // The title that comes back when the shortcut goes has the colour as well.
    id original = text->attribute_atIndex_effectiveRange(PBMenuItemOriginalTitleAttributeName, 0, nullptr);
    if (!original) return changed->copy();
    auto plain = cast<NSAttributedString>(original)
                     ? Retained<NSAttributedString>::retaining(static_cast<NSAttributedString*>(original))
                     : NSAttributedString::initWithString_attributes(static_cast<NSString*>(original),
                                                                     plainAttributes());
    if (plain->length() > 0)
        changed->addAttribute_value_range(PBMenuItemOriginalTitleAttributeName, coloured(plain, color).get(),
                                          wholeOf(changed));
    return changed->copy();
}

}  // namespace

void setAttributedTitleColor(NSMenuItem* item, NSColor* color) {
    requireArgument(item, "setAttributedTitleColor:", "the item");
    id former = firstAttribute(item, NSForegroundColorAttributeName);
    if (former == color || (former && former->isEqual(color))) return;
    const auto shown = Retained<NSAttributedString>::retaining(item->attributedTitle());
    if (shown && shown->length() > 0)
        setShownTitle(item, coloured(shown, color).get());
    else if (item->title()->length() > 0)
        setShownTitle(
            item,
            coloured(NSAttributedString::initWithString_attributes(item->title(), plainAttributes()).get(),
                     color)
                .get());
}

// MARK: Menus

void addItems(NSMenu* menu, NSArray* items) {
    requireArgument(menu, "addItems:", "the menu");
    for (id item : items) {
        if (!cast<NSMenuItem>(item)) raiseBadArgument("addItems:", "an object of the array is no menu item");
        menu->addItem(static_cast<NSMenuItem*>(item));
    }
}

Retained<NSMenuItem> addItemWithTitle_target_action(NSMenu* menu, NSString* title, id target, SEL action) {
    requireArgument(menu, "addItemWithTitle:target:action:", "the menu");
    requireArgument(title, "addItemWithTitle:target:action:", "the title");
    auto item = NSMenuItem::initWithTitle_action_keyEquivalent(title, action, u""_ns);
    item->setTarget(target);
    menu->addItem(item);
    return item;
}

NSMenuItem* itemWithAction(NSMenu* menu, SEL action) {
    requireArgument(menu, "itemWithAction:", "the menu");
    for (const auto& item : menu->items())
        if (item->action() == action) return item;
    return nullptr;
}

MenuRef _pelvorMenuRef(NSMenu* menu) {
    requireArgument(menu, "_pelvorMenuRef", "the menu");
    return _NSGetCarbonMenu(menu);
}

MenuID _pelvorMenuID(NSMenu* menu) {
    requireArgument(menu, "_pelvorMenuID", "the menu");
    const MenuRef handle = _pelvorMenuRef(menu);
    return handle ? GetMenuID(handle) : 0;
}

void highlightInMenuBar(NSMenu* menu, bool isHighlighted) {
    requireArgument(menu, "highlightInMenuBar:", "the menu");
    HiliteMenu(isHighlighted ? _pelvorMenuID(menu) : 0);
}

// MARK: Validation

bool dispatchValidationTo_result(id item, id target, bool* result) {
    static auto& caches = *new std::unordered_map<Class*, PBValidatorCache>;
    requireArgument(item, "dispatchValidationTo:result:", "the item");
    return target && dispatchValidationTo_cache_result(item, target, &caches[target->class_()], result);
}

bool dispatchValidationTo_cache_result(id item, id target, PBValidatorCache* cache, bool* result) {
    requireArgument(item, "dispatchValidationTo:cache:result:", "the item");
    const SEL action = send<SEL>(item, "action"_sel);
    if (!action || !target) return false;
    requireArgument(cache, "dispatchValidationTo:cache:result:", "the cache");
    const SEL validator = cache->validatorFor(action, target);
    if (!validator) return false;
    const bool isEnabled = boolForPerformSelector_withObject(target, validator, item);
    if (result) *result = isEnabled;
    return true;
}

}  // namespace pelvor
