// SPDX-License-Identifier: Apache-2.0
#include "Writer/PageOutput.h"

#include "Foundation/NSMutableArray.h"
#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSNumber.h"
#include "PBProfileKeys.h"
#include "Writer/LocalizedText.h"
#include "Writer/ParagraphLanguages.h"
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

// The document's text with the languages of its paragraphs, as far as they can be told.
Retained<NSAttributedString> textWithLanguages(WRDocument* document, PBProfileSet* profiles) {
    auto text = document->richText() ? document->richText()->mutableCopy()
                                     : NSMutableAttributedString::initWithString(document->text());
    ParagraphLanguages(profiles).addTo(text, {0, text->length()});
    return text;
}

// The files that were read and, before pages in the format, written.
NSArray* keptPaths(WRDocument* document, NSString* format, WRArguments* arguments) {
    auto* paths = NSMutableArray::array();
    paths->addObject(document->path());
    for (NSString* option : {u"--style-sheet"_ns, u"--save-as"_ns, u"--pdf"_ns})
        if (NSString* path = arguments->valueOfOption(option); path && !option->hasSuffix(format))
            paths->addObject(path);
    return paths;
}

}  // namespace

NSDictionary* pageWishes(WRArguments* arguments) {
    auto* wishes = NSMutableDictionary::dictionary();
    const auto set = [wishes](NSString* key, id value) {
        if (value) wishes->setObject_forKey(value, key);
    };
    const auto setNumber = [&](NSString* key, NSString* option) {
        if (arguments->hasOption(option))
            set(key, NSNumber::numberWithUnsignedInt(arguments->numberOfOption(option)));
    };
    set(WRStyleSheetKey, arguments->valueOfOption(u"--style-sheet"_ns));
    set(WRPaperKey, arguments->valueOfOption(u"--paper"_ns));
    setNumber(WRMarginKey, u"--margin"_ns);
    setNumber(WRResolutionKey, u"--resolution"_ns);
    return wishes;
}

NSDictionary* pageOptions(WRDocument* document, NSDictionary* wishes) {
    auto* options = NSMutableDictionary::dictionaryWithDictionary(wishes);
    options->setObject_forKey(document->name(), WRTitleKey);
    if (document->richText()) options->setObject_forKey(document->richText(), WRRichTextKey);
    if (document->settings()) options->setObject_forKey(document->settings(), WRDocumentSettingsKey);
    return options;
}

NSDictionary* pageOptionsWithLanguages(WRDocument* document, NSDictionary* wishes, PBProfileSet* profiles) {
    auto* options = NSMutableDictionary::dictionaryWithDictionary(pageOptions(document, wishes));
    options->setObject_forKey(textWithLanguages(document, profiles).get(), WRRichTextKey);
    return options;
}

namespace {

NSDictionary* optionsFor(WRDocument* document, NSString* format, WRArguments* arguments,
                         PBProfileSet* profiles) {
    auto* options = NSMutableDictionary::dictionaryWithDictionary(
        pageOptionsWithLanguages(document, pageWishes(arguments), profiles));
    options->setObject_forKey(keptPaths(document, format, arguments), WRKeptPathsKey);
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
                                     format, path, optionsFor(document, format, arguments, profiles));
    NSString* problem = problemOfAnswer(answer, WRPageCountKey, setter);
    if (!problem) reportPages(report, setter, answer);
    return problem;
}

}  // namespace pelvor
