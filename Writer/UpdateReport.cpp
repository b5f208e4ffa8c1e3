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
    NSString* reason = nullptr;
    NSDictionary* newest = PBOnlineInfoDictionary(&reason);
    if (!newest) return localizedFormat(u"_The versions at \"%@\" cannot be loaded: %@."_ns, url, reason);
    const long long version = numberOf(newest->objectForKey(u"ReleaseVersion"_ns));
    if (version <= 0)
        return localizedFormat(u"_The versions at \"%@\" say nothing about this program."_ns, url);
    report->addHeading(localized(u"_Versions"_ns));
    report->addLabel_value(localized(u"_This version"_ns), PBPelvorWriterDisplayVersion());
    if (version <= PBPelvorWriterInternalIntVersion()) {
        report->addLine(localized(u"_This is the newest version."_ns));
        return nullptr;
    }
    if (id name = newest->objectForKey(u"DisplayVersion"_ns))
        report->addLabel_value(localized(u"_Newer version"_ns), name);
    if (id address = newest->objectForKey(u"Address"_ns))
        report->addLabel_value(localized(u"_Address"_ns), address);
    return nullptr;
}

}  // namespace pelvor
