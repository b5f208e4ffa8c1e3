// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSAttributedString.h"

#include <unordered_map>

#include "Foundation/AttributedStrings/NSAttributedText.h"
#include "Foundation/FoundationLibrary.h"
#include "Foundation/NSCoder.h"
#include "Foundation/NSMutableArray.h"
#include "Runtime/NSException.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSAttributedString, foundationLibrary) {
    methods.creator<"init", &NSAttributedString::init>();
    methods.creator<"initWithString:", &NSAttributedString::initWithString>();
    methods.creator<"initWithString:attributes:", &NSAttributedString::initWithString_attributes>();
    methods.creator<"initWithAttributedString:", &NSAttributedString::initWithAttributedString>();
    methods.creator<"initWithCoder:", &NSAttributedString::initWithCoder>();
    methods.instance<"string", &NSAttributedString::string>();
    methods.instance<"length", &NSAttributedString::length>();
    methods.instance<"attributesAtIndex:effectiveRange:",
                     &NSAttributedString::attributesAtIndex_effectiveRange>();
    methods.instance<"attributesAtIndex:longestEffectiveRange:inRange:",
                     &NSAttributedString::attributesAtIndex_longestEffectiveRange_inRange>();
    methods.instance<"attribute:atIndex:effectiveRange:",
                     &NSAttributedString::attribute_atIndex_effectiveRange>();
    methods.instance<"attribute:atIndex:longestEffectiveRange:inRange:",
                     &NSAttributedString::attribute_atIndex_longestEffectiveRange_inRange>();
    methods.instance<"attributedSubstringFromRange:", &NSAttributedString::attributedSubstringFromRange>();
    methods.instance<"isEqualToAttributedString:", &NSAttributedString::isEqualToAttributedString>();
    methods.instance<"encodeWithCoder:", &NSAttributedString::encodeWithCoder>();
}

NSAttributedString::NSAttributedString() : _content(make<NSAttributedText>()) {}

NSAttributedString::~NSAttributedString() = default;

// MARK: Creation

Retained<NSAttributedString> NSAttributedString::init(Class* cls) { return make<NSAttributedString>(cls); }

Retained<NSAttributedString> NSAttributedString::initWithString(NSString* string, Class* cls) {
    requireArgument(string, "initWithString:", "the string");
    return initWithString_attributes(string, nullptr, cls);
}

Retained<NSAttributedString> NSAttributedString::initWithString_attributes(NSString* string,
                                                                           NSDictionary* attributes,
                                                                           Class* cls) {
    requireArgument(string, "initWithString:attributes:", "the string");
    auto made = make<NSAttributedString>(cls);
    made->_content->text = TextTree(string);
    AttributeStretch all{made->_content->text.length(), NSAttributeDictionary::with(attributes)};
    made->_content->runs = RunTree({&all, 1});
    return made;
}

Retained<NSAttributedString> NSAttributedString::initWithAttributedString(NSAttributedString* other,
                                                                          Class* cls) {
    requireArgument(other, "initWithAttributedString:", "the other");
    auto made = make<NSAttributedString>(cls);
    made->_content->text = other->_content->text;
    made->_content->runs = other->_content->runs;
    return made;
}

Retained<NSAttributedString> NSAttributedString::initWithString_runs(NSString* string,
                                                                     std::span<const AttributeRun> runs,
                                                                     Class* cls) {
    constexpr const char* kOperation = "initWithString_runs";
    requireArgument(string, kOperation, "the string");
    AttributeStretches stretches;
    stretches.reserve(runs.size());
    AttributeMemo memo;
    std::uint64_t end = 0;
    for (const AttributeRun& run : runs) {
        if (run.range.location != end) raiseBadArgument(kOperation, "the runs do not follow each other");
        const auto& made =
            memo.made(run.attributes, [&] { return NSAttributeDictionary::with(run.attributes); });
        stretches.push_back({run.range.length, made});
        end += run.range.length;
    }
    if (end != string->length()) raiseBadArgument(kOperation, "the runs have another length than the text");
    auto made = make<NSAttributedString>(cls);
    made->_content->text = TextTree(string);
    made->_content->runs = RunTree(stretches);
    return made;
}

// MARK: Text and attributes

NSString* NSAttributedString::string() { return _content; }

NSUInteger NSAttributedString::length() { return _content->text.length(); }

