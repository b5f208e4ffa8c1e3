// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRDocument.h"

#include "Foundation/NSArray.h"
#include "Foundation/NSMutableAttributedString.h"
#include "Foundation/NSMutableDictionary.h"
#include "Foundation/NSMutableString.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSNumber.h"
#include "NSMutableString-PelvorAdditions.h"
#include "PBProfile.h"
#include "Runtime/NSException.h"
#include "Writer/FormattedWords.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/TextMeasure.h"
#include "Writer/WriterLibrary.h"

namespace pelvor {
namespace {

// The entry as a number; null where it is anything else.
NSNumber* numberOf(NSDictionary* answer, NSString* key) { return cast<NSNumber>(answer->objectForKey(key)); }

bool isSet(NSDictionary* answer, NSString* key) {
    NSNumber* number = numberOf(answer, key);
    return number && number->boolValue();
}

}  // namespace

PELVOR_DEFINE_CLASS(WRDocument, writerLibrary) {
    methods.creator<"initWithPath:reader:answer:", &WRDocument::initWithPath_reader_answer>();
    methods.creator<"initWithName:", &WRDocument::initWithName>();
    methods.instance<"path", &WRDocument::path>();
    methods.instance<"hasFile", &WRDocument::hasFile>();
    methods.instance<"name", &WRDocument::name>();
    methods.instance<"setName:", &WRDocument::setName>();
    methods.instance<"hasChanged", &WRDocument::hasChanged>();
    methods.instance<"wasWrittenToPath:reader:encoding:", &WRDocument::wasWrittenToPath_reader_encoding>();
    methods.instance<"takeReading:", &WRDocument::takeReading>();
    methods.instance<"text", &WRDocument::text>();
    methods.instance<"richText", &WRDocument::richText>();
    methods.instance<"hasFormats", &WRDocument::hasFormats>();
    methods.instance<"setHasFormats:", &WRDocument::setHasFormats>();
    methods.instance<"settings", &WRDocument::settings>();
    methods.instance<"setSettings:", &WRDocument::setSettings>();
    methods.instance<"answer", &WRDocument::answer>();
    methods
        .instance<"replaceCharactersInRange:withString:", &WRDocument::replaceCharactersInRange_withString>();
    methods.instance<"replaceAllOccurrencesOfString:withString:",
                     &WRDocument::replaceAllOccurrencesOfString_withString>();
    methods.instance<"setText:", &WRDocument::setText>();
    methods.instance<"adoptText:", &WRDocument::adoptText>();
    methods.instance<"textDidChange", &WRDocument::textDidChange>();
    methods.instance<"reader", &WRDocument::reader>();
    methods.instance<"encodingName", &WRDocument::encodingName>();
    methods.instance<"hasByteOrderMark", &WRDocument::hasByteOrderMark>();
    methods.instance<"isLossy", &WRDocument::isLossy>();
    methods.instance<"confidence", &WRDocument::confidence>();
    methods.instance<"otherEncodings", &WRDocument::otherEncodings>();
    methods.instance<"contradictingMark", &WRDocument::contradictingMark>();
    methods.instance<"message", &WRDocument::message>();
    methods.instance<"fidelity", &WRDocument::fidelity>();
    methods.instance<"byteCount", &WRDocument::byteCount>();
    methods.instance<"paragraphCount", &WRDocument::paragraphCount>();
    methods.instance<"paragraphAtIndex:", &WRDocument::paragraphAtIndex>();
    methods.instance<"rangeOfParagraphAtIndex:", &WRDocument::rangeOfParagraphAtIndex>();
}

WRDocument::~WRDocument() = default;

Retained<WRDocument> WRDocument::initWithPath_reader_answer(NSString* path, PBProfile* reader,
                                                            NSDictionary* answer, Class* cls) {
    auto* text = cast<NSString>(answer->objectForKey(WRTextKey));
    if (!text) return nullptr;
    auto self = make<WRDocument>(cls);
    self->_path = path->copy();
    self->_name.set(u""_ns);
    if (auto* rich = cast<NSAttributedString>(answer->objectForKey(WRRichTextKey))) {
        self->_attributedText = rich->mutableCopy();
        self->_hasFormats = true;
        if (!text->isEqualToString(rich->string())) return nullptr;
    }
    self->_text = text->copy();
    self->_reader.set(reader);
    auto* rest = NSMutableDictionary::dictionaryWithDictionary(answer);
    rest->removeObjectForKey(WRTextKey);
    rest->removeObjectForKey(WRRichTextKey);
    self->_answer.set(rest);
    self->_settings.set(cast<NSDictionary>(rest->objectForKey(WRDocumentSettingsKey)));
    return self;
}

Retained<WRDocument> WRDocument::initWithName(NSString* name, Class* cls) {
    auto self = make<WRDocument>(cls);
    self->_path.set(u""_ns);
    self->_name = name->copy();
    self->_text.set(u""_ns);
    self->_answer.set(NSDictionary::dictionary());
    return self;
}

NSString* WRDocument::name() { return hasFile() ? _path->lastPathComponent() : _name.get(); }

void WRDocument::setName(NSString* name) { _name = name->copy(); }

// A mark stays where the encoding does.
void WRDocument::wasWrittenToPath_reader_encoding(NSString* path, PBProfile* reader, NSString* encodingName) {
    _path = path->copy();
    _reader.set(reader);
    _fileIdentity = FileIdentity::ofFile(_path);
    auto* answer = NSMutableDictionary::dictionary();
    answer->setObject_forKey(NSNumber::numberWithUnsignedLongLong(_fileIdentity.size), WRByteCountKey);
    if (encodingName) answer->setObject_forKey(encodingName, WREncodingKey);
    const bool isEncodingKept = encodingName && encodingName->isEqual(this->encodingName());
    answer->setObject_forKey(NSNumber::numberWithBool(isEncodingKept && hasByteOrderMark()),
                             WRByteOrderMarkKey);
    _answer.set(answer);
}

void WRDocument::takeReading(WRDocument* other) {
    _reader = other->_reader;
    _answer = other->_answer;
    _settings = other->_settings;
    _hasFormats = _hasFormats || other->_hasFormats;
    _fileIdentity = other->_fileIdentity;
}

NSString* WRDocument::encodingName() { return cast<NSString>(_answer->objectForKey(WREncodingKey)); }

bool WRDocument::hasByteOrderMark() { return isSet(_answer, WRByteOrderMarkKey); }

bool WRDocument::isLossy() { return isSet(_answer, WRLossyKey); }

int WRDocument::confidence() {
    NSNumber* confidence = numberOf(_answer, WRConfidenceKey);
    return confidence ? confidence->intValue() : 100;
}

NSArray* WRDocument::otherEncodings() {
    auto* names = cast<NSArray>(_answer->objectForKey(WROtherEncodingsKey));
    return names ? names : NSArray::array();
}

NSString* WRDocument::contradictingMark() {
    return cast<NSString>(_answer->objectForKey(WRContradictingMarkKey));
}

// That of the rich text in one piece, for whoever walks through it.
NSString* WRDocument::text() {
    if (!_text) _text.set(NSString::of(_attributedText->string()->toUTF16()));
    return _text;
}

NSAttributedString* WRDocument::richText() { return _hasFormats ? _attributedText.get() : nullptr; }

void WRDocument::setSettings(NSDictionary* settings) { _settings.set(settings); }

NSString* WRDocument::message() { return cast<NSString>(_answer->objectForKey(WRMessageKey)); }

NSString* WRDocument::fidelity() {
    auto* own = cast<NSString>(_answer->objectForKey(WRFidelityKey));
    return own || !_reader ? own : cast<NSString>(_reader->valueForKey(WRFidelityKey));
}

unsigned long long WRDocument::byteCount() {
    NSNumber* count = numberOf(_answer, WRByteCountKey);
    return count ? count->unsignedLongLongValue() : 0;
}

void WRDocument::replaceCharactersInRange_withString(NSRange range, NSString* string) {
    if (!_attributedText)
        return changeText(
            [&](NSMutableString* text) { text->replaceCharactersInRange_withString(range, string); });
    _attributedText->replaceCharactersInRange_withString(range, string);
    textDidChange();
}

void WRDocument::replaceAllOccurrencesOfString_withString(NSString* target, NSString* replacement) {
    if (!_attributedText)
        return changeText([&](NSMutableString* text) {
            pelvor::replaceAllOccurrencesOfString_withString(text, target, replacement);
        });
    NSString* searched = text();
    std::vector<NSRange> found;
    for (NSRange rest{0, searched->length()};;
         rest = {NSMaxRange(found.back()), NSMaxRange(rest) - NSMaxRange(found.back())}) {
        const NSRange range = searched->rangeOfString_options_range(target, NSLiteralSearch, rest);
        if (range.location == NSNotFound) break;
        found.push_back(range);
    }
    _attributedText->beginEditing();
    // From behind, so that what is before a place stays where it is.
    for (std::size_t i = found.size(); i-- > 0;)
        _attributedText->replaceCharactersInRange_withString(found[i], replacement);
    _attributedText->endEditing();
    textDidChange();
}

void WRDocument::setText(NSString* text) {
    if (_attributedText)
        replaceWords(_attributedText, text);
    else
        _text = text->copy();
    textDidChange();
}

// A text that is never changed is never copied.
void WRDocument::changeText(const std::function<void(NSMutableString*)>& change) {
    if (_attributedText) {
        auto copy = text()->mutableCopy();
        change(copy);
        return setText(copy);
    }
    auto text = Retained<NSMutableString>::retaining(cast<NSMutableString>(_text.get()));
    if (!text) text = _text->mutableCopy();
    change(text);
    _text = std::move(text);
    textDidChange();
}

void WRDocument::adoptText(NSMutableAttributedString* text) {
    _attributedText.set(text);
    _text = nullptr;
    _paragraphs.reset();
}

void WRDocument::textDidChange() {
    _hasChanged = true;
    if (_attributedText) _text = nullptr;
    _paragraphs.reset();
    NSNotificationCenter::defaultCenter()->postNotificationName_object(WRDocumentDidChangeNotification, this);
}

NSUInteger WRDocument::paragraphCount() { return static_cast<NSUInteger>(paragraphs().size()); }

NSString* WRDocument::paragraphAtIndex(NSUInteger index) {
    return text()->substringWithRange(rangeOfParagraphAtIndex(index));
}

NSRange WRDocument::rangeOfParagraphAtIndex(NSUInteger index) {
    if (index >= paragraphCount())
        raiseException(NSRangeException, u"paragraph (%u) beyond bounds (%u)"_ns, index, paragraphCount());
    return paragraphs()[index];
}

const std::vector<NSRange>& WRDocument::paragraphs() {
    if (_paragraphs) return *_paragraphs;
    _paragraphs.emplace();
    for (TextParagraph paragraph; nextParagraph(text(), paragraph);)
        _paragraphs->push_back({paragraph.start, paragraph.contentsEnd - paragraph.start});
    return *_paragraphs;
}

}  // namespace pelvor
