// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRDocumentSaver.h"

#include <gtest/gtest.h>

#include "Foundation/NSDictionary.h"
#include "PBProfileKeys.h"
#include "Runtime/AutoreleasePool.h"
#include "TestPlugIns.h"

namespace pelvor {
namespace {

class DocumentSaver : public testing::Test {
  protected:
    DocumentSaver() { registerLibrary(testPlugIns); }
    NSDictionary* save(NSString* path) {
        return saver->saveText_toPath_options(u"text"_ns, path, NSDictionary::dictionary());
    }
    AutoreleasePool pool;
    Retained<PBRegistry> registry = PBRegistry::init();
    Retained<WRDocumentSaver> saver = WRDocumentSaver::initWithProfiles(registry);
};

TEST_F(DocumentSaver, HasTheBestWriterWriteTheText) {
    addProfile(registry, "any", PBProfileDocumentWriterType, {"*"}, 1, "WRNoSuchClass");
    addProfile(registry, "text", PBProfileDocumentWriterType, {"txt"}, 2, "WRTestWriter");
    EXPECT_TRUE(save(u"a.txt"_ns));
    EXPECT_EQ(WRTestWriter::writtenText->toUTF8(), "text");
    EXPECT_EQ(saver->writer()->identifier()->description()->toUTF8(), "text");
}

TEST_F(DocumentSaver, TellsWhyNothingWasWritten) {
    EXPECT_FALSE(save(u"a.txt"_ns));
    EXPECT_NE(saver->problem()->toUTF8().find("no writer"), std::string::npos);
    addProfile(registry, "reader", PBProfileDocumentWriterType, {"txt"}, 1, "WRTestPathReader");
    EXPECT_FALSE(save(u"a.txt"_ns));
    EXPECT_NE(saver->problem()->toUTF8().find("_The plug-in \"reader\" failed: "), std::string::npos);
}

}  // namespace
}  // namespace pelvor
