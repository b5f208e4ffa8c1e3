// SPDX-License-Identifier: Apache-2.0
// Tests of what a word processor asks of text storages.
#include "NSTextStorage-PelvorAdditions.h"

#include "BaseTextLibrary.h"
#include "NSAttributedString-PelvorAdditions.h"
#include "Prelude.h"
#include "Text/NSMutableParagraphStyle.h"

namespace {

// A host's paragraph style.
class KeepingStyle : public NSObject {
    PELVOR_CLASS(KeepingStyle, NSObject);

  public:
    bool isKeepWithNext() { return keeps; }
    bool keeps = true;
};
constexpr Library* kDependencies[] = {&baseTextLibrary};
constinit Library styleLibrary{"TestKeepingStyle", kDependencies, kClassesOf<KeepingStyle>, {}};
PELVOR_DEFINE_CLASS(KeepingStyle, styleLibrary) {
    methods.instance<"isKeepWithNext", &KeepingStyle::isKeepWithNext>();
}

struct NSTextStorageAdditionsTest : ::testing::Test {
    static void SetUpTestSuite() { registerLibrary(baseTextLibrary); }
};

Retained<NSTextStorage> storageOf(const std::string& text) {
    return NSTextStorage::initWithString(NSString::ofUTF8(text));
}

TEST_F(NSTextStorageAdditionsTest, ParagraphsAreThoseOfTheString) {
    auto storage = storageOf("one\ntwo\r\nthree");
    NSUInteger start, end, contentsEnd;
    getParagraphStart_end_contentsEnd_forRange(storage, &start, &end, &contentsEnd, {5, 0});
    EXPECT_EQ(shown(start, end, contentsEnd), "4 9 7");
    EXPECT_EQ(paragraphRangeForRange(storage, {2, 3}), NSMakeRange(0, 9));
    EXPECT_EQ(paragraphContentRangeForRange(storage, {5, 0}), NSMakeRange(4, 3));
    EXPECT_EQ(paragraphContentRangeForRange(storage, {9, 2}), NSMakeRange(9, 5));
    EXPECT_EQ(send<NSRange>(storage.get(), "paragraphRangeForRange:"_sel, NSRange{5, 0}), NSMakeRange(4, 5));
    EXPECT_EQ(RAISED(paragraphRangeForRange(storage, {9, 6})),
              "NSRangeException: range: {9, 6} must be in range: {0, 14}");
}

TEST_F(NSTextStorageAdditionsTest, TypedTextTakesTheAttributesBeforeIt) {
    auto storage = storageOf("");
    for (NSUInteger index : {0u, 5u}) EXPECT_EQ(typingAttributesAtIndex(storage, index), nullptr);
    EXPECT_EQ(attributesForRange(storage, {0, 0}), nullptr);
    EXPECT_EQ(effectiveWritingDirectionForRange(storage, {0, 0}), NSWritingDirectionLeftToRight);
    storage->mutableString()->setString(u"abc"_ns);
    storage->addAttribute_value_range(PBLanguageAttributeName, u"en"_ns, {0, 1});
    storage->addAttribute_value_range(PBLanguageAttributeName, u"fr"_ns, {1, 2});
    EXPECT_EQ(typingAttributesAtIndex(storage, 0), typingAttributesAtIndex(storage, 1));
    EXPECT_EQ(typingAttributesForDeletedRange(storage, {1, 2}), typingAttributesAtIndex(storage, 3));
    EXPECT_EQ(shown(languageAttributeForRange(storage, {1, 0}), languageAttributeForRange(storage, {1, 9})),
              "en fr");
}

TEST_F(NSTextStorageAdditionsTest, SomeAttributesAreNotTypedOn) {
    NSDictionary* plain = NSDictionary::of({{u"n"_ns, u"x"_ns}});
    EXPECT_EQ(PBPacifyTypingAttributes(plain), plain);
    EXPECT_EQ(PBPacifyTypingAttributes(nullptr), nullptr);
    auto* all = plain->mutableCopy().autorelease();
    for (NSString* name : {u"PBListBulletAttributes"_ns, u"NSAttachment"_ns, u"PBFloatingContent"_ns,
                           u"PBStyleNoteReference"_ns, u"NSLink"_ns, u"PBBreakType"_ns, u"NSToolTip"_ns})
        all->setObject_forKey(u"y"_ns, name);
    EXPECT_TRUE(PBPacifyTypingAttributes(all)->isEqual(plain));
    EXPECT_EQ(all->count(), 8u);
}

TEST_F(NSTextStorageAdditionsTest, KeptParagraphsEndAtOthersAndAtPageBreaks) {
    auto keeping = make<KeepingStyle>(), alsoKeeping = make<KeepingStyle>(), loose = make<KeepingStyle>();
    loose->keeps = false;
    const struct {
        const char* text;
        id style;
        NSUInteger index;
        NSRange range;
    } rows[] = {
        {"aa\nbb\ncc\ndd", keeping, 9, {0, 9}},
        {"aa\nbb\ncc\ndd", loose, 9, {6, 3}},
        {"aa\nbb\ncc\ndd", NSParagraphStyle::defaultParagraphStyle(), 9, {6, 3}},
        {"a\f\nbb\ncc\ndd", keeping, 9, {2, 7}},
        {"aa\nbb\ncc\ndd", keeping, 0, {0, 0}},
        {"aa\nbb\nc\f\nd", keeping, 7, {0, 7}},  // the break behind the index does not count
    };
    for (const auto& row : rows) {
        auto storage = storageOf(row.text);
        auto set = [&](id style, NSRange range) {
            if (style) storage->addAttribute_value_range(NSParagraphStyleAttributeName, style, range);
        };
        set(keeping, {0, 3});
        set(row.style, {3, 3});
        set(alsoKeeping, {6, 3});
        EXPECT_EQ(longestIsKeepWithNextParagraphRangeBeforeIndex(storage, row.index), row.range) << row.text;
    }
}

// What the unit at the index is, over two units at most.
void* unitAt(NSTextStorage* storage, NSUInteger index, NSRange* range) {
    *range = NSIntersectionRange({index / 2 * 2, 2}, {0, storage->length()});
    return reinterpret_cast<void*>(
        static_cast<std::uintptr_t>(storage->string()->characterAtIndex(index / 2 * 2)));
}
bool areSame(NSTextStorage*, void* first, void* second) { return first == second; }

TEST_F(NSTextStorageAdditionsTest, ComputedValuesHaveStretches) {
    auto storage = storageOf("aaaabbbbb");
    const struct {
        NSUInteger index;
        NSRange limit, range;
    } rows[] = {{1, {1, 8}, {1, 3}}, {8, {0, 100}, {4, 5}}, {5, {0, 2}, {5, 0}}};
    for (const auto& row : rows) {
        NSRange range{};
        void* value = valueForCalculator_atIndex_longestEffectiveRange_withComparator_inRange(
            storage, &unitAt, row.index, &range, &areSame, row.limit);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(value), row.index < 4 ? u'a' : u'b');
        EXPECT_EQ(range, row.range) << row.index;
    }
}

TEST_F(NSTextStorageAdditionsTest, NumbersSortBeforeText) {
    for (NSString* number : {u"12"_ns, u" 3.5\n"_ns, u"$-4"_ns, u"٣"_ns})
        EXPECT_TRUE(_PBIsNumericString(number));
    for (NSString* other : {u""_ns, u"$"_ns, u"1a"_ns, u"."_ns}) EXPECT_FALSE(_PBIsNumericString(other));
    auto sorted = [](bool isAscending) {
        auto storages = NSMutableArray::init();
        for (const char* text : {"b", "10", "A", "$5", "9.5", "c"})
            storages->addObject(storageOf(text).get());
        PBSortTextStorages(storages, isAscending);
        std::string all;
        for (id storage : storages) all += cast<NSTextStorage>(storage)->string()->toUTF8() + " ";
        return all;
    };
    EXPECT_EQ(sorted(true), "$5 9.5 10 A b c ");
    EXPECT_EQ(sorted(false), "c b A 10 9.5 $5 ");
}

}  // namespace
