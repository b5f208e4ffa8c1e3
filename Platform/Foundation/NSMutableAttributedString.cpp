// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSMutableAttributedString.h"

#include "Foundation/AttributedStrings/NSAttributedText.h"
#include "Foundation/FoundationLibrary.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(NSMutableAttributedString, foundationLibrary) {
    methods.instance<"mutableString", &NSMutableAttributedString::mutableString>();
    methods.instance<"replaceCharactersInRange:withString:",
                     &NSMutableAttributedString::replaceCharactersInRange_withString>();
    methods.instance<"replaceCharactersInRange:withAttributedString:",
                     &NSMutableAttributedString::replaceCharactersInRange_withAttributedString>();
    methods.instance<"insertAttributedString:atIndex:",
                     &NSMutableAttributedString::insertAttributedString_atIndex>();
    methods.instance<"appendAttributedString:", &NSMutableAttributedString::appendAttributedString>();
    methods.instance<"deleteCharactersInRange:", &NSMutableAttributedString::deleteCharactersInRange>();
    methods.instance<"setAttributedString:", &NSMutableAttributedString::setAttributedString>();
    methods.instance<"setAttributes:range:", &NSMutableAttributedString::setAttributes_range>();
    methods.instance<"addAttribute:value:range:", &NSMutableAttributedString::addAttribute_value_range>();
    methods.instance<"addAttributes:range:", &NSMutableAttributedString::addAttributes_range>();
    methods.instance<"removeAttribute:range:", &NSMutableAttributedString::removeAttribute_range>();
    methods.instance<"beginEditing", &NSMutableAttributedString::beginEditing>();
    methods.instance<"endEditing", &NSMutableAttributedString::endEditing>();
}

NSMutableString* NSMutableAttributedString::mutableString() {
    return NSAttributedMutableString::create(this);
}

void NSMutableAttributedString::didEdit(unsigned, NSRange, NSInteger) {}

// MARK: The text

void NSMutableAttributedString::replace(NSRange range, NSString* string,
                                        Retained<NSAttributeDictionary> attributes, const char* operation) {
    NSUInteger length = this->length(), added = string->length();
    requireTextLength(std::uint64_t{length} - range.length + added, operation);
    if (range.length == 0 && added == 0) return;
    unsigned mask = attributes ? kEditedCharacters | kEditedAttributes : kEditedCharacters;
    RunTree& runs = _content->runs;
    StringUnits units(string);
    TextTree kept;
    if (units.data() == _content->text.contiguousUnits()) kept = _content->text;  // leaves these units alone
    _content->text.replace(range, units);
    if (!attributes && range.length > 0)
        attributes = Retained<NSAttributeDictionary>::retaining(runs.runAt(range.location).attributes);
    if (!attributes && length == 0) attributes = NSAttributeDictionary::with(nullptr);
    if (attributes) {
        AttributeStretch stretch{added, std::move(attributes)};
        runs.replace(range, {&stretch, 1});
    } else {
        runs.stretch(range.location > 0 ? range.location - 1 : 0, added);
    }
    didEdit(mask, range, static_cast<NSInteger>(added - range.length));
}

void NSMutableAttributedString::replace(NSRange range, NSAttributedString* other, const char* operation) {
    NSUInteger added = other->length();
    requireTextLength(std::uint64_t{length()} - range.length + added, operation);
    if (range.length == 0 && added == 0) return;
    TextTree text = other->_content->text;
    RunTree runs = other->_content->runs;
    _content->text.replace(range, text);
    _content->runs.replace(range, runs);
    didEdit(kEditedCharacters | kEditedAttributes, range, static_cast<NSInteger>(added - range.length));
}

void NSMutableAttributedString::replaceCharactersInRange_withString(NSRange range, NSString* string) {
    constexpr const char* kOperation = "replaceCharactersInRange:withString:";
    requireArgument(string, kOperation, "the string");
    requireRange(range, length(), kOperation);
    replace(range, string, nullptr, kOperation);
}

void NSMutableAttributedString::replaceCharactersInRange_withAttributedString(NSRange range,
                                                                              NSAttributedString* other) {
    constexpr const char* kOperation = "replaceCharactersInRange:withAttributedString:";
    requireArgument(other, kOperation, "the attributed string");
    requireRange(range, length(), kOperation);
    replace(range, other, kOperation);
}

