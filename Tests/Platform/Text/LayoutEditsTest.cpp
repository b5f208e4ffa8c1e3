// SPDX-License-Identifier: Apache-2.0
// Whatever was edited, and whatever was asked for in between, the layout is what it would be of the text as
// it is now.
#include "LayoutAuthor.h"
#include "Prelude.h"
#include "RandomSteps.h"

namespace {

void expectSameAsFromScratch(const LayoutAuthor::Sizes& sizes, NSArray* exclusions, unsigned seed, int steps,
                             NSString* start) {
    std::minstd_rand random(seed);
    LayoutAuthor author([&](unsigned limit) { return static_cast<unsigned>(random() % limit); }, sizes,
                        exclusions);
    author.text.set(start, plain());
    for (int step = 0; step < steps; ++step) {
        AutoreleasePool pool;
        author.step();
        ASSERT_EQ(author.fault, "") << "seed " << seed << ", step " << step;
    }
}

using Sizes = LayoutAuthor::Sizes;

struct Shape {
    const char* name;
    Sizes sizes;
    bool hasExclusion = false;
};

class LayoutEditsTest : public testing::TestWithParam<Shape> {
    AutoreleasePool _pool;
};

TEST_P(LayoutEditsTest, LeaveTheLayoutOfTheText) {
    const Shape& shape = GetParam();
    NSArray* exclusions =
        shape.hasExclusion ? NSArray::of({NSValue::valueWithRect({{30, 10}, {40, 60}})}) : nullptr;
    std::minstd_rand random(7);
    LayoutAuthor author([&](unsigned limit) { return static_cast<unsigned>(random() % limit); }, shape.sizes,
                        nullptr);
    auto text = NSMutableString::init();
    for (int i = 0; i < 20; ++i) text->appendString(author.words());
    for (unsigned seed = 1; seed <= 4; ++seed)
        expectSameAsFromScratch(shape.sizes, exclusions, seed, randomSteps(300), text);
}

INSTANTIATE_TEST_SUITE_P(Shapes, LayoutEditsTest,
                         testing::Values(Shape{"Endless", {{100, 1.0e7F}}},
                                         Shape{"Pages", {{100, 60}, {100, 60}, {100, 90}, {100, 5000}}},
                                         Shape{"UnlikePages", {{100, 60}, {70, 90}, {0, 40}, {120, 5000}}},
                                         Shape{"TooFewPages", {{100, 60}, {100, 60}}},
                                         Shape{"Exclusion", {{100, 1.0e7F}}, true},
                                         Shape{"ExclusionOnPage", {{100, 90}, {90, 5000}}, true}),
                         [](const auto& info) { return info.param.name; });

// A paragraph of many blocks.
TEST(LayoutEdits, LeaveTheLayoutOfALongParagraph) {
    AutoreleasePool pool;
    auto text = NSMutableString::init();
    std::minstd_rand random(3);
    while (text->length() < 40000) {
        text->appendString(u"abcdefghijklmnop"_ns->substringToIndex(1 + random() % 15));
        text->appendString(u" "_ns);
    }
    LaidOutText edited(text, plain(), {{200, 1.0e7F}});
    edited.account();
    for (int step = 0; step < randomSteps(12); ++step) {
        const NSUInteger place = random() % edited.storage->length();
        edited.storage->replaceCharactersInRange_withString({place, 0},
                                                            step % 3 ? u"x"_ns : u"some more words "_ns);
        if (step % 2) edited.lineRect(random() % edited.storage->length());
        edited.layoutManager->ensureLayoutForCharacterRange({0, edited.storage->length()});
        LaidOutText fresh(edited.storage->string(), plain(), {{200, 1.0e7F}});
        ASSERT_EQ(edited.account(), fresh.account()) << step;
    }
}

// Paragraphs are found when somebody gets to them: here edits meet the place where that has ended.
TEST(LayoutEdits, MeetTextThatNobodyHasAskedFor) {
    AutoreleasePool outer;
    std::minstd_rand random(11);
    std::u16string units;
    while (units.size() < 70000) {
        units.append(random() % 300, u'x');
        units += random() % 5 ? u"\n" : u"\r\n";
    }
    const auto border = static_cast<NSUInteger>(units.rfind(u'\n', 32767) + 1);
    for (int round = 0; round < randomSteps(15); ++round) {
        AutoreleasePool pool;
        LaidOutText edited(NSString::of(units), plain(), {{200, 1.0e7F}});
        edited.lineRect(0);
        for (int edit = 0; edit < 4; ++edit) {
            const NSUInteger start = border - 4 + random() % 8;
            NSString* const fresh[] = {u""_ns, u"\n"_ns, u"\r"_ns, u"words of\nsome length"_ns};
            if (random() % 4)
                edited.storage->replaceCharactersInRange_withString(
                    {start, static_cast<NSUInteger>(random() % 5)}, fresh[random() % 4]);
            else
                edited.storage->addAttribute_value_range(NSKernAttributeName, NSNumber::numberWithInt(1),
                                                         {start, static_cast<NSUInteger>(random() % 3000)});
            if (random() % 2) edited.lineRect(border + random() % 1000);
        }
        LaidOutText fresh({{200, 1.0e7F}});
        fresh.storage->setAttributedString(edited.storage);
        ASSERT_EQ(edited.account(), fresh.account()) << round;
    }
}

// However strange a text is, its layout takes time in proportion to its length.
TEST(LayoutEdits, TakeGiantsInTheirStride) {
    AutoreleasePool pool;
    const auto repeated = [](NSString* piece, NSUInteger length) {
        return u""_ns->stringByPaddingToLength_withString_startingAtIndex(length, piece, 0);
    };
    const auto length = static_cast<NSUInteger>(randomSteps(50000));
    for (NSString* piece :
         {u"x"_ns, u"word "_ns, u"\t"_ns, u"\u05D0 a "_ns, u"\u0301"_ns, u"\u0E01"_ns, u"\u00AD"_ns}) {
        for (const float width : {300.0F, 0.0F, 1.0e7F}) {
            LaidOutText text(repeated(piece, length), plain(), {{width, 1.0e7F}});
            text.layoutManager->ensureLayoutForCharacterRange({0, length});
            EXPECT_EQ(text.layoutManager->firstUnlaidCharacterIndex(), length) << piece << " in " << width;
            EXPECT_EQ(NSMaxRange(text.lineRange(length - 1)), length);
        }
    }
}

}  // namespace
