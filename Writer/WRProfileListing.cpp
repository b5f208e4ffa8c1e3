// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRProfileListing.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSMutableArray.h"
#include "PBProfileKeys.h"
#include "PBProfileSet.h"
#include "Writer/LocalizedText.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/ProfileChoice.h"
#include "Writer/WRReport.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {
namespace {

struct Kind {
    NSString* const& type;
    NSString* name;
};

// In the order in which they are shown.
constexpr Kind kKinds[] = {
    {PBProfileDocumentReaderType, u"_Document readers"_ns},
    {PBProfileDocumentWriterType, u"_Document writers"_ns},
    {WRProfilePageSetterType, u"_Page setters"_ns},
    {PBProfileDocumentType, u"_Documents"_ns},
    {PBProfileDocumentServiceType, u"_Document services"_ns},
    {PBProfileDocumentViewType, u"_Document views"_ns},
    {PBProfileLassoReaderType, u"_Pasteboard readers"_ns},
    {PBProfileLassoWriterType, u"_Pasteboard writers"_ns},
    {PBProfilePaletteType, u"_Palettes"_ns},
    {PBProfileSidebarType, u"_Sidebars"_ns},
    {PBProfilePreferencePaneType, u"_Preference panes"_ns},
    {PBProfileCoderType, u"_Coders"_ns},
    {PBProfileLanguageType, u"_Languages"_ns},
    {PBProfileUnitType, u"_Measurement units"_ns},
    {PBProfileFormatsType, u"_Formats"_ns},
    {WRProfileDesktopType, u"_Desktops"_ns},
};

// What the name alone leaves open.
NSString* detailOfProfile(PBProfile* profile) {
    id types = profile->valueForKey(PBProfileDocumentTypesKey);
    if (auto* list = cast<NSArray>(types)) return list->componentsJoinedByString(u", "_ns);
    if (types) return types->description();
    return cast<NSString>(profile->valueForKey(u"abbreviation"_ns));
}

}  // namespace

PELVOR_DEFINE_CLASS(WRProfileListing, writerLibrary) {
    methods.creator<"initWithProfiles:", &WRProfileListing::initWithProfiles>();
    methods.classLevel<"textOfProfile:", &WRProfileListing::textOfProfile>();
    methods.classLevel<"nameOfKind:", &WRProfileListing::nameOfKind>();
    methods.instance<"addToReport:", &WRProfileListing::addToReport>();
}

WRProfileListing::~WRProfileListing() = default;

Retained<WRProfileListing> WRProfileListing::initWithProfiles(PBProfileSet* profiles, Class* cls) {
    auto self = make<WRProfileListing>(cls);
    self->_profiles.set(profiles);
    return self;
}

void WRProfileListing::addToReport(WRReport* report) {
    for (const Kind& kind : kKinds) {
        NSArray* profiles = profilesInOrder(_profiles->profilesOfType(kind.type));
        if (profiles->count() == 0) continue;
        auto* texts = NSMutableArray::array();
        for (id profile : profiles) texts->addObject(textOfProfile(static_cast<PBProfile*>(profile)));
        report->addLabel_value(nameOfKind(kind.type), texts->componentsJoinedByString(u", "_ns));
    }
}

NSString* WRProfileListing::textOfProfile(PBProfile* profile) {
    NSString* name = nameOfProfile(profile);
    NSString* detail = detailOfProfile(profile);
    return detail ? NSString::stringWithFormat(u"%@ (%@)"_ns, name, detail) : name;
}

NSString* WRProfileListing::nameOfKind(NSString* type) {
    for (const Kind& kind : kKinds)
        if (kind.type->isEqualToString(type)) return localized(kind.name);
    return type;
}

}  // namespace pelvor
