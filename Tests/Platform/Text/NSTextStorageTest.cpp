// SPDX-License-Identifier: Apache-2.0
// Tests of text storages: what layout managers and observers hear, and which attributes are fixed.
#include "Text/NSTextStorage.h"

#include "AttributedStringModel.h"
#include "Foundation/NSKeyedArchiver.h"
#include "Foundation/NSKeyedUnarchiver.h"
#include "Prelude.h"
#include "RandomSteps.h"
#include "Text/TextAttributes.h"
#include "Text/TextLibrary.h"

namespace {

// A layout manager that writes down what it hears, and keeps a text of its own up to date by it.
class Scribe : public NSObject {
    PELVOR_CLASS(Scribe, NSObject);

  public:
    void setTextStorage(id textStorage) {
        storage = static_cast<NSTextStorage*>(textStorage);
        if (storage) text = storage->string()->toUTF16();
    }
    void hear(id sender, unsigned mask, NSRange range, NSInteger change, NSRange invalidated) {
        EXPECT_EQ(sender, storage);
        EXPECT_EQ(NSUnionRange(range, invalidated), invalidated);
        std::ostringstream line;
        line << mask << " {" << range.location << ", " << range.length << "} " << change;
        if (invalidated != range) line << " {" << invalidated.location << ", " << invalidated.length << "}";
        heard.push_back(line.str());
        text.replace(range.location, range.length - static_cast<NSUInteger>(change),
                     storage->string()->substringWithRange(range)->toUTF16());
        if (reaction) std::exchange(reaction, nullptr)();
    }
    std::string takeHeard() { return joined(std::exchange(heard, {})); }

    Unretained<NSTextStorage> storage = nullptr;
    std::u16string text;
    std::vector<std::string> heard;
    std::function<void()> reaction;
};
constexpr Library* kDependencies[] = {&textLibrary};
constinit Library scribeLibrary{"TestScribe", kDependencies, kClassesOf<Scribe>, {}};
PELVOR_DEFINE_CLASS(Scribe, scribeLibrary) {
    methods.instance<"setTextStorage:", &Scribe::setTextStorage>();
    methods.instanceAs<"textStorage:edited:range:changeInLength:invalidatedRange:", &Scribe::hear>();
}

class NSTextStorageTest : public ::testing::Test {
  protected:
    NSTextStorageTest() { storage->addLayoutManager(scribe); }
    std::string styles() {
        std::string line;
        for (AttributeRun run : storage->runs()) {
            id style = run.attributes->objectForKey(NSParagraphStyleAttributeName);
            line += std::string(run.range.length, style ? style->description()->toUTF8()[0] : '-');
        }
        return line;
    }
    void setStyle(NSString* style, NSRange range) {
        storage->addAttribute_value_range(NSParagraphStyleAttributeName, style, range);
    }

