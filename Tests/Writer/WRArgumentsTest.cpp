// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRArguments.h"

#include "Prelude.h"
#include "Writer/InputText.h"
#include "Writer/TextEdit.h"

namespace {

Retained<WRArguments> parsed(const std::vector<const char*>& texts) {
    auto* arguments = NSMutableArray::array();
    for (const char* text : texts) arguments->addObject(objectOfInput(text));
    return WRArguments::initWithArguments(arguments);
}

TEST(Arguments, ComeInAnyOrderAndInBothForms) {
    auto arguments = parsed({"--encoding", "latin1", "a.txt", "--save-as=b=c.txt", "--timing", "--edit",
                             "delete 1 2", "--edit=insert 0 a"});
    EXPECT_EQ(shown(arguments->problem(), arguments->documentPath()), "(null) a.txt");
    expectAll({"--encoding -> latin1", "--save-as -> b=c.txt", "--save-encoding -> (null)"},
              [&](const std::string& name) { return arguments->valueOfOption(NSString::ofUTF8(name)); });
    EXPECT_EQ(arguments->valuesOfOption(u"--edit"_ns)->count(), 2u);
    EXPECT_TRUE(arguments->hasOption(u"--timing"_ns));
    EXPECT_FALSE(arguments->hasOption(u"--list"_ns));
    // After two hyphens everything is a document.
    EXPECT_EQ(shown(parsed({})->documentPath(), parsed({"--", "--list"})->documentPath(),
                    parsed({"-"})->documentPath()),
              "(null) --list -");
}

TEST(Arguments, AreComplainedAboutInOneSentence) {
    auto expectProblem = [](const std::vector<const char*>& arguments, const std::string& problem) {
        EXPECT_EQ(shown(parsed(arguments)->problem()), problem);
    };
    expectProblem({"--colour", "--size"}, "_The argument \"--colour\" is not known.");
    expectProblem({"--list=yes"}, "_The argument \"--list=yes\" is not known.");
    expectProblem({"--encoding"}, "_The argument \"--encoding\" needs a value.");
    expectProblem({"--save-as="}, "_The argument \"--save-as\" needs a value.");
    expectProblem({"a", "b"}, "_Only one document can be opened; \"b\" is too many.");
    expectProblem({"--save-encoding", "utf-8"},
                  "_The argument \"--save-encoding\" needs another: \"--save-as\".");
    expectProblem({"--replace", "x"}, "_The argument \"--replace\" needs another: \"--find\".");
    expectProblem({"--case=title"},
                  "_The argument \"--case\" takes one of upper, lower, capitals, toggle, not \"title\".");
    expectProblem({"--line-endings=mac"},
                  "_The argument \"--line-endings\" takes one of lf, crlf, cr, not \"mac\".");
    expectProblem({"--find", "a", "--replace="}, "(null)");
    expectProblem({"--find", "a", "--find=b"}, "_The argument \"--find\" is given twice.");
    expectProblem({"--stay", "--stay"}, "_The argument \"--stay\" is given twice.");
    expectProblem({"é\xE9\xF0\x9F.txt"},
                  "_The argument \"é\\xE9\\xF0\\x9F.txt\" is not UTF-8; names and texts have to be.");
    expectProblem({"--edit", "erase 3"}, "_The argument \"--edit\" does not understand \"erase 3\".");
    const std::string at = "_The argument \"--at\" takes a number from 0 to 999999999, not ";
    expectProblem({"--at", "x"}, at + "\"x\".");
    expectProblem({"--at=1234567890"}, at + "\"1234567890\".");
    const std::string wrap = "_The argument \"--wrap\" takes a number from 1 to 999999999, not ";
    expectProblem({"--wrap=0"}, wrap + "\"0\".");
    expectProblem({"--wrap=-3"}, wrap + "\"-3\".");
}

std::string described(std::string_view line) {
    const auto edit = textEditOf(NSString::ofUTF8(line));
    if (!edit) return "nothing";
    return std::to_string(edit->range.location) + "+" + std::to_string(edit->range.length) + "=" +
           edit->text->toUTF8();
}

TEST(TextEdit, IsReadFromALine) {
    expectAll({"insert 0 a -> 0+0=a", "insert 12  two words  -> 12+0= two words ",
               "insert 3 é\\n\\\\n\\t\\x\\ -> 3+0=é\n\\n\t\\x\\",
               "insert 3  -> 3+0=", "delete 3 4 -> 3+4=", "replace 3 4 delete -> 3+4=delete"},
              described);
    for (const char* line :
         {"", "insert", "insert 3", "insert x a", "insert -1 a", "insert 1234567890 a", "insert 1x a",
          "delete 3", "delete 3 4 5", "delete  3 4", "replace 1 2", "erase 1 2", "Insert 1 a"})
        EXPECT_EQ(described(line), "nothing") << line;
}

}  // namespace
