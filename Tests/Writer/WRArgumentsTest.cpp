// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRArguments.h"

#include <gtest/gtest.h>

#include "Foundation/NSMutableArray.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

class Arguments : public testing::Test {
  protected:
    Retained<WRArguments> parsed(const std::vector<const char*>& texts) {
        auto* arguments = NSMutableArray::array();
        for (const char* text : texts) arguments->addObject(NSString::ofUTF8(text));
        return WRArguments::initWithArguments(arguments);
    }
    AutoreleasePool pool;
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
        {{"--edit", "erase 3"}, "_The argument \"--edit\" does not understand \"erase 3\"."},
    };
    for (const auto& [arguments, problem] : cases) {
        NSString* found = parsed(arguments)->problem();
        EXPECT_EQ(found ? found->toUTF8() : "", problem);
    }
}

}  // namespace
}  // namespace pelvor