    AutoreleasePool pool;
    Retained<NSTextStorage> storage = NSTextStorage::initWithString(u"one\ntwo\nthree"_ns);
    Retained<Scribe> scribe = make<Scribe>();
};

TEST_F(NSTextStorageTest, TellsEditsAndJoinsThoseInBrackets) {
    storage->replaceCharactersInRange_withString({4, 3}, u"second"_ns);
    storage->addAttribute_value_range(u"n"_ns, u"x"_ns, {0, 2});
    storage->addAttribute_value_range(u"n"_ns, u"x"_ns, {0, 2});  // changes nothing
    EXPECT_EQ(scribe->takeHeard(), "2 {4, 6} 3, 1 {0, 2} 0");
    storage->beginEditing();
    storage->deleteCharactersInRange({10, 1});
    storage->beginEditing();
    storage->insertAttributedString_atIndex(NSAttributedString::initWithString(u"abc"_ns).get(), 2);
    storage->endEditing();
    EXPECT_EQ(shown(storage->editedMask(), storage->editedRange().location, storage->editedRange().length,
                    storage->changeInLength()),
              "3 2 11 2");
    EXPECT_EQ(scribe->takeHeard(), "");
    storage->endEditing();
    storage->endEditing();  // one too many
    EXPECT_EQ(scribe->takeHeard(), "3 {2, 11} 2");
    EXPECT_EQ(storage->editedRange(), NSMakeRange(NSNotFound, 0));
    storage->edited_range_changeInLength(NSTextStorageEditedAttributes, {1, 2}, 0);
    EXPECT_EQ(scribe->takeHeard(), "1 {1, 2} 0");
    EXPECT_EQ(RAISED(storage->edited_range_changeInLength(1, {100, 1}, 0)),
              "NSRangeException: edited:range:changeInLength: range {100, 1} beyond bounds (18)");
}

TEST_F(NSTextStorageTest, AParagraphHasTheStyleOfItsFirstUnit) {
    setStyle(u"a"_ns, {0, 4});
    setStyle(u"b"_ns, {4, 4});
    scribe->takeHeard();
    setStyle(u"x"_ns, {2, 3});
    EXPECT_EQ(styles(), "aaaaxxxx-----");
    storage->deleteCharactersInRange({3, 1});
    EXPECT_EQ(styles(), "aaaaaaa-----");
    EXPECT_EQ(scribe->takeHeard(), "1 {2, 3} 0 {2, 6}, 2 {3, 0} -1 {3, 4}");
}

TEST_F(NSTextStorageTest, AttachmentsStandOnTheirCharacterOnly) {
    NSDictionary* attached = NSDictionary::of({{NSAttachmentAttributeName, u"picture"_ns}});
    auto text = NSAttributedString::initWithString_attributes(u"a\uFFFCb"_ns, attached);
    storage->replaceCharactersInRange_withAttributedString({0, 3}, text);
    auto hasAttachment = [](NSAttributedString* text, NSUInteger index) {
        return text->attribute_atIndex_effectiveRange(NSAttachmentAttributeName, index, nullptr) != nullptr;
    };
    storage->replaceCharactersInRange_withString({2, 0}, u"x"_ns);
    EXPECT_EQ(shown(hasAttachment(storage, 0), hasAttachment(storage, 1), hasAttachment(storage, 2),
                    hasAttachment(storage, 3)),
              "0 1 0 0");
    EXPECT_TRUE(hasAttachment(text, 0));
    EXPECT_FALSE(hasAttachment(NSTextStorage::initWithAttributedString(text).get(), 0));
    NSString* error = nullptr;
    id back = NSKeyedUnarchiver::unarchivedObjectWithData_allowedClasses_error(
        NSKeyedArchiver::archivedDataWithRootObject(storage), NSSet::of({NSTextStorage::classObject()}),
        &error);
    EXPECT_TRUE(back && back->isEqual(storage.get())) << error;
}

TEST_F(NSTextStorageTest, ObserversMayEdit) {
    auto will = Listener::doing([&](id) {
        storage->replaceCharactersInRange_withString({0, 0}, u"will "_ns);
    });
    auto did = Listener::doing([&](id) {
        EXPECT_EQ(storage->editedRange(), NSMakeRange(0, 6));
        setStyle(u"d"_ns, {0, 1});
    });
    will->listen(NSTextStorageWillProcessEditingNotification, storage);
    did->listen(NSTextStorageDidProcessEditingNotification, storage);
    storage->replaceCharactersInRange_withString({0, 1}, u"O"_ns);
    EXPECT_EQ(scribe->takeHeard(), "3 {0, 6} 5 {0, 9}");
    EXPECT_EQ(styles().substr(0, 10), "ddddddddd-");
}

TEST_F(NSTextStorageTest, LayoutManagersMayEditAndLeaveAndRaise) {
    auto second = make<Scribe>(), third = make<Scribe>();
    storage->addLayoutManager(second);
    storage->addLayoutManager(second);
    storage->addLayoutManager(third);
    EXPECT_EQ(storage->layoutManagers()->count(), 3u);
    scribe->reaction = [&] { storage->replaceCharactersInRange_withString({13, 0}, u"!"_ns); };
    second->reaction = [&] {
        storage->removeLayoutManager(third);
        throw NSException(NSGenericException, "second");
    };
    EXPECT_EQ(RAISED(storage->deleteCharactersInRange({0, 0})), "");
    EXPECT_EQ(RAISED(storage->replaceCharactersInRange_withString({0, 1}, u"O"_ns)),
              "NSGenericException: second");
    EXPECT_EQ(scribe->takeHeard(), "2 {0, 1} 0, 2 {13, 1} 1");
    EXPECT_EQ(second->takeHeard(), "2 {0, 14} 1");
    EXPECT_EQ(third->takeHeard(), "");
    EXPECT_EQ(third->storage, nullptr);
    EXPECT_EQ(second->text, storage->string()->toUTF16());
    storage = nullptr;
    EXPECT_EQ(second->storage, nullptr);
}

TEST_F(NSTextStorageTest, RandomEditsLeaveEachParagraphWithOneStyle) {
    std::mt19937 random(5);
    NSString* const texts[] = {u"a"_ns, u"\n"_ns, u"\r"_ns, u"\r\n"_ns, u"b\u2029c"_ns, u""_ns};
    NSString* const names[] = {u"x"_ns, u"y"_ns, u"z"_ns};
    for (int i = 0; i < 2000; ++i) {
        AutoreleasePool pool;
        NSUInteger start = static_cast<NSUInteger>(random() % (storage->length() + 1));
        NSRange range{start, static_cast<NSUInteger>(random() % std::min(4u, storage->length() - start + 1))};
        if (random() % 3)
            storage->replaceCharactersInRange_withString(range, texts[random() % std::size(texts)]);
        else
            setStyle(names[random() % std::size(names)], range);
        std::string all = styles();
        std::u16string units = storage->string()->toUTF16();
        for (std::size_t place = 1; place < units.size(); ++place) {
            char16_t before = units[place - 1];
            bool isStart =
                before == u'\n' || before == u'\u2029' || (before == u'\r' && units[place] != u'\n');
            ASSERT_TRUE(isStart || all[place] == all[place - 1]) << i << all;
        }
    }
}

TEST(NSTextStorageModelTest, LayoutManagersFollowRandomSteps) {
    AutoreleasePool pool;
    std::mt19937 random(3);
    auto storage = NSTextStorage::init();
    auto scribe = make<Scribe>();
    storage->addLayoutManager(scribe);
    AttributedStringModel model([&](unsigned limit) { return static_cast<unsigned>(random() % limit); },
                                storage);
    const int steps = randomSteps(1000);
    for (int i = 1; i <= steps; ++i) {
        bool isBracketed = random() % 4 == 0;
        if (isBracketed) storage->beginEditing();
        model.step();
        if (isBracketed) model.step(), storage->endEditing();
        scribe->heard.clear();
        if (i % 16) continue;
        model.checkAll();
        ASSERT_EQ(model.fault, "") << "step " << i;
        ASSERT_EQ(scribe->text, storage->string()->toUTF16()) << "step " << i;
    }
}

}  // namespace
