// SPDX-License-Identifier: Apache-2.0
#include "TKDesk.h"

#include "BaseLibrary.h"
#include "Foundation/NSArray.h"
#include "Foundation/NSNotificationCenter.h"
#include "PBIdleQueue.h"
#include "PBPostLoader.h"
#include "PBProfile.h"
#include "PBProfileKeys.h"
#include "PBRegistry.h"
#include "Runtime/Registry.h"

namespace pelvor {
namespace {

constexpr Library* kDependencies[] = {&baseLibrary};
constexpr Class* kClasses[] = {&TKDesk::classRecord};

constexpr NSString* kText = u"Dear Anna,\nthe parcel has come, and nothing in it is broken.\nThank you!"_ns;

PBIdleQueue* countingDesks() {
    static PBIdleQueue* const queue = PBIdleQueue::initWithSelector("countParagraph"_sel).leak();
    return queue;
}

}  // namespace

constinit Library deskLibrary{"ToolkitDesk", kDependencies, kClasses, {}};

PELVOR_DEFINE_CLASS(TKDesk, deskLibrary) {
    methods.instance<"start", &TKDesk::start>();
    methods.instance<"countParagraph", &TKDesk::countParagraph>();
    methods.instance<"profilesDidChange:", &TKDesk::profilesDidChange>();
}

Retained<TKDesk> TKDesk::create() {
    registerLibrary(deskLibrary);
    PBPostLoader::processClasses();
    auto desk = make<TKDesk>();
    desk->_paragraphs.set(kText->componentsSeparatedByString(u"\n"_ns));
    return desk;
}

TKDesk::~TKDesk() {
    countingDesks()->removeObject(this);
    NSNotificationCenter::defaultCenter()->removeObserver(this);
}

void TKDesk::start() {
    NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
        this, "profilesDidChange:"_sel, PBProfilesDidChangeNotification, PBRegistry::sharedRegistry());
    profilesDidChange(nullptr);
    countingDesks()->addObject(this);
}

void TKDesk::profilesDidChange(NSNotification*) {
    std::vector<std::string> titles;
    for (id object : PBRegistry::sharedRegistry()->profilesOfType(PBProfilePaletteType)->profiles()) {
        auto* profile = static_cast<PBProfile*>(object);
        NSString* name = cast<NSString>(profile->valueForKey(PBProfileNameKey));
        titles.push_back(profile->localize(name)->toUTF8());
    }
    showTitles(titles);
}

void TKDesk::countParagraph() {
    auto* paragraph = static_cast<NSString*>(_paragraphs->objectAtIndex(_counted++));
    _words += paragraph->componentsSeparatedByString(u" "_ns)->count();
    const bool isDone = _counted == _paragraphs->count();
    if (!isDone) countingDesks()->addObject(this);
    showCount(_words, isDone);
}

}  // namespace pelvor
