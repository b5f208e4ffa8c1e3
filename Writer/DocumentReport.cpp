// SPDX-License-Identifier: Apache-2.0
#include "Writer/DocumentReport.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSDictionary.h"
#include "Foundation/NSNumber.h"
#include "NSString-PelvorAdditions.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/ProfileChoice.h"
#include "Writer/TextMeasure.h"
#include "Writer/WRDocumentOpener.h"
#include "Writer/WRDocumentSaver.h"
#include "Writer/WRReport.h"

namespace pelvor {
namespace {

constexpr NSUInteger kLineLength = 72;

NSNumber* number(unsigned long long value) { return NSNumber::numberWithUnsignedLongLong(value); }

// "Plain text, of 2, because it is for "txt" documents".
NSString* reasonForReader(WRDocument* document, WRDocumentOpener* opener) {
    PBProfile* reader = document->reader();
    NSArray* candidates = opener->candidates();
    NSString* name = nameOfProfile(reader);
    if (candidates->indexOfObjectIdenticalTo(reader) > 0)
        return localizedFormat(u"_%@, the first of %u that did not refuse"_ns, name, candidates->count());
    if (isNamedForDocument(reader, document->path()))
        return localizedFormat(u"_%@, of %u, because it is for \"%@\" documents"_ns, name,
                               candidates->count(), document->path()->pathExtension());
    return localizedFormat(u"_%@, of %u, because it takes every document"_ns, name, candidates->count());
}

// "{4, 3} bar".
NSString* textOfRange(NSString* text, NSRange range) {
    NSString* excerpt = excerptOfText(text->substringWithRange(range), kLineLength);
    return NSString::stringWithFormat(u"{%u, %u} %@"_ns, range.location, range.length, excerpt);
}

// Only quantities have digits.
bool isQuantity(NSString* text, NSRange range) {
    constexpr NSStringCompareOptions kLiteral = NSLiteralSearch;
    return text->rangeOfCharacterFromSet_options_range(_pbDecimalDigitCharacterSet, kLiteral, range)
               .location != NSNotFound;
}

// What the user should know about the way in which the document was read.
void reportDoubts(WRReport* report, WRDocument* document) {
    if (NSString* message = document->message())
        for (id line : message->componentsSeparatedByString(u"\n"_ns))
            report->addLine(static_cast<NSString*>(line));
    if (!document->encodingName() && !document->richText())
        report->addLine(localized(u"_Where a document is text, \"--encoding\" reads it as text."_ns));
    if (NSString* mark = document->contradictingMark())
        report->addLine(
            localizedFormat(u"_The byte-order mark of the file is that of the encoding \"%@\"."_ns, mark));
    if (document->confidence() == 100) return;
    report->addLine(
        localizedFormat(u"_The encoding is a guess, sure to %u %%. \"--encoding\" names another one."_ns,
                        static_cast<NSUInteger>(document->confidence())));
    if (document->otherEncodings()->count())
        report->addLabel_value(localized(u"_Others that fit"_ns),
                               document->otherEncodings()->componentsJoinedByString(u", "_ns));
}

}  // namespace

void reportDocument(WRReport* report, WRDocument* document, WRDocumentOpener* opener) {
    report->addHeading(localizedFormat(u"_Document \"%@\""_ns, document->path()->lastPathComponent()));
    auto add = [report](NSString* label, id value) { report->addLabel_value(localized(label), value); };
    add(u"_Path"_ns, document->path());
    add(u"_Reader"_ns, reasonForReader(document, opener));
    if (NSString* encoding = document->encodingName())
        add(u"_Encoding"_ns, document->hasByteOrderMark()
                                 ? localizedFormat(u"_%@ with a byte-order mark"_ns, encoding)
                                 : encoding);
    reportDoubts(report, document);
    add(u"_Bytes"_ns, number(document->byteCount()));
    add(u"_UTF-16 units"_ns, number(document->text()->length()));
    add(u"_First line"_ns, firstLineOfText(document->text(), kLineLength));
}

void reportCount(WRReport* report, const TextCount& count) {
    report->addHeading(localized(u"_Counted"_ns));
    auto add = [report](NSString* label, id value) { report->addLabel_value(localized(label), value); };
    add(u"_Words"_ns, number(count.words));
    add(u"_Paragraphs"_ns, number(count.paragraphs));
    if (count.longestLength)
        add(u"_Longest paragraph"_ns,
            localizedFormat(u"_number %u, of %u units"_ns, count.longestParagraph + 1, count.longestLength));
    add(u"_Code points"_ns, number(count.codePoints));
}

void reportCaret(WRReport* report, WRDocument* document, NSUInteger position) {
    NSString* text = document->text();
    report->addHeading(localizedFormat(u"_At %u"_ns, position));
    auto add = [&](NSString* label, NSRange range) {
        report->addLabel_value(localized(label), textOfRange(text, range));
    };
    const NSRange word = wordRangeForRange_includePreviousWord(text, {position, 0}, false);
    add(isQuantity(text, word) ? u"_Quantity"_ns : u"_Word"_ns, word);
    add(u"_With the word before"_ns, wordRangeForRange_includePreviousWord(text, {position, 0}, true));
    add(u"_Paragraph"_ns, paragraphRangeForRange(text, {position, 0}));
    add(u"_Paragraph without its end"_ns, paragraphContentRangeForRange(text, {position, 0}));
}

void reportWriting(WRReport* report, WRDocument* document, NSString* path, WRDocumentSaver* saver,
                   NSDictionary* answer) {
    report->addHeading(localized(u"_Written"_ns));
    report->addLabel_value(localized(u"_Path"_ns), path);
    report->addLabel_value(localized(u"_Writer"_ns), nameOfProfile(saver->writer()));
    if (id encoding = answer->objectForKey(WREncodingKey))
        report->addLabel_value(localized(u"_Encoding"_ns), encoding);
    report->addLabel_value(localized(u"_Bytes"_ns), answer->objectForKey(WRByteCountKey));
    if (saver->dropsFormats(document))
        report->addLine(localized(u"_Only the text was written; the document has formats besides."_ns));
    if (auto* message = cast<NSString>(answer->objectForKey(WRMessageKey))) report->addLine(message);
}

}  // namespace pelvor
