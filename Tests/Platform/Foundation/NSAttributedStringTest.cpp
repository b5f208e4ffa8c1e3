// SPDX-License-Identifier: Apache-2.0
// Tests of texts with attributes, immutable and mutable.
#include "AttributedStringModel.h"
#include "Foundation/NSKeyedArchiver.h"
#include "Foundation/NSKeyedUnarchiver.h"
#include "Platform/Foundation/Pebble.h"
#include "RandomSteps.h"

namespace {

using pelvor::testing::num;
using pelvor::testing::Pebble;

// The runs with their attributes: "ab{} cd{bold=1 size=9}".
std::string runsOf(NSAttributedString* text) {
    AutoreleasePool pool;
    std::vector<std::string> runs;
    for (auto [range, attributes] : text->runs()) {
        std::vector<std::string> entries;
        for (auto [name, value] : attributes) entries.push_back(shown(name->description(), "=", value->description()));
        std::sort(entries.begin(), entries.end());
        std::string all;
        for (std::string entry : entries) {
            entry.erase(std::remove(entry.begin(), entry.end(), ' '), entry.end());
            all += (all.empty() ? "" : " ") + entry;
        }
        runs.push_back(text->string()->substringWithRange(range)->toUTF8() + "{" + all + "}");
    }
    std::string line;
    for (const std::string& run : runs) line += (line.empty() ? "" : " ") + run;
    return line;
}

NSDictionary* attribute(NSString* name, int value) { return NSDictionary::of({{name, num(value)}}); }

// "abcdef" with "b" on "cd" and "s" on "def".
Retained<NSMutableAttributedString> sample() {
    auto text = NSMutableAttributedString::initWithString(u"abcdef"_ns);
    text->addAttribute_value_range(u"b"_ns, num(1), {2, 2});
    text->addAttribute_value_range(u"s"_ns, num(2), {3, 3});
    return text;
}

TEST(NSAttributedStringTest, RunsAndStretchesAreFound) {
    auto text = sample();
    EXPECT_EQ(runsOf(text), "ab{} c{b=1} d{b=1 s=2} ef{s=2}");
    NSRange run;
    EXPECT_EQ(text->attributesAtIndex_effectiveRange(0, &run)->count(), 0u);
    EXPECT_EQ(run, NSRange(0, 2));
    EXPECT_TRUE(text->attribute_atIndex_effectiveRange(u"s"_ns, 3, &run)->isEqual(num(2)));
    EXPECT_EQ(run, NSRange(3, 1));
    EXPECT_EQ(text->attribute_atIndex_effectiveRange(u"s"_ns, 0, nullptr), nullptr);
    struct {
        NSString* name;
        NSUInteger index;
        NSRange limit, stretch;
    } const rows[] = {
        {u"b"_ns, 2, {0, 6}, {2, 2}}, {u"b"_ns, 5, {0, 6}, {4, 2}}, {u"s"_ns, 4, {0, 5}, {3, 2}},
        {u"s"_ns, 1, {1, 5}, {1, 2}}, {u"x"_ns, 3, {0, 6}, {0, 6}}, {u"x"_ns, 5, {0, 3}, {0, 3}},
        {u"s"_ns, 5, {0, 2}, {3, 0}},  // elsewhere than the limit
    };
    for (const auto& row : rows) {
        text->attribute_atIndex_longestEffectiveRange_inRange(row.name, row.index, &run, row.limit);
        EXPECT_EQ(run, row.stretch) << row.name << row.index;
    }
    text->attributesAtIndex_longestEffectiveRange_inRange(4, &run, {5, 1});
    EXPECT_EQ(run, NSRange(5, 1));
}

TEST(NSAttributedStringTest, PlainTextTakesTheAttributesOfWhatItReplacesOrFollows) {
    const struct {
        NSRange range;
        NSString* text;
        const char* runs;
    } rows[] = {
        {{0, 0}, u"x"_ns, "xab{} c{b=1} d{b=1 s=2} ef{s=2}"},  {{2, 0}, u"x"_ns, "abx{} c{b=1} d{b=1 s=2} ef{s=2}"},
        {{3, 0}, u"xy"_ns, "ab{} cxy{b=1} d{b=1 s=2} ef{s=2}"}, {{6, 0}, u"x"_ns, "ab{} c{b=1} d{b=1 s=2} efx{s=2}"},
        {{2, 2}, u"x"_ns, "ab{} x{b=1} ef{s=2}"},               {{1, 4}, u""_ns, "a{} f{s=2}"},
        {{0, 6}, u"x"_ns, "x{}"},                               {{0, 6}, u""_ns, ""},
    };
    for (const auto& row : rows) {
        auto text = sample();
        text->replaceCharactersInRange_withString(row.range, row.text);
        EXPECT_EQ(runsOf(text), row.runs);
    }
    auto text = sample();
    text->deleteCharactersInRange({0, 6});
    text->mutableString()->appendString(u"new"_ns);
    EXPECT_EQ(runsOf(text), "new{}");
}

TEST(NSAttributedStringTest, EditsJoinWhatIsEqual) {
    auto text = sample();
    text->removeAttribute_range(u"b"_ns, {0, 6});
    EXPECT_EQ(runsOf(text), "abc{} def{s=2}");
    text->addAttributes_range(attribute(u"s"_ns, 2), {0, 3});
    EXPECT_EQ(runsOf(text), "abcdef{s=2}");
    text->setAttributes_range(nullptr, {1, 2});
    text->appendAttributedString(sample().get());
    text->insertAttributedString_atIndex(text->attributedSubstringFromRange({1, 3}), 0);
    EXPECT_EQ(runsOf(text), "bc{} da{s=2} bc{} def{s=2} ab{} c{b=1} d{b=1 s=2} ef{s=2}");
    text->replaceCharactersInRange_withAttributedString({2, 10}, text);
    EXPECT_EQ(text->length(), 20u);
    text->setAttributedString(sample().get());
    text->replaceCharactersInRange_withString({2, 2}, text->string());
    EXPECT_EQ(runsOf(text), "ab{} abcdef{b=1} ef{s=2}");
}

TEST(NSAttributedStringTest, CopiesStayAsTheyAre) {
    auto text = sample();
    auto copy = text->copy(), again = copy->copy();
    auto other = copy->mutableCopy();
    NSString* view = text->string();
    auto kept = view->copy();
    text->mutableString()->setString(u"new"_ns);
    other->addAttribute_value_range(u"x"_ns, num(1), {0, 6});
    EXPECT_EQ(shown(view, kept, text->mutableString()->copy()), "new abcdef new");
    EXPECT_EQ(runsOf(copy), runsOf(sample().get()));
    EXPECT_EQ(again.get(), copy.get());
    EXPECT_EQ(copy->isa(), NSAttributedString::classObject());
    EXPECT_TRUE(copy->isEqual(sample().get()) && !copy->isEqual(other.get()) && !copy->isEqual(nullptr));
    EXPECT_EQ(copy->hash(), sample()->hash());
    EXPECT_FALSE(copy->isEqualToAttributedString(NSAttributedString::initWithString(u"abcdef"_ns).get()));
}

TEST(NSAttributedStringTest, EqualAttributesAreOneObjectThatEndsWithItsLastRun) {
    pelvor::testing::expectPebblesBalance([] {
        auto text = NSMutableAttributedString::initWithString(u"abc"_ns);
        auto* same = NSMutableDictionary::of({{u"p"_ns, Pebble::create(1).get()}});
        auto other = NSAttributedString::initWithString_attributes(u"x"_ns, same);
        text->addAttribute_value_range(u"p"_ns, Pebble::create(1).get(), {1, 1});
        same->removeAllObjects();
        EXPECT_EQ(text->attributesAtIndex_effectiveRange(1, nullptr),
                  other->attributesAtIndex_effectiveRange(0, nullptr));
        EXPECT_EQ(Pebble::alive(), 1);
        // The end of a value may edit the text that loses the value.
        auto last = Pebble::create(2);
        last->whenDestroyed = [&] { text->replaceCharactersInRange_withString({0, 1}, u"A"_ns); };
        text->addAttribute_value_range(u"q"_ns, last, {0, 3});
        last = nullptr;
        text->setAttributes_range(nullptr, {0, 3});
        EXPECT_EQ(runsOf(text), "Abc{}");
    });
}

TEST(NSAttributedStringTest, RefusesWhatIsOutsideOrNull) {
    auto text = sample();
    EXPECT_EQ(RAISED(text->attributesAtIndex_effectiveRange(6, nullptr)),
              "NSRangeException: attributesAtIndex:effectiveRange: index (6) beyond bounds (6)");
    EXPECT_EQ(RAISED(text->attribute_atIndex_effectiveRange(nullptr, 0, nullptr)),
              "NSInvalidArgumentException: attribute:atIndex:effectiveRange: the name is null");
    pelvor::testing::expectRaised(
        "NSRangeException",
        {RAISED(text->attributedSubstringFromRange({4, 3})), RAISED(text->deleteCharactersInRange({7, 0})),
         RAISED(text->setAttributes_range(nullptr, {0, 7})), RAISED(text->removeAttribute_range(u"b"_ns, {6, 1})),
         RAISED(text->insertAttributedString_atIndex(text, 7)), RAISED(text->string()->characterAtIndex(6)),
         RAISED(text->runsInRange({5, 2}))});
    pelvor::testing::expectRaised(
        "NSInvalidArgumentException",
        {RAISED(NSAttributedString::initWithString(nullptr)), RAISED(text->appendAttributedString(nullptr)),
         RAISED(text->replaceCharactersInRange_withString({0, 0}, nullptr)),
         RAISED(text->addAttribute_value_range(u"b"_ns, nullptr, {0, 1}))});
    EXPECT_EQ(runsOf(text), runsOf(sample().get()));
}

TEST(NSAttributedStringTest, ShowsAndArchivesItself) {
    EXPECT_EQ(shown(sample()->attributedSubstringFromRange({1, 2})), "b{\n}c{\n    b = 1;\n}");
    NSString* error = nullptr;
    NSSet* allowed = NSSet::of({NSAttributedString::classObject()});
    for (const auto& text : {sample(), NSMutableAttributedString::init()}) {
        NSData* data = NSKeyedArchiver::archivedDataWithRootObject(text);
        id back = NSKeyedUnarchiver::unarchivedObjectWithData_allowedClasses_error(data, allowed, &error);
        EXPECT_TRUE(back && back->isEqual(text.get())) << error;
        EXPECT_EQ(back->isa(), NSMutableAttributedString::classObject());
    }
}

// An archive as somebody may have written it.
class ForeignArchive : public NSCoder {
    PELVOR_CLASS(ForeignArchive, NSCoder);

