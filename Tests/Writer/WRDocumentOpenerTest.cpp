// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRDocumentOpener.h"

#include <sys/stat.h>
#include <unistd.h>

#include "PBProfileKeys.h"
#include "Prelude.h"
#include "TemporaryFolder.h"
#include "TestPlugIns.h"
#include "Writer/WRDocumentSaver.h"

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

// A reader that does as the name of the file says, alone and with another one after it.
TEST_F(DocumentOpener, GoesOnToTheNextReaderUnlessTheDocumentIsAtFault) {
    const struct {
        const char* name;
        const char* alone;
        const char* followed;
    } cases[] = {
        {"refused.txt", "message", "patient"},
        {"encoding.txt", "message", "message"},
        {"throw.txt", "_The plug-in \"fickle\" failed: no ink", "patient"},
        {"odd.txt", "_The plug-in \"fickle\" answered nothing.", "patient"},
        {"nothing.txt", "_The plug-in \"fickle\" answered nothing.", "patient"},
        {"none.txt", "_The plug-in \"fickle\" answered nothing.", "patient"},
    };
    addReader("fickle", 1, "WRTestReader");
    for (const auto& expected : cases) EXPECT_EQ(outcomeFor(expected.name), expected.alone);
    addReader("patient", 2, "WRTestPathReader");
    for (const auto& expected : cases)
        EXPECT_EQ(outcomeFor(expected.name), expected.followed) << expected.name;
}

TEST_F(DocumentOpener, TakesAProfileWhoseClassIsNotThereForAFailedPlugIn) {
    EXPECT_NE(outcomeFor("a.txt").find("no reader"), std::string::npos);
    addReader("empty", 1, "WRNoSuchClass");
    EXPECT_EQ(outcomeFor("a.txt"), "_The plug-in \"empty\" failed: there is no class \"WRNoSuchClass\"");
    addReader("path", 2, "WRTestPathReader");
    EXPECT_EQ(outcomeFor("a.txt"), "path");
}

TEST_F(DocumentOpener, AsksNoReaderAboutWhatIsNoFileOrMayNotBeRead) {
    addReader("path", 1, "WRTestPathReader");
    const std::string pipe = folder.path("pipe.txt"), secret = folder.write("secret.txt", "x");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    ASSERT_EQ(chmod(secret.c_str(), 0), 0);
    const std::pair<std::string, const char*> cases[] = {{pipe, "it is not a file"},
                                                         {folder.path("missing.txt"), "no such file"},
                                                         {folder.path(""), "a folder"},
                                                         {secret, "may not be read"}};
    for (const auto& [path, problem] : cases) {
        if (path == secret && geteuid() == 0) continue;  // nothing is forbidden to this user
        EXPECT_FALSE(open(path));
        EXPECT_NE(opener->problem()->toUTF8().find(problem), std::string::npos);
        EXPECT_EQ(opener->candidates()->count(), 0u);
    }
}

TEST_F(DocumentOpener, HasACounterpartThatHasTheBestWriterWriteTheText) {
    auto saver = WRDocumentSaver::initWithProfiles(registry);
    auto save = [&] {
        return saver->saveText_toPath_options(u"text"_ns, u"a.txt"_ns, NSDictionary::dictionary());
    };
    EXPECT_FALSE(save());
    EXPECT_THAT(saver->problem()->toUTF8(), HasSubstr("no writer"));
    addProfile(registry, "reader", PBProfileDocumentWriterType, {"*"}, 1, "WRTestPathReader");
    EXPECT_FALSE(save());
    EXPECT_THAT(saver->problem()->toUTF8(), HasSubstr("_The plug-in \"reader\" failed: "));
    addProfile(registry, "text", PBProfileDocumentWriterType, {"txt"}, 2, "WRTestWriter");
    EXPECT_TRUE(save());
    EXPECT_EQ(WRTestWriter::writtenText->toUTF8(), "text");
    EXPECT_EQ(saver->writer()->identifier()->description()->toUTF8(), "text");
}

}  // namespace
}  // namespace pelvor
