// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRArguments.h"

#include "Prelude.h"
#include "Writer/TextEdit.h"

namespace pelvor {
namespace {

class Arguments : public testing::Test {
  protected:
    Retained<WRArguments> parsed(const std::vector<const char*>& texts) {
        auto* arguments = NSMutableArray::array();
        for (const char* text : texts) arguments->addObject(NSString::ofUTF8(text));
        return WRArguments::initWithArguments(arguments);
    }
};

TEST_F(Arguments, ComeInAnyOrderAndInBothForms) {
    auto arguments = parsed({"--encoding", "latin1", "a.txt", "--save-as=b=c.txt", "--timing", "--edit",
                             "delete 1 2", "--edit=insert 0 a"});
    EXPECT_EQ(arguments->problem(), nullptr);
    EXPECT_EQ(arguments->documentPath()->toUTF8(), "a.txt");
    EXPECT_EQ(arguments->valueOfOption(u"--encoding"_ns)->toUTF8(), "latin1");
    EXPECT_EQ(arguments->valueOfOption(u"--save-as"_ns)->toUTF8(), "b=c.txt");
    EXPECT_EQ(arguments->valuesOfOption(u"--edit"_ns)->count(), 2u);
    EXPECT_TRUE(arguments->hasOption(u"--timing"_ns));
    EXPECT_FALSE(arguments->hasOption(u"--list"_ns));
    EXPECT_EQ(arguments->valueOfOption(u"--save-encoding"_ns), nullptr);
}

TEST_F(Arguments, AreDocumentsAfterTwoHyphens) {
    EXPECT_EQ(parsed({})->documentPath(), nullptr);
    EXPECT_EQ(parsed({"--", "--list"})->documentPath()->toUTF8(), "--list");
    EXPECT_EQ(parsed({"-"})->documentPath()->toUTF8(), "-");
}

TEST_F(Arguments, AreComplainedAboutInOneSentence) {
    const std::pair<std::vector<const char*>, const char*> cases[] = {
        {{"--colour", "--size"}, "_The argument \"--colour\" is not known."},
        {{"--list=yes"}, "_The argument \"--list=yes\" is not known."},
        {{"--encoding"}, "_The argument \"--encoding\" needs a value."},
        {{"--save-as="}, "_The argument \"--save-as\" needs a value."},
        {{"a", "b"}, "_Only one document can be opened; \"b\" is too many."},
        {{"--save-encoding", "utf-8"}, "_The argument \"--save-encoding\" needs another: \"--save-as\"."},
        {{"--replace", "x"}, "_The argument \"--replace\" needs another: \"--find\"."},
        {{"--at", "x"}, "_The argument \"--at\" takes a number from 0 to 999999999, not \"x\"."},
        {{"--wrap=0"}, "_The argument \"--wrap\" takes a number from 1 to 999999999, not \"0\"."},
        {{"--wrap=-3"}, "_The argument \"--wrap\" takes a number from 1 to 999999999, not \"-3\"."},
        {{"--at=1234567890"},
         "_The argument \"--at\" takes a number from 0 to 999999999, not \"1234567890\"."},
        {{"--case=title"},
         "_The argument \"--case\" takes one of upper, lower, capitals, toggle, not \"title\"."},
        {{"--line-endings=mac"}, "_The argument \"--line-endings\" takes one of lf, crlf, cr, not \"mac\"."},
        {{"--find", "a", "--replace="}, ""},
        {{"--edit", "erase 3"}, "_The argument \"--edit\" does not understand \"erase 3\"."},
    };
    for (const auto& [arguments, problem] : cases) {
        NSString* found = parsed(arguments)->problem();
        EXPECT_EQ(found ? found->toUTF8() : "", problem);
    }
}

std::string described(std::string_view line) {
    const auto edit = textEditOf(NSString::ofUTF8(line));
    if (!edit) return "nothing";
    return std::to_string(edit->range.location) + "+" + std::to_string(edit->range.length) + "=" +
           edit->text->toUTF8();
}

TEST(TextEdit, IsReadFromALine) {
    const std::pair<const char*, const char*> cases[] = {
        {"insert 0 a", "0+0=a"},
        {"insert 12  two words ", "12+0= two words "},
        {"insert 3 é\\n\\\\n\\t\\x\\", "3+0=é\n\\n\t\\x\\"},
        {"insert 3 ", "3+0="},
        {"delete 3 4", "3+4="},
        {"replace 3 4 delete", "3+4=delete"},
    };
    for (const auto& [line, edit] : cases) EXPECT_EQ(described(line), edit) << line;
    for (const char* line :
         {"", "insert", "insert 3", "insert x a", "insert -1 a", "insert 1234567890 a", "insert 1x a",
          "delete 3", "delete 3 4 5", "delete  3 4", "replace 1 2", "erase 1 2", "Insert 1 a"})
        EXPECT_EQ(described(line), "nothing") << line;
}

}  // namespace
}  // namespace pelvor
