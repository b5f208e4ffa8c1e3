// SPDX-License-Identifier: Apache-2.0
#include "Text/NSTextStorage.h"

#include <algorithm>
#include <exception>

#include "Foundation/NSArray.h"
#include "Foundation/NSCoder.h"
#include "Foundation/NSNotificationCenter.h"
#include "Foundation/NSString.h"
#include "Runtime/Message.h"
#include "Shared/ArgumentChecks.h"
#include "Text/TextAttributes.h"
#include "Text/TextLibrary.h"

namespace pelvor {

constinit NSString* const NSTextStorageWillProcessEditingNotification =
    u"NSTextStorageWillProcessEditingNotification"_ns;
constinit NSString* const NSTextStorageDidProcessEditingNotification =
    u"NSTextStorageDidProcessEditingNotification"_ns;

PELVOR_DEFINE_CLASS(NSTextStorage, textLibrary) {
    methods.creator<"initWithString:attributes:", &NSTextStorage::initWithString_attributes>();
    methods.creator<"initWithAttributedString:", &NSTextStorage::initWithAttributedString>();
    methods.creator<"initWithCoder:", &NSTextStorage::initWithCoder>();
    methods.instance<"addLayoutManager:", &NSTextStorage::addLayoutManager>();
    methods.instance<"removeLayoutManager:", &NSTextStorage::removeLayoutManager>();
    methods.instance<"layoutManagers", &NSTextStorage::layoutManagers>();
    methods.instance<"edited:range:changeInLength:", &NSTextStorage::edited_range_changeInLength>();
    methods.instance<"editedMask", &NSTextStorage::editedMask>();
    methods.instance<"editedRange", &NSTextStorage::editedRange>();
    methods.instance<"changeInLength", &NSTextStorage::changeInLength>();
    methods.instance<"fixAttributesInRange:", &NSTextStorage::fixAttributesInRange>();
    methods
        .instance<"fixParagraphStyleAttributeInRange:", &NSTextStorage::fixParagraphStyleAttributeInRange>();
    methods.instance<"fixAttachmentAttributeInRange:", &NSTextStorage::fixAttachmentAttributeInRange>();
}

// MARK: Creation

Retained<NSTextStorage> NSTextStorage::fixed(Retained<NSAttributedString> made) {
    auto storage = cast<NSTextStorage>(std::move(made));
    storage->_isProcessing = true;
    storage->fixAttributesInRange({0, storage->length()});
    storage->_isProcessing = false;
    storage->_edit = {};
    return storage;
}

Retained<NSTextStorage> NSTextStorage::initWithString_attributes(NSString* string, NSDictionary* attributes,
                                                                 Class* cls) {
    return fixed(NSAttributedString::initWithString_attributes(string, attributes, cls));
}

Retained<NSTextStorage> NSTextStorage::initWithString_runs(NSString* string,
                                                           std::span<const AttributeRun> runs, Class* cls) {
    return fixed(NSAttributedString::initWithString_runs(string, runs, cls));
}

Retained<NSTextStorage> NSTextStorage::initWithAttributedString(NSAttributedString* other, Class* cls) {
    return fixed(NSAttributedString::initWithAttributedString(other, cls));
}

Retained<NSTextStorage> NSTextStorage::initWithCoder(NSCoder* coder, Class* cls) {
    return fixed(NSAttributedString::initWithCoder(coder, cls));
}

NSTextStorage::~NSTextStorage() {
    for (Listening& listening : _listening)
        send<void>(listening.layoutManager.get(), "setTextStorage:"_sel, static_cast<id>(nullptr));
}

// MARK: Layout managers

void NSTextStorage::addLayoutManager(id layoutManager) {
    requireArgument(layoutManager, "addLayoutManager:", "the layout manager");
    if (!layoutManager->respondsToSelector("setTextStorage:"_sel) ||
        !layoutManager->respondsToSelector("textStorage:edited:range:changeInLength:invalidatedRange:"_sel))
        raiseBadArgument("addLayoutManager:", "the object does not take the messages of a layout manager");
    for (Listening& listening : _listening)
        if (listening.layoutManager == layoutManager) return;
    _listening.push_back({Retained<Object>::retaining(layoutManager), {}});
    send<void>(layoutManager, "setTextStorage:"_sel, static_cast<id>(this));
}

void NSTextStorage::removeLayoutManager(id layoutManager) {
    auto place = std::find_if(_listening.begin(), _listening.end(), [&](const Listening& listening) {
        return listening.layoutManager == layoutManager;
    });
    if (place == _listening.end()) return;
    Retained<Object> removed = std::move(place->layoutManager);
    _listening.erase(place);
    send<void>(removed.get(), "setTextStorage:"_sel, static_cast<id>(nullptr));
}

NSArray* NSTextStorage::layoutManagers() {
    std::vector<Object*> layoutManagers;
    for (Listening& listening : _listening) layoutManagers.push_back(listening.layoutManager);
    return NSArray::arrayWithObjects_count(layoutManagers.data(),
                                           static_cast<NSUInteger>(layoutManagers.size()));
}

// MARK: Editing

namespace {

NSRange joined(NSRange before, NSRange edited, NSInteger added) {
    NSRange both = before.location == NSNotFound ? edited : NSUnionRange(before, edited);
    both.length += static_cast<NSUInteger>(added);
    return both;
}

}  // namespace

void NSTextStorage::Edit::add(unsigned addedMask, NSRange edited, NSInteger added) {
    mask |= addedMask;
    range = joined(range, edited, added);
    change += added;
    invalidated = joined(invalidated, edited, added);
}

// Where an edit is known, its mask and range stay what was edited.
void NSTextStorage::Edit::addFixed(NSRange fixed) {
    if (!mask) return add(NSTextStorageEditedAttributes, fixed, 0);
    invalidated = joined(invalidated, fixed, 0);
}

void NSTextStorage::beginEditing() { ++_brackets; }

void NSTextStorage::endEditing() {
    if (_brackets > 0 && --_brackets == 0) processEditing();
}

void NSTextStorage::didEdit(unsigned mask, NSRange range, NSInteger change) {
    if (_isFixing) {
        for (Listening& listening : _listening) listening.untold.addFixed(range);
        return;
    }
    _edit.add(mask, range, change);
    for (Listening& listening : _listening) listening.untold.add(mask, range, change);
    if (_brackets == 0) processEditing();
}

void NSTextStorage::edited_range_changeInLength(unsigned mask, NSRange range, NSInteger change) {
    constexpr const char* kOperation = "edited:range:changeInLength:";
    requireRange(range, length() - static_cast<NSUInteger>(change), kOperation);
    if (mask) didEdit(mask, range, change);
}

namespace {

// Does the work; keeps the first exception for later.
template <class Work>
void guarded(std::exception_ptr& failure, Work work) {
    try {
        work();
    } catch (...) {
        if (!failure) failure = std::current_exception();
    }
}

}  // namespace

// Edits that come while this runs are processed by it, unless they are in brackets that stay open.
void NSTextStorage::processEditing() {
    if (_isProcessing) return;
    auto kept = Retained<NSTextStorage>::retaining(this);
    NSNotificationCenter* center = NSNotificationCenter::defaultCenter();
    std::exception_ptr failure;
    _isProcessing = true;
    while (_edit.mask) {
        guarded(failure, [&] {
            center->postNotificationName_object(NSTextStorageWillProcessEditingNotification, this);
        });
        guarded(failure, [&] { fixEdited(); });
        guarded(failure, [&] {
            center->postNotificationName_object(NSTextStorageDidProcessEditingNotification, this);
        });
        guarded(failure, [&] { fixEdited(); });
        _edit = {};
        for (Listening& listening : _listening) listening.isTold = false;
        for (bool isMore = true; isMore;) guarded(failure, [&] { isMore = tellNext(); });
    }
    _isProcessing = false;
    if (failure) std::rethrow_exception(failure);
}

bool NSTextStorage::hasUntoldChangesFor(id layoutManager) const {
    return std::any_of(_listening.begin(), _listening.end(), [&](const Listening& listening) {
        return listening.layoutManager == layoutManager &&
               listening.untold.mask & NSTextStorageEditedCharacters;
    });
}

// Tells the first layout manager that was not told in this round; returns whether there was one.
bool NSTextStorage::tellNext() {
    auto place = std::find_if(_listening.begin(), _listening.end(), [](const Listening& listening) {
        return listening.untold.mask && !listening.isTold;
    });
    if (place == _listening.end()) return false;
    place->isTold = true;
    Retained<Object> layoutManager = place->layoutManager;
    Edit edit = std::exchange(place->untold, {});
    send<void>(layoutManager.get(), "textStorage:edited:range:changeInLength:invalidatedRange:"_sel,
               static_cast<id>(this), edit.mask, edit.range, edit.change, edit.invalidated);
    return true;
}

// MARK: Fixing attributes

void NSTextStorage::fixEdited() {
    _isFixing = true;
    std::exception_ptr failure;
    guarded(failure, [&] { fixAttributesInRange(_edit.range); });
    _isFixing = false;
    if (failure) std::rethrow_exception(failure);
}

void NSTextStorage::fixAttributesInRange(NSRange range) {
    fixAttachmentAttributeInRange(range);
    fixParagraphStyleAttributeInRange(range);
}

namespace {

bool isParagraphBreak(unichar unit) {
    return (unit >= u'\n' && unit <= u'\r' && unit != u'\v') || unit == 0x85 || unit == 0x2029;
}

bool isParagraphEnd(NSString* text, NSUInteger place) {
    if (place == 0 || place >= text->length()) return true;
    unichar before = text->characterAtIndex(place - 1);
    return isParagraphBreak(before) && !(before == u'\r' && text->characterAtIndex(place) == u'\n');
}

}  // namespace

// Each paragraph had one style before the edit, and so have the parts of paragraphs before and behind it.
bool NSTextStorage::isOneParagraphStyleAround(NSRange range) {
    NSUInteger start = range.location, end = NSMaxRange(range);
    if (!isParagraphEnd(string(), start)) --start;
    if (!isParagraphEnd(string(), end)) ++end;
    if (start == end) return true;
    NSRange same;
    attribute_atIndex_longestEffectiveRange_inRange(NSParagraphStyleAttributeName, start, &same,
                                                    {start, end - start});
    return same.length == end - start;
}

void NSTextStorage::fixParagraphStyleAttributeInRange(NSRange range) {
    requireRange(range, length(), "fixParagraphStyleAttributeInRange:");
    if (isOneParagraphStyleAround(range)) return;
    NSUInteger start = range.location, last = std::max(NSMaxRange(range), range.location + 1);
    while (!isParagraphEnd(string(), start)) --start;
    for (NSUInteger end = start; end < last && end < length(); start = end) {
        do ++end;
        while (!isParagraphEnd(string(), end));
        NSRange same;
        auto style = Retained<Object>::retaining(attribute_atIndex_longestEffectiveRange_inRange(
            NSParagraphStyleAttributeName, start, &same, {start, end - start}));
        NSRange rest{NSMaxRange(same), end - NSMaxRange(same)};
        if (rest.length == 0) continue;
        if (style)
            addAttribute_value_range(NSParagraphStyleAttributeName, style, rest);
        else
            removeAttribute_range(NSParagraphStyleAttributeName, rest);
    }
}

void NSTextStorage::fixAttachmentAttributeInRange(NSRange range) {
    requireRange(range, length(), "fixAttachmentAttributeInRange:");
    std::vector<NSRange> wrong;
    for (AttributeRun run : runsInRange(range)) {
        if (!run.attributes->objectForKey(NSAttachmentAttributeName)) continue;
        for (NSUInteger i = run.range.location; i < NSMaxRange(run.range); ++i) {
            if (string()->characterAtIndex(i) == NSAttachmentCharacter) continue;
            if (!wrong.empty() && NSMaxRange(wrong.back()) == i)
                ++wrong.back().length;
            else
                wrong.push_back({i, 1});
        }
    }
    for (NSRange each : wrong) removeAttribute_range(NSAttachmentAttributeName, each);
}

}  // namespace pelvor
