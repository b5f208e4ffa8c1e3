// SPDX-License-Identifier: Apache-2.0
#include "Writer/UpdateReport.h"

#include "Foundation/NSDictionary.h"
#include "Foundation/NSNumber.h"
#include "Foundation/NSURL.h"
#include "PBOnlineSupport.h"
#include "Writer/LocalizedText.h"
#include "Writer/WRReport.h"

namespace pelvor {
namespace {

long long numberOf(id value) {
    if (auto* text = cast<NSString>(value)) return text->longLongValue();
    return cast<NSNumber>(value) ? cast<NSNumber>(value)->longLongValue() : 0;
}

}  // namespace

NSString* reportUpdates(WRReport* report) {
    NSURL* url = PBOnlineInfoDictionaryURL();
    if (!url || !url->scheme()) return localized(u"_No server is known that tells of newer versions."_ns);
    NSDictionary* newest = PBOnlineInfoDictionary();
    if (!newest) return localizedFormat(u"_The versions at \"%@\" cannot be loaded."_ns, url);
    report->addHeading(localized(u"_Versions"_ns));
    report->addLabel_value(localized(u"_This version"_ns), PBPelvorWriterDisplayVersion());
    if (numberOf(newest->objectForKey(u"ReleaseVersion"_ns)) <= PBPelvorWriterInternalIntVersion()) {
        report->addLine(localized(u"_This is the newest version."_ns));
        return nullptr;
    }
    if (id version = newest->objectForKey(u"DisplayVersion"_ns))
        report->addLabel_value(localized(u"_Newer version"_ns), version);
    if (id address = newest->objectForKey(u"Address"_ns))
        report->addLabel_value(localized(u"_Address"_ns), address);
    return nullptr;
}

}  // namespace pelvor
