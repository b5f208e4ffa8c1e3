// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRAbout.h"

#include "Foundation/NSCalendarDate.h"
#include "Foundation/NSMutableArray.h"
#include "NSBundle-PelvorAdditions.h"
#include "Writer/WRAboutLine.h"
#include "Writer/WRPlugInLoader.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRAbout, writerLibrary) {
    methods.instance<"text", &WRAbout::text>();
    methods.instance<"setVersionLine:", &WRAbout::setVersionLine>();
    methods.instance<"setDateLine:", &WRAbout::setDateLine>();
    methods.instance<"setPlugInsLine:", &WRAbout::setPlugInsLine>();
    methods.instance<"awakeFromNib", &WRAbout::awakeFromNib>();
}

namespace {

NSString* programInformation(NSString* key) {
    return cast<NSString>(NSBundle::mainBundle()->objectForInfoDictionaryKey(key));
}

// The date in the information dictionary; null if there is none.
NSDate* buildDate() {
    NSString* text = programInformation(u"WRBuildDate"_ns);
    return text ? NSCalendarDate::dateWithString_calendarFormat(text->stringByAppendingString(u" +0000"_ns),
                                                                u"%Y-%m-%d %z"_ns)
                : nullptr;
}

NSString* namesOfPlugIns() {
    auto* names = NSMutableArray::array();
    for (id bundle : NSBundle::bundlesInDirectory(NSBundle::mainBundle()->builtInPlugInsPath()))
        names->addObject(WRPlugInLoader::nameOfBundle(static_cast<NSBundle*>(bundle)));
    return names->componentsJoinedByString(u", "_ns);
}

}  // namespace

NSString* WRAbout::text() {
    NSArray* lines = nullptr;
    const bool isLoaded = NSBundle_PelvorAdditions::loadNibNamed_owner_identifier_topLevelObjects(
        u"About"_ns, this, u"WRAbout"_ns, &lines);
    return isLoaded ? lines->componentsJoinedByString(u"\n"_ns) : nullptr;
}

void WRAbout::awakeFromNib() {
    NSString* name = programInformation(u"CFBundleName"_ns);
    NSString* version = programInformation(u"CFBundleShortVersionString"_ns);
    if (name && version) _versionLine->setValue(NSString::stringWithFormat(u"%@ %@"_ns, name, version));
    if (NSDate* date = buildDate()) _dateLine->setDate(date);
    _plugInsLine->setValue(namesOfPlugIns());
}

}  // namespace pelvor
