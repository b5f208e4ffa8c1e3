// SPDX-License-Identifier: Apache-2.0
#include "Menus/PBMenuItem.h"

#include <unordered_map>

#include "BaseInterfaceLibrary.h"
#include "Foundation/NSAttributedString.h"
#include "Foundation/NSString.h"
#include "Menus/NSMenuItem-PelvorAdditions.h"

namespace pelvor {
namespace {

// By the item, which takes its entry away when it ends. The class adds no fields, since it poses.
using TrueTitles = std::unordered_map<NSMenuItem*, Retained<NSString>>;

TrueTitles& trueTitles() {
    static TrueTitles& titles = *new TrueTitles(200);
    return titles;
}

constinit int plainTitleScopes = 0;

}  // namespace

PELVOR_DEFINE_CLASS(PBMenuItem, baseInterfaceLibrary) {
    methods.classLevel<"performPosing", &PBMenuItem::performPosing>();
    methods.creator<"initWithTitle:action:keyEquivalent:", &PBMenuItem::initWithTitle_action_keyEquivalent>();
    methods.instance<"awakeFromNib", &PBMenuItem::awakeFromNib>();
    methods.instance<"trueTitle", &PBMenuItem::trueTitle>();
    methods.instance<"setTrueTitle:", &PBMenuItem::setTrueTitle>();
    methods.instance<"title", &PBMenuItem::title>();
    methods.instance<"setTitle:", &PBMenuItem::setTitle>();
    methods.instance<"setAttributedTitle:", &PBMenuItem::setAttributedTitle>();
    methods.instance<"_doSetTitle:", &PBMenuItem::_doSetTitle>();
    methods.instance<"_doSetAttributedTitle:", &PBMenuItem::_doSetAttributedTitle>();
}

PBMenuItem::PlainTitles::PlainTitles() { ++plainTitleScopes; }
PBMenuItem::PlainTitles::~PlainTitles() { --plainTitleScopes; }

void PBMenuItem::performPosing() {
    trueTitles();
    classObject()->poseAsClass(NSMenuItem::classObject());
}

PBMenuItem::~PBMenuItem() { trueTitles().erase(this); }

Retained<PBMenuItem> PBMenuItem::initWithTitle_action_keyEquivalent(NSString* title, SEL action,
                                                                    NSString* keyEquivalent, Class* cls) {
    auto item =
        cast<PBMenuItem>(NSMenuItem::initWithTitle_action_keyEquivalent(title, action, keyEquivalent, cls));
    item->setTrueTitle(title);
    return item;
}

void PBMenuItem::awakeFromNib() { setTrueTitle(title()); }

NSString* PBMenuItem::trueTitle() {
    const auto found = trueTitles().find(this);
    return found == trueTitles().end() ? title() : found->second.get();
}

void PBMenuItem::setTrueTitle(NSString* title) {
    Retained<NSString> former;  // ends when the map is as it will be
    if (title)
        std::swap(trueTitles()[this], former = title->copy());
    else if (auto entry = trueTitles().extract(this))
        former = std::move(entry.mapped());
}

NSString* PBMenuItem::title() {
    if (plainTitleScopes == 0)
        if (id original = originalTitleOf(this))
            return original->isKindOfClass(NSString::classObject())
                       ? static_cast<NSString*>(original)
                       : static_cast<NSAttributedString*>(original)->string();
    return NSMenuItem::title();
}

// The first title is that of the creator.
void PBMenuItem::setTitle(NSString* newTitle) {
    if (!newTitle) return;
    if (title()->length() == 0 && (newTitle->length() > 0 || !trueTitles().contains(this)))
        setTrueTitle(newTitle);
    id shortcut = nullptr;
    if (plainTitleScopes == 0 && _getMultikeyShortcut_andOriginalTitle(this, &shortcut, nullptr))
        _setMultikeyShortcut_withTitle(this, shortcut, newTitle);
    else
        _doSetTitle(newTitle);
}

void PBMenuItem::setAttributedTitle(NSAttributedString* newTitle) {
    id shortcut = nullptr;
    if (plainTitleScopes == 0 && _getMultikeyShortcut_andOriginalTitle(this, &shortcut, nullptr))
        _setMultikeyShortcut_withTitle(this, shortcut, newTitle ? static_cast<id>(newTitle) : title());
    else
        _doSetAttributedTitle(newTitle);
}

void PBMenuItem::_doSetTitle(NSString* newTitle) {
    PlainTitles scope;
    NSMenuItem::setTitle(newTitle);
}

void PBMenuItem::_doSetAttributedTitle(NSAttributedString* newTitle) {
    PlainTitles scope;
    NSMenuItem::setAttributedTitle(newTitle);
}

}  // namespace pelvor
