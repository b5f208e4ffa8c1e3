// SPDX-License-Identifier: Apache-2.0
#include "Writer/Pages/StyledDocument.h"

#include "Foundation/NSBundle.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "Writer/Pages/StyleSheet.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/TextFiles/TextFileReading.h"

namespace pelvor {
namespace {

// How a document is to be set: the user's wishes, the document's, and what holds without them.
struct PageWishes {
    std::optional<StyleSheet> defaults, sheet;
    NSString* problem = nullptr;  // why there are none
};

PageWishes wishesOf(NSDictionary* options) {
    PageWishes wishes;
    NSString* path = NSBundle::mainBundle()->pathForResource_ofType(u"Default"_ns, u"plist"_ns);
    wishes.defaults = StyleSheet::read(path ? path : u"Default.plist"_ns, &wishes.problem);
    if (NSString* named = stringEntry(options, WRStyleSheetKey); named && !wishes.problem)
        wishes.sheet = StyleSheet::read(named, &wishes.problem);
    return wishes;
}

void setMargins(NSMutableDictionary* settings, NSNumber* margin) {
    for (NSString* key : {WRLeftMarginKey, WRRightMarginKey, WRTopMarginKey, WRBottomMarginKey})
        settings->setObject_forKey(margin, key);
}

NSDictionary* settingsFor(const PageWishes& wishes, NSDictionary* options) {
    auto* settings = NSMutableDictionary::dictionaryWithDictionary(wishes.defaults->settings());
    if (NSString* name = stringEntry(options, WRTitleKey)) settings->setObject_forKey(name, WRTitleKey);
    if (auto* own = cast<NSDictionary>(options->objectForKey(WRDocumentSettingsKey)))
        settings->addEntriesFromDictionary(own);
    if (wishes.sheet) settings->addEntriesFromDictionary(wishes.sheet->settings());
    if (NSString* paper = stringEntry(options, WRPaperKey)) {
        const NSSize size = StyleSheet::paperSizeNamed(paper);
        settings->setObject_forKey(NSNumber::numberWithFloat(size.width), WRPageWidthKey);
        settings->setObject_forKey(NSNumber::numberWithFloat(size.height), WRPageHeightKey);
    }
    if (auto* margin = cast<NSNumber>(options->objectForKey(WRMarginKey))) setMargins(settings, margin);
    return settings;
}

}  // namespace

StyledDocument StyledDocument::of(NSString* text, NSDictionary* options) {
    StyledDocument styled;
    const PageWishes wishes = wishesOf(options);
    styled.problem = wishes.problem;
    if (styled.problem) return styled;
    auto rich = Retained<NSAttributedString>::retaining(
        cast<NSAttributedString>(options->objectForKey(WRRichTextKey)));
    if (!rich) rich = NSAttributedString::initWithString(text);
    styled.text = textInStyles(rich, *wishes.defaults, wishes.sheet ? &*wishes.sheet : nullptr);
    styled.settings.set(settingsFor(wishes, options));
    auto sheet = std::make_shared<StyleSheet>(wishes.sheet ? *wishes.sheet : *wishes.defaults);
    sheet->addMissingStyles(*wishes.defaults);
    const NamedStyle* plain = sheet->paragraphStyle(kPlainStyleName);
    styled.plainAttributes.set(plain ? attributesOfStyle(*plain) : NSDictionary::dictionary());
    styled.sheet = std::move(sheet);
    return styled;
}

}  // namespace pelvor
