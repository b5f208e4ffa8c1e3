// SPDX-License-Identifier: Apache-2.0
// PBMenuItem: the class that menu items are of once classes have posed; shows shortcuts of several keys.
#pragma once

#include "Interface/NSMenuItem.h"

namespace pelvor {

class NSAttributedString;
class NSString;

/// Takes the place of NSMenuItem in `PBPostLoader::processClasses`: an item that is made afterwards, also by
/// `NSMenuItem::init…`, is a PBMenuItem. `title` returns what the program set as the title, also while the
/// item shows the keys of a shortcut behind the title (see NSMenuItem-PelvorAdditions.h). `trueTitle` returns
/// the title that the item had first:
///
///     NSMenuItem* item = menu->addItemWithTitle_action_keyEquivalent(u"Find"_ns, "find:"_sel, u""_ns);
///     setPelvorShortcut(item, shortcut);              // the item shows "Find      Ctrl+K F"
///     item->title();                                  // "Find"
///     item->setTitle(u"Find again"_ns);               // the item shows "Find again      Ctrl+K F"
///
/// Main thread.
class PELVOR_EXPORT PBMenuItem : public NSMenuItem {
    PELVOR_CLASS(PBMenuItem, NSMenuItem);
    PELVOR_CREATORS(initWithTitle_action_keyEquivalent);
    PELVOR_INHERITED_CREATORS(init, separatorItem);

  public:
    /// Makes every item that is made from now on a PBMenuItem.
    static void performPosing();

    static Retained<PBMenuItem> initWithTitle_action_keyEquivalent(NSString* title, SEL action,
                                                                   NSString* keyEquivalent,
                                                                   Class* cls = classObject());
    /// Makes the title that the interface file gave the item the true title.
    void awakeFromNib();

    /// The title that the program gave the item when the item had none; `title` if there was no such moment.
    NSString* trueTitle();
    /// Copies the title. Null forgets the true title.
    void setTrueTitle(NSString* title);

    /// The title without the keys of a shortcut.
    NSString* title() override;
    /// Changes the title, and leaves the keys of a shortcut behind it. Does nothing for null. The first title
    /// that is not empty becomes the true title.
    void setTitle(NSString* title) override;
    /// Changes the attributed title, and leaves the keys of a shortcut behind it. Null shows the plain title.
    void setAttributedTitle(NSAttributedString* title) override;

    /// NSMenuItem's own operations, which know of no shortcut.
    void _doSetTitle(NSString* title);
    void _doSetAttributedTitle(NSAttributedString* title);

    // C++ only
    /// While such a scope lives, `title`, `setTitle` and `setAttributedTitle` are NSMenuItem's own.
    class PELVOR_EXPORT PlainTitles {
      public:
        PlainTitles();
        ~PlainTitles();
        PlainTitles(const PlainTitles&) = delete;
        PlainTitles& operator=(const PlainTitles&) = delete;
    };

  protected:
    PBMenuItem() = default;
    ~PBMenuItem();
};

}  // namespace pelvor