void NSMutableAttributedString::replaceCharactersInRange_withString_attributes(NSRange range,
                                                                               NSString* string,
                                                                               NSDictionary* attributes) {
    constexpr const char* kOperation = "replaceCharactersInRange_withString_attributes";
    requireArgument(string, kOperation, "the string");
    requireRange(range, length(), kOperation);
    replace(range, string, NSAttributeDictionary::with(attributes), kOperation);
}

void NSMutableAttributedString::insertAttributedString_atIndex(NSAttributedString* other, NSUInteger index) {
    constexpr const char* kOperation = "insertAttributedString:atIndex:";
    requireArgument(other, kOperation, "the attributed string");
    requirePlace(index, length(), kOperation);
    replace({index, 0}, other, kOperation);
}

void NSMutableAttributedString::appendAttributedString(NSAttributedString* other) {
    requireArgument(other, "appendAttributedString:", "the attributed string");
    replace({length(), 0}, other, "appendAttributedString:");
}

void NSMutableAttributedString::deleteCharactersInRange(NSRange range) {
    requireRange(range, length(), "deleteCharactersInRange:");
    replace(range, u""_ns, nullptr, "deleteCharactersInRange:");
}

void NSMutableAttributedString::setAttributedString(NSAttributedString* other) {
    requireArgument(other, "setAttributedString:", "the attributed string");
    replace({0, length()}, other, "setAttributedString:");
}

// MARK: Attributes

void NSMutableAttributedString::changeAttributes(NSRange range, AttributeChange change, void* context,
                                                 const char* operation) {
    requireRange(range, length(), operation);
    AttributeMemo memo;
    AttributeStretches stretches;  // from the first run that changes
    std::size_t count = 0;         // of them up to the last that changes
    NSUInteger start = 0, end = 0;
    for (auto [stretch, attributes] : runsInRange(range)) {
        auto* old = static_cast<NSAttributeDictionary*>(attributes);
        const auto& made =
            memo.made(old, [&] { return NSAttributeDictionary::with(change(old, context).get()); });
        if (made == old && count == 0) continue;
        stretches.push_back({stretch.length, made});
        if (made == old) continue;
        if (count == 0) start = stretch.location;
        end = NSMaxRange(stretch);
        count = stretches.size();
    }
    if (count == 0) return;
    _content->runs.replace({start, end - start}, std::span(stretches).first(count));
    didEdit(kEditedAttributes, {start, end - start}, 0);
}

void NSMutableAttributedString::setAttributes_range(NSDictionary* attributes, NSRange range) {
    requireRange(range, length(), "setAttributes:range:");
    if (range.length == 0) return;
    AttributeStretch stretch{range.length, NSAttributeDictionary::with(attributes)};
    PlacedRun run = _content->runs.runAt(range.location);
    if (run.attributes == stretch.attributes && NSMaxRange(run.range) >= NSMaxRange(range)) return;
    _content->runs.replace(range, {&stretch, 1});
    didEdit(kEditedAttributes, range, 0);
}

namespace {

// A run's attributes with another value for the name; null removes the name.
struct ValueChange {
    NSString* name;
    id value;
    static Retained<NSDictionary> apply(NSDictionary* old, void* context) {
        auto* change = static_cast<ValueChange*>(context);
        return static_cast<NSAttributeDictionary*>(old)->withValue(change->name, change->value);
    }
};

}  // namespace

void NSMutableAttributedString::addAttribute_value_range(NSString* name, id value, NSRange range) {
    constexpr const char* kOperation = "addAttribute:value:range:";
    requireArgument(name, kOperation, "the name");
    requireArgument(value, kOperation, "the value");
    ValueChange change{name, value};
    changeAttributes(range, &ValueChange::apply, &change, kOperation);
}

void NSMutableAttributedString::addAttributes_range(NSDictionary* attributes, NSRange range) {
    changeAttributes(
        range,
        [](NSDictionary* old, void* added) -> Retained<NSDictionary> {
            return static_cast<NSAttributeDictionary*>(old)->withEntries(static_cast<NSDictionary*>(added));
        },
        attributes, "addAttributes:range:");
}

void NSMutableAttributedString::removeAttribute_range(NSString* name, NSRange range) {
    requireArgument(name, "removeAttribute:range:", "the name");
    ValueChange change{name, nullptr};
    changeAttributes(range, &ValueChange::apply, &change, "removeAttribute:range:");
}

}  // namespace pelvor
