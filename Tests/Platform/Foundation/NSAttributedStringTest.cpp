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

// The runs with their attributes: "ab{}, cd{b1 s2}".
std::string runsOf(NSAttributedString* text) {
    AutoreleasePool pool;
    std::vector<std::string> runs;
    for (auto [range, attributes] : text->runs()) {
        std::string entries;
        for (NSString* name : {u"b"_ns, u"n"_ns, u"q"_ns, u"s"_ns})
            if (id value = attributes->objectForKey(name))
                entries += (entries.empty() ? "" : " ") + name->toUTF8() + value->description()->toUTF8();
        runs.push_back(text->string()->substringWithRange(range)->toUTF8() + "{" + entries + "}");
    }
    return joined(runs);
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
    EXPECT_EQ(runsOf(text), "ab{}, c{b1}, d{b1 s2}, ef{s2}");
    NSRange run;
    EXPECT_TRUE(text->attribute_atIndex_effectiveRange(u"s"_ns, 3, &run)->isEqual(num(2)));
    EXPECT_EQ(run, NSMakeRange(3, 1));
    EXPECT_EQ(text->attribute_atIndex_effectiveRange(u"s"_ns, 0, nullptr), nullptr);
    text->attribute_atIndex_longestEffectiveRange_inRange(u"s"_ns, 4, &run, {0, 5});
    EXPECT_EQ(run, NSMakeRange(3, 2));
    text->attribute_atIndex_longestEffectiveRange_inRange(u"s"_ns, 5, &run, {0, 2});  // away from the limit
    EXPECT_EQ(run.length, 0u);
    text->attributesAtIndex_longestEffectiveRange_inRange(4, &run, {5, 1});
    EXPECT_EQ(run, NSMakeRange(5, 1));
}