namespace {

PlacedRun runAt(NSAttributedText* content, NSUInteger index, NSRange* range, const char* operation) {
    requireIndex(index, content->text.length(), operation);
    PlacedRun run = content->runs.runAt(index);
    if (range) *range = run.range;
    return run;
}

bool areEqual(id first, id second) { return first == second || (first && second && first->isEqual(second)); }

NSRange clipped(NSUInteger start, NSUInteger end, NSRange limit) {
    start = std::max(start, limit.location);
    end = std::min(end, NSMaxRange(limit));
    return start < end ? NSRange{start, end - start} : NSRange{start, 0};
}

}  // namespace

NSDictionary* NSAttributedString::attributesAtIndex_effectiveRange(NSUInteger index,
                                                                   NSRange* effectiveRange) {
    return runAt(_content, index, effectiveRange, "attributesAtIndex:effectiveRange:").attributes;
}

NSDictionary* NSAttributedString::attributesAtIndex_longestEffectiveRange_inRange(NSUInteger index,
                                                                                  NSRange* longestRange,
                                                                                  NSRange limit) {
    constexpr const char* kOperation = "attributesAtIndex:longestEffectiveRange:inRange:";
    requireRange(limit, length(), kOperation);
    PlacedRun run = runAt(_content, index, nullptr, kOperation);
    if (longestRange) *longestRange = clipped(run.range.location, NSMaxRange(run.range), limit);
    return run.attributes;
}

id NSAttributedString::attribute_atIndex_effectiveRange(NSString* name, NSUInteger index,
                                                        NSRange* effectiveRange) {
    requireArgument(name, "attribute:atIndex:effectiveRange:", "the name");
    return runAt(_content, index, effectiveRange, "attribute:atIndex:effectiveRange:")
        .attributes->objectForKey(name);
}

id NSAttributedString::attribute_atIndex_longestEffectiveRange_inRange(NSString* name, NSUInteger index,
                                                                       NSRange* longestRange, NSRange limit) {
    constexpr const char* kOperation = "attribute:atIndex:longestEffectiveRange:inRange:";
    requireArgument(name, kOperation, "the name");
    requireRange(limit, length(), kOperation);
    NSRange run;
    id value = runAt(_content, index, &run, kOperation).attributes->objectForKey(name);
    if (!longestRange) return value;
    NSUInteger start = run.location, end = NSMaxRange(run);
    RunTree& runs = _content->runs;
    while (start > limit.location) {
        PlacedRun before = runs.runAt(start - 1);
        if (!areEqual(before.attributes->objectForKey(name), value)) break;
        start = before.range.location;
    }
    while (end < NSMaxRange(limit)) {
        PlacedRun behind = runs.runAt(end);
        if (!areEqual(behind.attributes->objectForKey(name), value)) break;
        end = NSMaxRange(behind.range);
    }
    *longestRange = clipped(start, end, limit);
    return value;
}

AttributeRuns NSAttributedString::runsInRange(NSRange range) {
    requireRange(range, length(), "runsInRange");
    return {_content, range};
}

AttributeRuns NSAttributedString::runs() { return {_content, {0, length()}}; }

AttributeRun AttributeRuns::takeRun(NSAttributedText* content, NSRange& rest) {
    PlacedRun run = content->runs.runAt(rest.location);
    NSUInteger end = std::min(NSMaxRange(run.range), NSMaxRange(rest));
    NSRange range{rest.location, end - rest.location};
    rest = {end, rest.length - range.length};
    return {range, run.attributes};
}

// MARK: As an object

NSAttributedString* NSAttributedString::attributedSubstringFromRange(NSRange range) {
    requireRange(range, length(), "attributedSubstringFromRange:");
    auto part = make<NSAttributedString>();
    part->_content->text = _content->text.slice(range);
    part->_content->runs = _content->runs.slice(range);
    return std::move(part).autorelease();
}

bool NSAttributedString::isEqualToAttributedString(NSAttributedString* other) {
    if (this == other) return true;
    if (!other || !_content->text.isEqual(other->_content->text)) return false;
    if (_content->runs.hasSameNodesAs(other->_content->runs)) return true;
    auto otherRun = other->runs().begin();
    for (AttributeRun run : runs()) {
        if (run.range != (*otherRun).range || !areEqual(run.attributes, (*otherRun).attributes)) return false;
        ++otherRun;
    }
    return true;
}

bool NSAttributedString::isEqual(id other) {
    auto* attributed = cast<NSAttributedString>(other);
    return attributed && isEqualToAttributedString(attributed);
}

std::uintptr_t NSAttributedString::hash() { return string()->hash(); }

