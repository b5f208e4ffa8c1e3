// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/Pages/WRPageSetter.h"

#include "Foundation/NSBundle.h"
#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "PBUtil.h"
#include "Runtime/Message.h"
#include "Runtime/Registry.h"
#include "Writer/Pages/PageDocument.h"
#include "Writer/Pages/StyleSheet.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/Pages/PageFiles.h"
#include "Writer/PlugIns/Pages/PagesPlugIn.h"
#include "Writer/PlugIns/TextFiles/TextFileReading.h"
#include "Writer/SameFile.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRPageSetter, pagesPlugIn) {
    methods.classLevel<"didLoad", &WRPageSetter::didLoad>();
    methods.instance<"writePagesOfText:format:toPath:options:",
                     &WRPageSetter::writePagesOfText_format_toPath_options>();
}

void WRPageSetter::didLoad() {
    if (Class* languages = classNamed("WRLanguage"); languages && !PBSystemLanguage)
        PBSystemLanguage = send<id>(languages, "systemLanguage"_sel);
}

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
    if (auto* own = cast<NSDictionary>(options->objectForKey(WRDocumentSettingsKey))) {
        settings->removeObjectForKey(WRHeaderKey);
        settings->removeObjectForKey(WRFooterKey);
        settings->addEntriesFromDictionary(own);
    }
    if (wishes.sheet) settings->addEntriesFromDictionary(wishes.sheet->settings());
    if (NSString* paper = stringEntry(options, WRPaperKey)) {
        const NSSize size = StyleSheet::paperSizeNamed(paper);
        settings->setObject_forKey(NSNumber::numberWithFloat(size.width), WRPageWidthKey);
        settings->setObject_forKey(NSNumber::numberWithFloat(size.height), WRPageHeightKey);
    }
    if (auto* margin = cast<NSNumber>(options->objectForKey(WRMarginKey))) setMargins(settings, margin);
    return settings;
}

// The first of the paths whose file is one that must stay as it is; null if there is none.
NSString* keptAmong(NSArray* paths, NSDictionary* options) {
    auto* kept = cast<NSArray>(options->objectForKey(WRKeptPathsKey));
    for (NSUInteger i = 0; kept && i < kept->count(); ++i)
        for (id path : paths)
            if (isSameFile(static_cast<NSString*>(path), static_cast<NSString*>(kept->objectAtIndex(i))))
                return static_cast<NSString*>(path);
    return nullptr;
}

}  // namespace

NSDictionary* WRPageSetter::writePagesOfText_format_toPath_options(NSString* text, NSString* format,
                                                                   NSString* path, NSDictionary* options) {
    const PageWishes wishes = wishesOf(options);
    if (wishes.problem) return errorAnswer(WRErrorStyleSheet, wishes.problem);
    auto rich = Retained<NSAttributedString>::retaining(
        cast<NSAttributedString>(options->objectForKey(WRRichTextKey)));
    if (!rich) rich = NSAttributedString::initWithString(text);
    NSDictionary* settings = settingsFor(wishes, options);
    PageDocument document(textInStyles(rich, *wishes.defaults, wishes.sheet ? &*wishes.sheet : nullptr).get(),
                          settings);
    const auto refused = [this](NSString* message, const auto&... arguments) {
        return errorAnswer(WRErrorRefused,
                           NSString::stringWithFormat(_PBDoLocalize(message, this), arguments...));
    };
    if (!document.hasRoom())
        return refused(u"_The margins, or the header and the footer, leave no room for text on the page."_ns);
    const bool isPDF = format->isEqualToString(u"pdf"_ns);
    const float scale = scaleOfResolution(cast<NSNumber>(options->objectForKey(WRResolutionKey)));
    if (!isPDF && !hasImageOfScale(document, scale))
        return refused(u"_The resolution is too high: images have no more than 32767 pixels each way."_ns);
    NSArray* paths = isPDF ? NSArray::of({path}) : pathsOfImages(path, document.pageCount());
    if (NSString* kept = keptAmong(paths, options))
        return refused(u"_No pages were written: \"%@\" is a file that was read for them or just written."_ns,
                       kept);
    NSDictionary* answer = isPDF ? writePDF(document, stringEntry(settings, WRTitleKey), path)
                                 : writeImages(document, scale, paths);
    NSArray* problems = document.problems();
    if (problems->count() == 0 || answer->objectForKey(WRErrorKey)) return answer;
    auto* changed = NSMutableDictionary::dictionaryWithDictionary(answer);
    changed->setObject_forKey(
        NSString::stringWithFormat(_PBDoLocalize(u"_Some pictures are empty frames: %@."_ns, this),
                                   problems->componentsJoinedByString(u"; "_ns)),
        WRMessageKey);
    return changed;
}

}  // namespace pelvor
