// SPDX-License-Identifier: Apache-2.0
#include "Writer/DocumentCommands.h"

#include "Foundation/NSNumber.h"
#include "NSMutableString-PelvorAdditions.h"
#include "NSString-PelvorAdditions.h"
#include "Writer/DocumentReport.h"
#include "Writer/WRArguments.h"
#include "Writer/WRDocument.h"
#include "Writer/WRReport.h"

namespace pelvor {
namespace {

struct Occurrences {
    NSUInteger count = 0;
    NSUInteger first = NSNotFound;
};

// Those that replacing would replace.
Occurrences occurrencesOf(NSString* target, NSString* text) {
    Occurrences found;
    for (NSUInteger place = 0;;) {
        const NSRange range =
            text->rangeOfString_options_range(target, NSLiteralSearch, {place, text->length() - place});
        if (range.location == NSNotFound) return found;
        if (found.count++ == 0) found.first = range.location;
        place = NSMaxRange(range);
    }
}

void findAndReplace(WRDocument* document, NSString* target, NSString* replacement, WRReport* report) {
    const Occurrences found = occurrencesOf(target, document->text());
    NSString* label = localizedFormat(u"_Found \"%@\""_ns, target);
    if (found.count == 0) return report->addLabel_value(label, localized(u"_nowhere"_ns));
    report->addLabel_value(label, localizedFormat(u"_%u, first at %u"_ns, found.count, found.first));
    if (!replacement) return;
    document->replaceAllOccurrencesOfString_withString(target, replacement);
    report->addLabel_value(localizedFormat(u"_Replaced by \"%@\""_ns, replacement),
                           NSNumber::numberWithUnsignedInt(found.count));
}

NSString* withCase(NSString* text, NSString* name) {
    if (name->isEqualToString(u"upper"_ns)) return text->uppercaseString();
    if (name->isEqualToString(u"lower"_ns)) return text->lowercaseString();
    return name->isEqualToString(u"capitals"_ns) ? text->capitalizedString() : toggledcaseString(text);
}

NSString* lineEndingNamed(NSString* name) {
    if (name->isEqualToString(u"crlf"_ns)) return u"\r\n"_ns;
    return name->isEqualToString(u"cr"_ns) ? u"\r"_ns : u"\n"_ns;
}

}  // namespace

void changeDocument(WRDocument* document, WRArguments* arguments, WRReport* report) {
    NSString* target = arguments->valueOfOption(u"--find"_ns);
    NSString* caseName = arguments->valueOfOption(u"--case"_ns);
    const NSUInteger column = arguments->numberOfOption(u"--wrap"_ns);
    NSString* ending = arguments->valueOfOption(u"--line-endings"_ns);
    if (!target && !caseName && !column && !ending) return;
    report->addHeading(localized(u"_Changes"_ns));
    if (target) findAndReplace(document, target, arguments->valueOfOption(u"--replace"_ns), report);
    if (caseName) {
        document->setText(withCase(document->text(), caseName));
        report->addLabel_value(localized(u"_Case"_ns), caseName);
    }
    if (column) {
        document->setText(stringByHardWrappingToLineLength(document->text(), column));
        report->addLine(localizedFormat(u"_Lines wrapped at column %u"_ns, column));
    }
    if (ending) {
        document->changeText(
            [&](NSMutableString* text) { replaceAllLineEndingsWithString(text, lineEndingNamed(ending)); });
        report->addLabel_value(localized(u"_Line endings"_ns), ending);
    }
}

}  // namespace pelvor