NSString* NSAttributedString::description() {
    NSMutableString* text = NSMutableString::string();
    for (auto [range, attributes] : runs()) {
        text->appendString(string()->substringWithRange(range));
        text->appendString(u"{\n"_ns);
        for (auto [name, value] : attributes) text->appendFormat(u"    %@ = %@;\n"_ns, name, value);
        text->appendString(u"}"_ns);
    }
    return text;
}

Retained<NSAttributedString> NSAttributedString::copy() {
    return cast<NSAttributedString>(copyWithZone(nullptr));
}

Retained<NSMutableAttributedString> NSAttributedString::mutableCopy() {
    return cast<NSMutableAttributedString>(mutableCopyWithZone(nullptr));
}

Retained<Object> NSAttributedString::copyWithZone(void*) {
    return cast<NSMutableAttributedString>(this) ? Retained<Object>(initWithAttributedString(this))
                                                 : Retained<Object>::retaining(this);
}

Retained<Object> NSAttributedString::mutableCopyWithZone(void*) {
    return NSMutableAttributedString::initWithAttributedString(this);
}

// MARK: Coding: the text, the different dictionaries, and for each run two numbers of four bytes, the lower
// byte first: its length and the number of its dictionary

namespace {

void appendNumber(std::vector<std::uint8_t>& bytes, NSUInteger number) {
    for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<std::uint8_t>(number >> 8 * i));
}

NSUInteger numberAt(const std::uint8_t* bytes) {
    return bytes[0] | NSUInteger{bytes[1]} << 8 | NSUInteger{bytes[2]} << 16 | NSUInteger{bytes[3]} << 24;
}

[[noreturn]] void raiseBadArchive(const char* fault) {
    throw NSException(NSInvalidArgumentException, std::string("initWithCoder: ") + fault);
}

// The dictionary that a run of an archive names.
NSDictionary* dictionaryAt(NSArray* dictionaries, NSUInteger index) {
    if (index >= dictionaries->count()) raiseBadArchive("a run has no attributes in the archive");
    auto* dictionary = cast<NSDictionary>(dictionaries->objectAtIndex(index));
    if (!dictionary) raiseBadArchive("the attributes are no dictionary");
    for (auto [name, value] : dictionary)
        if (!cast<NSString>(name)) raiseBadArchive("an attribute's name is no string");
    return dictionary;
}

}  // namespace

void NSAttributedString::encodeWithCoder(NSCoder* coder) {
    requireArgument(coder, "encodeWithCoder:", "the coder");
    auto dictionaries = NSMutableArray::init();
    std::unordered_map<NSDictionary*, NSUInteger> indexes;
    std::vector<std::uint8_t> bytes;
    for (auto [range, attributes] : runs()) {
        auto [place, isNew] = indexes.try_emplace(attributes, dictionaries->count());
        if (isNew) dictionaries->addObject(attributes);
        appendNumber(bytes, range.length);
        appendNumber(bytes, place->second);
    }
    coder->encodeObject_forKey(string()->copy().get(), u"string"_ns);
    coder->encodeObject_forKey(dictionaries, u"attributes"_ns);
    coder->encodeBytes_length_forKey(bytes.data(), static_cast<NSUInteger>(bytes.size()), u"runs"_ns);
}

Retained<NSAttributedString> NSAttributedString::initWithCoder(NSCoder* coder, Class* cls) {
    requireArgument(coder, "initWithCoder:", "the coder");
    auto* string = cast<NSString>(coder->decodeObjectForKey(u"string"_ns));
    auto* dictionaries = cast<NSArray>(coder->decodeObjectForKey(u"attributes"_ns));
    if (!string || !dictionaries) raiseBadArchive("the archive holds no text with attributes");
    NSUInteger size = 0;
    auto* bytes =
        static_cast<const std::uint8_t*>(coder->decodeBytesForKey_returnedLength(u"runs"_ns, &size));
    std::vector<AttributeRun> runs;
    std::uint64_t length = 0;
    for (NSUInteger i = 0; bytes && i + 8 <= size; i += 8) {
        NSRange range{static_cast<NSUInteger>(length), numberAt(bytes + i)};
        runs.push_back({range, dictionaryAt(dictionaries, numberAt(bytes + i + 4))});
        length += range.length;
    }
    if (length != string->length()) raiseBadArchive("the runs have another length than the text");
    return initWithString_runs(string, runs, cls);
}

}  // namespace pelvor
