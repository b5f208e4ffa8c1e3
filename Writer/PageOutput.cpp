// SPDX-License-Identifier: Apache-2.0
#include "Writer/PageOutput.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSAttributedString.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "PBProfileKeys.h"
#include "Writer/LocalizedText.h"
#include "Writer/PlugInObjects.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/ProfileChoice.h"
#include "Writer/WRArguments.h"
#include "Writer/WRDocument.h"
#include "Writer/WRReport.h"

namespace pelvor {
namespace {

PBProfile* setterFor(PBProfileSet* profiles, NSString* format) {
    NSArray* found = profilesInOrder(profiles->profilesOfType(WRProfilePageSetterType)
                                         ->profilesWithValue_forKey(format, PBProfileFormatsKey));
    return found->count() ? static_cast<PBProfile*>(found->objectAtIndex(0)) : nullptr;
}

NSDictionary* optionsFor(WRDocument* document, WRArguments* arguments) {
    auto* options = NSMutableDictionary::dictionary();
    const auto set = [options](NSString* key, id value) {
        if (value) options->setObject_forKey(value, key);
    };
    const auto setNumber = [&](NSString* key, NSString* option) {
        if (arguments->hasOption(option))
            set(key, NSNumber::numberWithUnsignedInt(arguments->numberOfOption(option)));
    };
    set(WRTitleKey, document->path()->lastPathComponent());
    if (document->richText()) set(WRRichTextKey, document->richText()->copy().get());
    set(WRDocumentSettingsKey, document->settings());
    set(WRStyleSheetKey, arguments->valueOfOption(u"--style-sheet"_ns));
    set(WRPaperKey, arguments->valueOfOption(u"--paper"_ns));
    setNumber(WRMarginKey, u"--margin"_ns);
    setNumber(WRResolutionKey, u"--resolution"_ns);
    return options;
}

void reportPages(WRReport* report, PBProfile* setter, NSDictionary* answer) {
    report->addHeading(nameOfProfile(setter));
    report->addLabel_value(localized(u"_Page count"_ns), answer->objectForKey(WRPageCountKey));
    auto* paths = cast<NSArray>(answer->objectForKey(WRPathsKey));
    for (NSUInteger i = 0; paths && i < paths->count(); ++i)
        report->addLabel_value(localized(u"_Path"_ns), paths->objectAtIndex(i));
    report->addLabel_value(localized(u"_Bytes"_ns), answer->objectForKey(WRByteCountKey));
    if (auto* message = cast<NSString>(answer->objectForKey(WRMessageKey))) report->addLine(message);
}

}  // namespace

NSString* writePages(WRDocument* document, NSString* format, WRArguments* arguments, PBProfileSet* profiles,
                     WRReport* report) {
    NSString* path = arguments->valueOfOption(u"--"_ns->stringByAppendingString(format));
    if (!path) return nullptr;
    PBProfile* setter = setterFor(profiles, format);
    if (!setter)
        return localizedFormat(u"_There is no plug-in that sets pages in the format \"%@\"."_ns, format);
    NSDictionary* answer = askPlugIn(setter, "writePagesOfText:format:toPath:options:"_sel, document->text(),
                                     format, path, optionsFor(document, arguments));
    NSString* problem = problemOfAnswer(answer, WRPageCountKey, setter);
    if (!problem) reportPages(report, setter, answer);
    return problem;
}

}  // namespace pelvor
