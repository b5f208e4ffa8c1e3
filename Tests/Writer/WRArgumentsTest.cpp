// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRArguments.h"

#include <gtest/gtest.h>

#include "Foundation/NSMutableArray.h"
#include "Runtime/AutoreleasePool.h"

namespace pelvor {
namespace {

class Arguments : public testing::Test {
  protected:
    Retained<WRArguments> parsed(std::initializer_list<const char*> texts) {
        auto* arguments = NSMutableArray::array();
        for (const char* text : texts) arguments->addObject(NSString::ofUTF8(text));
        return WRArguments::initWithArguments(arguments);
    }
    std::string problem(std::initializer_list<const char*> texts) {
        NSString* problem = parsed(texts)->problem();
        return problem ? problem->toUTF8() : "";
    }
    AutoreleasePool pool;
};

TEST_F(Arguments, AskForTheSampleIfThereAreNone) {
    auto arguments = parsed({});
    EXPECT_EQ(arguments->problem(), nullptr);
    EXPECT_EQ(arguments->documentPath(), nullptr);
    EXPECT_FALSE(arguments->wantsHelp() || arguments->wantsList() || arguments->wantsTiming());
}

TEST_F(Arguments, ComeInAnyOrderAndInBothForms) {
    auto arguments = parsed({"--encoding", "latin1", "a.txt", "--save-as=b=c.txt", "--save-encoding=utf-16",
                             "--timing"});
    EXPECT_EQ(arguments->problem(), nullptr);
    EXPECT_EQ(arguments->documentPath()->toUTF8(), "a.txt");
    EXPECT_EQ(arguments->encodingName()->toUTF8(), "latin1");
    EXPECT_EQ(arguments->savePath()->toUTF8(), "b=c.txt");
    EXPECT_EQ(arguments->saveEncodingName()->toUTF8(), "utf-16");
    EXPECT_TRUE(arguments->wantsTiming());
}

TEST_F(Arguments, AreDocumentsAfterTwoHyphens) {
    EXPECT_EQ(parsed({"--", "--list"})->documentPath()->toUTF8(), "--list");
    EXPECT_EQ(parsed({"-"})->documentPath()->toUTF8(), "-");
}

TEST_F(Arguments, AreComplainedAboutInOneSentence) {
    EXPECT_EQ(problem({"--colour", "--size"}), "_The argument \"--colour\" is not known.");
    EXPECT_EQ(problem({"--list=yes"}), "_The argument \"--list=yes\" is not known.");
    EXPECT_EQ(problem({"--encoding"}), "_The argument \"--encoding\" needs a value.");
    EXPECT_EQ(problem({"--save-as="}), "_The argument \"--save-as\" needs a value.");
    EXPECT_EQ(problem({"a", "b"}), "_Only one document can be opened; \"b\" is too many.");
    EXPECT_NE(problem({"--save-encoding", "utf-8"}), "");
}

TEST_F(Arguments, AreExplained) {
    const std::string usage = WRArguments::usage()->toUTF8();
    for (const char* option : {"--encoding NAME", "--save-as FILE", "--save-encoding NAME", "--list", "--timing"})
        EXPECT_NE(usage.find(option), std::string::npos) << option;
}

}  // namespace
}  // namespace pelvor
