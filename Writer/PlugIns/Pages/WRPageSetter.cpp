// SPDX-License-Identifier: Apache-2.0
#include "Writer/PlugIns/Pages/WRPageSetter.h"

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "PBUtil.h"
#include "Writer/Pages/PageDocument.h"
#include "Writer/Pages/StyledDocument.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/PlugIns/Pages/PageFiles.h"
#include "Writer/PlugIns/Pages/PagesPlugIn.h"
#include "Writer/PlugIns/TextFiles/TextFileReading.h"
#include "Writer/SameFile.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(WRPageSetter, pagesPlugIn) {
    methods.instance<"writePagesOfText:format:toPath:options:",
                     &WRPageSetter::writePagesOfText_format_toPath_options>();
}

namespace {

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
    const StyledDocument styled = StyledDocument::of(text, options);
    if (styled.problem) return errorAnswer(WRErrorStyleSheet, styled.problem);
    PageDocument document(styled.text, styled.settings);
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
    NSDictionary* answer = isPDF ? writePDF(document, stringEntry(styled.settings, WRTitleKey), path)
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