  public:
    id decodeObjectForKey(NSString* key) override { return fields->objectForKey(key); }
    const void* decodeBytesForKey_returnedLength(NSString*, NSUInteger* length) override {
        *length = static_cast<NSUInteger>(runs.size());
        return runs.data();
    }
    NSDictionary* fields = nullptr;
    std::string runs;
};
PELVOR_DEFINE_CLASS(ForeignArchive, foundationLibrary) {}

TEST(NSAttributedStringTest, RefusesBadArchives) {
    const struct {
        id text, attributes;
        std::string runs;
        const char* fault;
    } rows[] = {
        {num(1), NSArray::array(), "", "the archive holds no text with attributes"},
        {u"ab"_ns, nullptr, "", "the archive holds no text with attributes"},
        {u"ab"_ns, NSArray::of({attribute(u"n"_ns, 1)}), {"\1\0\0\0\0\0\0", 8}, "the runs have another length than the text"},
        {u"ab"_ns, NSArray::array(), {"\2\0\0\0\0\0\0", 8}, "a run has no attributes in the archive"},
        {u"ab"_ns, NSArray::of({num(1)}), {"\2\0\0\0\0\0\0", 8}, "the attributes are no dictionary"},
        {u"ab"_ns, NSArray::of({NSDictionary::of({{num(1), num(1)}})}), {"\2\0\0\0\0\0\0", 8}, "an attribute's name is no string"},
    };
    for (const auto& row : rows) {
        auto archive = make<ForeignArchive>();
        auto* fields = NSMutableDictionary::of({{u"string"_ns, row.text}});
        if (row.attributes) fields->setObject_forKey(row.attributes, u"attributes"_ns);
        archive->fields = fields;
        archive->runs = row.runs;
        EXPECT_EQ(RAISED(NSAttributedString::initWithCoder(archive)),
                  std::string("NSInvalidArgumentException: initWithCoder: ") + row.fault);
    }
}

TEST(NSAttributedStringTest, LongTextsAreOneText) {
    std::u16string units;
    auto text = NSMutableAttributedString::init();
    for (int i = 0; i < 3000; ++i) {
        auto word = NSString::initWithFormat(u"%d "_ns, i);
        units += word->toUTF16();
        text->appendAttributedString(
            NSAttributedString::initWithString_attributes(word, attribute(u"n"_ns, i % 7)).get());
    }
    auto copy = text->string()->copy();
    text->string()->substringFromIndex(1);
    EXPECT_EQ(text->string()->toUTF16(), units);
    EXPECT_EQ(text->string()->hash(), NSString::of(units)->hash());
    text->deleteCharactersInRange({5, static_cast<NSUInteger>(units.size()) - 10});
    EXPECT_EQ(copy->toUTF16(), units);
    EXPECT_EQ(runsOf(text), "0 {n=0} 1 {n=1} 2{n=2} 998 {n=3}");  // of 2998 and 2999
}

TEST(NSAttributedStringTest, CopiesAreReadOnOtherThreadsWhileTheTextChanges) {
    auto text = NSMutableAttributedString::initWithString(NSString::of(std::u16string(20000, u'a')));
    for (NSUInteger i = 0; i < 20000; i += 10) text->addAttribute_value_range(u"n"_ns, num(1), {i, 5});
    auto copy = text->copy();
    std::atomic<int> wrong{0};
    onThreads(3, [&](int number) {
        if (number == 0) {
            for (NSUInteger i = 0; i < 3000; ++i)
                text->addAttribute_value_range(u"m"_ns, num(static_cast<int>(i)), {i, 9});
            return;
        }
        auto own = copy->mutableCopy();
        for (NSUInteger i = 0; i < 3000; ++i) {
            NSRange run;
            copy->attributesAtIndex_effectiveRange(i, &run);
            wrong += run.length != 5 || copy->string()->characterAtIndex(i) != u'a';
            own->addAttribute_value_range(u"m"_ns, num(static_cast<int>(i)), {i, 9});
        }
    });
    EXPECT_EQ(wrong, 0);
}

TEST(NSAttributedStringModelTest, RandomStepsAgreeWithAPlainArray) {
    std::mt19937 random(11);
    AttributedStringModel model([&](unsigned limit) { return static_cast<unsigned>(random() % limit); });
    const int steps = randomSteps(4000);
    for (int i = 1; i <= steps && model.fault.empty(); ++i) {
        model.step();
        if (i % 64 == 0 || i == steps) model.checkAll();
        ASSERT_EQ(model.fault, "") << "step " << i;
    }
}

}  // namespace
