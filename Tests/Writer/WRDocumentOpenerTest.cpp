// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRDocumentOpener.h"

#include <sys/stat.h>
#include <unistd.h>

#include "TemporaryFolder.h"
#include "TestClasses.h"
#include "TestProfiles.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/WRDocumentSaver.h"

namespace {

// What plug-ins of the test do: one returns the path as the text.
NSDictionary* readPath(NSObject*, NSString* path, NSDictionary*) {
    return NSDictionary::of({{WRTextKey, path}});
}

NSDictionary* fault(NSString* error) {
    return NSDictionary::of({{WRErrorKey, error}, {WRMessageKey, u"message"_ns}});
}

// One returns what the path's last component without extension says: "refused", "encoding", "nothing", "odd"
// (a text that is a number), "throw", or, for any other name, no text.
NSDictionary* readAsNamed(NSObject*, NSString* path, NSDictionary*) {
    const std::string wish = shown(path->lastPathComponent()->stringByDeletingPathExtension());
    if (wish == "refused") return fault(WRErrorRefused);
    if (wish == "encoding") return fault(WRErrorEncoding);
    if (wish == "nothing") return NSDictionary::dictionary();
    if (wish == "odd") return NSDictionary::of({{WRTextKey, NSNumber::numberWithInt(1)}});
    if (wish == "throw") throw NSException("Fault", "no ink");
    return nullptr;
}

std::string writtenText;

NSDictionary* keepText(NSObject*, NSString* text, NSString*, NSDictionary*) {
    writtenText = shown(text);
    return NSDictionary::of({{WRByteCountKey, NSNumber::numberWithInt(1)}});
}

struct DocumentOpener : ::testing::Test {
    static void SetUpTestSuite() {
        makeClass<"readDocumentAtPath:options:", &readPath>("WRTestPathReader");
        makeClass<"readDocumentAtPath:options:", &readAsNamed>("WRTestReader");
        makeClass<"writeText:toPath:options:", &keepText>("WRTestWriter");
    }
    void addReader(const char* identifier, int order, NSString* className) {
        addProfile(registry, identifier, PBProfileDocumentReaderType, {u"txt"_ns}, order, className);
    }
    WRDocument* open(const std::string& path) {
        return opener->openDocumentAtPath_options(NSString::ofUTF8(path), NSDictionary::dictionary());
    }
    // Opens a file of that name and returns the identifier of the reader or the problem.
    std::string outcomeFor(const std::string& name) {
        WRDocument* document = open(folder.write(name, "content"));
        return document ? shown(document->reader()->identifier()) : shown(opener->problem());
    }
    void expectOutcomes(std::initializer_list<std::string_view> namesAndOutcomes) {
        expectAll(namesAndOutcomes, [this](const std::string& name) { return outcomeFor(name); });
    }
    TemporaryFolder folder;
    Retained<PBRegistry> registry = PBRegistry::init();
    Retained<WRDocumentOpener> opener = WRDocumentOpener::initWithProfiles(registry);
};

// A reader that does as the name of the file says, alone and with another one after it.
TEST_F(DocumentOpener, GoesOnToTheNextReaderUnlessTheDocumentIsAtFault) {
    addReader("fickle", 1, u"WRTestReader"_ns);
    expectOutcomes({"refused.txt -> message", "encoding.txt -> message",
                    "throw.txt -> _The plug-in \"fickle\" failed: no ink",
                    "odd.txt -> _The plug-in \"fickle\" returned nothing.",
                    "nothing.txt -> _The plug-in \"fickle\" returned nothing.",
                    "none.txt -> _The plug-in \"fickle\" returned nothing."});
    addReader("patient", 2, u"WRTestPathReader"_ns);
    expectOutcomes({"refused.txt -> patient", "encoding.txt -> message", "throw.txt -> patient",
                    "odd.txt -> patient", "nothing.txt -> patient", "none.txt -> patient"});
    EXPECT_EQ(shown(open(folder.path("odd.txt"))->text(), opener->candidates()->count(), opener->problem()),
              folder.path("odd.txt") + " 2 (null)");
}

TEST_F(DocumentOpener, TakesAProfileWhoseClassIsNotThereForAFailedPlugIn) {
    EXPECT_THAT(outcomeFor("a.txt"), HasSubstr("no reader"));
    addReader("empty", 1, u"WRNoSuchClass"_ns);
    EXPECT_EQ(outcomeFor("a.txt"), "_The plug-in \"empty\" failed: there is no class \"WRNoSuchClass\"");
    addReader("path", 2, u"WRTestPathReader"_ns);
    EXPECT_EQ(outcomeFor("a.txt"), "path");
}

TEST_F(DocumentOpener, AsksNoReaderAboutWhatIsNoFileOrMayNotBeRead) {
    addReader("path", 1, u"WRTestPathReader"_ns);
    auto expectProblem = [this](const char* name, const char* problem) {
        EXPECT_FALSE(open(folder.path(name))) << name;
        EXPECT_THAT(shown(opener->problem()), HasSubstr(problem));
        EXPECT_EQ(opener->candidates()->count(), 0u);
    };
    ASSERT_EQ(mkfifo(folder.path("pipe.txt").c_str(), 0600), 0);
    ASSERT_EQ(chmod(folder.write("secret.txt", "x").c_str(), 0), 0);
    expectProblem("pipe.txt", "it is no regular file");
    expectProblem("missing.txt", "the file does not exist");
    expectProblem("", "a folder");
    if (geteuid() != 0)
        expectProblem("secret.txt", "permission was denied");  // nothing is forbidden to that user
}

TEST_F(DocumentOpener, HasACounterpartThatHasTheBestWriterWriteTheText) {
    auto saver = WRDocumentSaver::initWithProfiles(registry);
    auto document = WRDocument::initWithPath_reader_answer(u"b.txt"_ns, nullptr,
                                                           NSDictionary::of({{WRTextKey, u"text"_ns}}));
    auto save = [&] { return saver->saveDocument_toPath_encoding(document, u"a.txt"_ns, nullptr); };
    EXPECT_FALSE(save());
    EXPECT_THAT(shown(saver->problem()), HasSubstr("no writer"));
    addProfile(registry, "reader", PBProfileDocumentWriterType, {u"*"_ns}, 1);
    EXPECT_FALSE(save());
    EXPECT_THAT(shown(saver->problem()), HasSubstr("_The plug-in \"reader\" failed: "));
    addProfile(registry, "text", PBProfileDocumentWriterType, {u"txt"_ns}, 2, u"WRTestWriter"_ns);
    EXPECT_TRUE(save());
    EXPECT_EQ(shown(writtenText, saver->writer()->identifier()), "text text");
}

}  // namespace
