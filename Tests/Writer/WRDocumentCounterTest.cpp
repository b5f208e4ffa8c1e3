// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRDocumentCounter.h"

#include "Foundation/ClockScope.h"
#include "Foundation/NSRunLoop.h"
#include "PBObserverSet.h"
#include "PBPostLoader.h"
#include "Prelude.h"
#include "TestPlugIns.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/WRDocument.h"

namespace pelvor {
namespace {

// A counter on the real main loop, with a clock that the loop moves where it would sleep.
class DocumentCounter : public testing::Test {
  protected:
    DocumentCounter() { registerLibrary(testPlugIns); }
    // The shared character sets are made by a load-time hook.
    static void SetUpTestSuite() { PBPostLoader::processClassesStartingRegistry(false); }
    ~DocumentCounter() override {
        counter->invalidate();
        NSNotificationCenter::defaultCenter()->removeObserver(observer);
    }
    void SetUp() override {
        counter->observers()->addObserver(observer);
        NSNotificationCenter::defaultCenter()->addObserver_selector_name_object(
            observer, "didCount:"_sel, WRDocumentDidCountNotification, counter);
    }
    static std::u16string words(std::size_t count) {
        std::u16string text;
        for (std::size_t i = 0; i < count; ++i) text += u"word ";
        return text;
    }
    bool turn() { return NSRunLoop::mainRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, nullptr); }
    void runToTheEnd() {
        while (counter->isCounting()) turn();
    }

    ClockScope clock;
    Retained<WRDocument> document = WRDocument::initWithPath_reader_answer(
        u"/a"_ns, nullptr, NSDictionary::of({{WRTextKey, NSString::of(words(100'000))}}));
    Retained<WRDocumentCounter> counter = WRDocumentCounter::initWithDocument(document);
    Retained<WRTestObserver> observer = make<WRTestObserver>();
};

TEST_F(DocumentCounter, TellsItsObserversAfterSlicesAndAtTheEnd) {
    counter->start();
    EXPECT_TRUE(turn());
    EXPECT_TRUE(counter->isCounting());
    EXPECT_EQ(observer->told, "advanced ");
    EXPECT_LT(counter->position(), document->text()->length());
    runToTheEnd();
    EXPECT_TRUE(observer->told.ends_with(" advanced finished posted ")) << observer->told;
    EXPECT_EQ(counter->count().words, 100'000u);
    EXPECT_EQ(clock.now(), 0);
}

TEST_F(DocumentCounter, CountsOnceAMomentAfterTheLastOfManyChanges) {
    counter->start();
    turn();
    for (int i = 0; i < 5; ++i) {
        clock.advance(0.1);
        document->replaceCharactersInRange_withString({0, 5}, u""_ns);
        NSRunLoop::mainRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode);
        EXPECT_EQ(observer->told, "advanced ") << "in the middle of the changes";
    }
    runToTheEnd();
    EXPECT_NEAR(clock.now(), 0.7, 1e-6);
    EXPECT_EQ(counter->count().words, 99'995u);
    EXPECT_EQ(observer->told.find("finished"), observer->told.rfind("finished"));
}

TEST_F(DocumentCounter, IsSilentOnceItIsInvalid) {
    counter->start();
    turn();
    counter->invalidate();
    document->replaceCharactersInRange_withString({0, 5}, u""_ns);
    clock.advance(1);
    while (NSRunLoop::mainRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode)) {
    }
    EXPECT_FALSE(counter->isCounting());
    EXPECT_EQ(observer->told, "advanced ");
}

}  // namespace
}  // namespace pelvor