TEST(NSAttributedStringTest, PlainTextTakesTheAttributesOfWhatItReplacesOrFollows) {
    const struct {
        NSRange range;
        NSString* text;
        const char* runs;
    } rows[] = {
        {{0, 0}, u"x"_ns, "xab{}, c{b1}, d{b1 s2}, ef{s2}"},
        {{2, 0}, u"x"_ns, "abx{}, c{b1}, d{b1 s2}, ef{s2}"},
        {{3, 0}, u"xy"_ns, "ab{}, cxy{b1}, d{b1 s2}, ef{s2}"},
        {{6, 0}, u"x"_ns, "ab{}, c{b1}, d{b1 s2}, efx{s2}"},
        {{2, 2}, u"x"_ns, "ab{}, x{b1}, ef{s2}"},
        {{1, 4}, u""_ns, "a{}, f{s2}"},
        {{0, 6}, u"x"_ns, "x{}"},
        {{0, 6}, u""_ns, ""},
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
    EXPECT_EQ(runsOf(text), "abc{}, def{s2}");
    text->addAttributes_range(attribute(u"s"_ns, 2), {0, 3});
    EXPECT_EQ(runsOf(text), "abcdef{s2}");
    text->setAttributes_range(nullptr, {1, 2});
    text->appendAttributedString(sample().get());
    text->insertAttributedString_atIndex(text->attributedSubstringFromRange({1, 3}), 0);
    EXPECT_EQ(runsOf(text), "bc{}, da{s2}, bc{}, def{s2}, ab{}, c{b1}, d{b1 s2}, ef{s2}");
    text->replaceCharactersInRange_withAttributedString({2, 10}, text);
    EXPECT_EQ(text->length(), 20u);
    text->setAttributedString(sample().get());
    text->replaceCharactersInRange_withString({2, 2}, text->string());
    EXPECT_EQ(runsOf(text), "ab{}, abcdef{b1}, ef{s2}");
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

TEST(NSAttributedStringTest, NamesMayChangeAndValuesEndAfterUse) {
    auto text = sample();
    auto name = NSMutableString::init();
    name->setString(u"b"_ns);
    text->addAttribute_value_range(name, num(7), {0, 1});
    name->setString(u"s"_ns);
    text->addAttribute_value_range(name, num(7), {1, 1});
    EXPECT_EQ(runsOf(text), "a{b7}, b{s7}, c{b1}, d{b1 s2}, ef{s2}");
    for (int i = 0; i < 100; ++i) {  // values one after another at one address
        AutoreleasePool pool;
        const std::string value = "value " + std::to_string(i);
        text->addAttribute_value_range(u"n"_ns, NSString::ofUTF8(value), {4, 2});
        ASSERT_EQ(runsOf(text), "a{b7}, b{s7}, c{b1}, d{b1 s2}, ef{n" + value + " s2}");
        text->removeAttribute_range(u"n"_ns, {4, 2});
    }
}

TEST(NSAttributedStringTest, RefusesWhatIsOutside) {
    auto text = sample();
    EXPECT_EQ(RAISED(text->attributesAtIndex_effectiveRange(6, nullptr)),
              "NSRangeException: attributesAtIndex:effectiveRange: index (6) beyond bounds (6)");
    EXPECT_THAT(
        (std::vector<std::string>{
            RAISED(text->attributedSubstringFromRange({4, 3})), RAISED(text->deleteCharactersInRange({7, 0})),
            RAISED(text->setAttributes_range(nullptr, {0, 7})),
            RAISED(text->removeAttribute_range(u"b"_ns, {6, 1})),
            RAISED(text->insertAttributedString_atIndex(text, 7)),
            RAISED(text->string()->characterAtIndex(6)), RAISED(text->runsInRange({5, 2}))}),
        Each(StartsWith("NSRangeException: ")));
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
    NSDictionary *bold = attribute(u"b"_ns, 1), *numbered = NSDictionary::of({{num(1), num(1)}});
    const std::string two("\2\0\0\0\0\0\0", 8);  // the first dictionary on two units
    const struct {
        id text, attributes;
        std::string runs;
        const char* fault;
    } rows[] = {
        {num(1), NSArray::array(), "", "the archive holds no text with attributes"},
        {u"ab"_ns, nullptr, "", "the archive holds no text with attributes"},
        {u"abc"_ns, NSArray::of({bold}), two, "the runs have another length than the text"},
        {u"ab"_ns, NSArray::array(), two, "a run has no attributes in the archive"},
        {u"ab"_ns, NSArray::of({num(1)}), two, "the attributes are no dictionary"},
        {u"ab"_ns, NSArray::of({numbered}), two, "an attribute's name is no string"},
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

TEST(NSAttributedStringTest, LongTextsHashAndCopyAsStrings) {
    std::u16string units;
    for (int i = 0; i < 9000; ++i) units += static_cast<char16_t>(u'a' + i % 26);
    auto text = NSMutableAttributedString::initWithString(NSString::of(units));
    auto copy = text->string()->copy();
    EXPECT_EQ(text->string()->hash(), NSString::of(units)->hash());
    for (NSUInteger place : {0u, 4000u, 8999u}) {
        EXPECT_TRUE(text->string()->isEqualToString(NSString::of(units)));
        text->replaceCharactersInRange_withString({place, 1}, u"A"_ns);
        EXPECT_FALSE(text->string()->isEqualToString(NSString::of(units)));
        text->replaceCharactersInRange_withString({place, 1}, NSString::of(units.substr(place, 1)));
    }
    text->deleteCharactersInRange({5, 8990});
    EXPECT_EQ(text->length(), 10u);
    EXPECT_EQ(copy->toUTF16(), units);
}

TEST(NSAttributedStringTest, LongTextsAreIndependentOfTheStringsThatTheyAreMadeOf) {
    const std::u16string units(9000, u'a');
    Retained<NSMutableAttributedString> ofString, ofMutableString;
    {
        AutoreleasePool pool;
        NSString* string = NSString::of(units);
        ofString = NSMutableAttributedString::initWithString(string);
        ofString->replaceCharactersInRange_withString({4000, 10}, u"b"_ns);
        ofString->deleteCharactersInRange({8, 1});
        EXPECT_EQ(string->toUTF16(), units);
        NSMutableString* changed = NSMutableString::string();
        changed->appendString(string);
        ofMutableString = NSMutableAttributedString::initWithString(changed);
        changed->setString(u""_ns);
    }
    EXPECT_EQ(ofString->string()->toUTF16(), units.substr(0, 3999) + u'b' + units.substr(4010));
    EXPECT_EQ(ofMutableString->string()->toUTF16(), units);
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
