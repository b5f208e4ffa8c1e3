// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRDocumentOpener.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include "Foundation/NSArray.h"
#include "Foundation/NSDictionary.h"
#include "PBProfileKeys.h"
#include "Runtime/AutoreleasePool.h"
#include "TemporaryFolder.h"
#include "TestPlugIns.h"

namespace pelvor {
namespace {

class DocumentOpener : public testing::Test {
  protected:
    DocumentOpener() { registerLibrary(testPlugIns); }
    void addReader(const char* identifier, int order, const char* className) {
        addProfile(registry, identifier, PBProfileDocumentReaderType, {"txt"}, order, className);
    }
    WRDocument* open(const std::string& path) {
        return opener->openDocumentAtPath_options(NSString::ofUTF8(path), NSDictionary::dictionary());
    }
    // Opens a file of that name and answers the identifier of the reader or the problem.
    std::string outcomeFor(const char* name) {
        WRDocument* document = open(folder.write(name, "content"));
        return document ? document->reader()->identifier()->description()->toUTF8()
                        : opener->problem()->toUTF8();
    }
    AutoreleasePool pool;
    TemporaryFolder folder;
    Retained<PBRegistry> registry = PBRegistry::init();
    Retained<WRDocumentOpener> opener = WRDocumentOpener::initWithProfiles(registry);
};

TEST_F(DocumentOpener, HasTheBestReaderReadTheDocument) {
    addReader("second", 2, "WRTestReader");
    addReader("first", 1, "WRTestPathReader");
    const std::string path = folder.write("a.txt", "content");
    WRDocument* document = open(path);
    ASSERT_TRUE(document);
    EXPECT_EQ(document->text()->toUTF8(), path);
    EXPECT_EQ(document->reader()->identifier()->description()->toUTF8(), "first");
    EXPECT_EQ(opener->candidates()->count(), 2u);
    EXPECT_EQ(opener->problem(), nullptr);
}

TEST_F(DocumentOpener, GoesOnToTheNextReaderUnlessTheDocumentIsAtFault) {
    addReader("fickle", 1, "WRTestReader");
    addReader("patient", 2, "WRTestPathReader");
    EXPECT_EQ(outcomeFor("refused.txt"), "patient");
    EXPECT_EQ(outcomeFor("throw.txt"), "patient");
    EXPECT_EQ(outcomeFor("odd.txt"), "patient");
    EXPECT_EQ(outcomeFor("nothing.txt"), "patient");
    EXPECT_EQ(outcomeFor("none.txt"), "patient");
    EXPECT_EQ(outcomeFor("encoding.txt"), "message");
}

TEST_F(DocumentOpener, TellsWhatTheLastReaderSaid) {
    addReader("fickle", 1, "WRTestReader");
    EXPECT_EQ(outcomeFor("refused.txt"), "message");
    EXPECT_EQ(outcomeFor("throw.txt"), "_The plug-in \"fickle\" failed: no ink");
    EXPECT_EQ(outcomeFor("odd.txt"), "_The plug-in \"fickle\" answered nothing.");
    EXPECT_EQ(outcomeFor("none.txt"), "_The plug-in \"fickle\" answered nothing.");
}

TEST_F(DocumentOpener, TakesAProfileWhoseClassIsNotThereForAFailedPlugIn) {
    addReader("empty", 1, "WRNoSuchClass");
    EXPECT_EQ(outcomeFor("a.txt"), "_The plug-in \"empty\" failed: there is no class \"WRNoSuchClass\"");
    addReader("path", 2, "WRTestPathReader");
    EXPECT_EQ(outcomeFor("a.txt"), "path");
}

TEST_F(DocumentOpener, AsksNoReaderAboutWhatIsNoFile) {
    addReader("path", 1, "WRTestPathReader");
    const std::string pipe = folder.path("pipe.txt");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(open(pipe));
    EXPECT_NE(opener->problem()->toUTF8().find("it is not a file"), std::string::npos);
    EXPECT_FALSE(open(folder.path("missing.txt")));
    EXPECT_NE(opener->problem()->toUTF8().find("no such file"), std::string::npos);
    EXPECT_FALSE(open(folder.path("")));
    EXPECT_NE(opener->problem()->toUTF8().find("a folder"), std::string::npos);
    EXPECT_EQ(opener->candidates()->count(), 0u);
}

TEST_F(DocumentOpener, TellsThatAFileMayNotBeRead) {
    if (geteuid() == 0) GTEST_SKIP() << "nothing is forbidden to this user";
    const std::string path = folder.write("secret.txt", "x");
    ASSERT_EQ(chmod(path.c_str(), 0), 0);
    EXPECT_FALSE(open(path));
    EXPECT_NE(opener->problem()->toUTF8().find("may not be read"), std::string::npos);
}

TEST_F(DocumentOpener, SaysThatThereIsNoReader) {
    EXPECT_EQ(outcomeFor("a.txt").find("_The document "), 0u);
    EXPECT_NE(opener->problem()->toUTF8().find("no reader"), std::string::npos);
}

}  // namespace
}  // namespace pelvor
