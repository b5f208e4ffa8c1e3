// SPDX-License-Identifier: Apache-2.0
#include "Writer/WRDocumentCounter.h"

#include "Foundation/ClockScope.h"
#include "Foundation/NSRunLoop.h"
#include "PBObserverSet.h"
#include "PBPostLoader.h"
#include "TestClasses.h"
#include "Writer/PlugInProtocol.h"
#include "Writer/WRDocument.h"

namespace {

std::string told;

// What an observer of the counter is told.
void noteAdvance(NSObject*, id counter) { told += "advanced "; }
void noteFinish(NSObject*, id counter) { told += "finished "; }

// A counter on the real main loop, with a clock that the loop moves where it would sleep.
struct DocumentCounter : ::testing::Test {
    // The shared character sets are made by a load-time hook.
    static void SetUpTestSuite() {
        PBPostLoader::processClassesStartingRegistry(false);
        Class* cls = makeClass<"counterDidAdvance:", &noteAdvance>("WRTestObserver");
        addMethod<"counterDidFinish:", &noteFinish>(cls);
    }
    DocumentCounter() {
        told = "";
        counter->observers()->addObserver(observer);
        listener->reaction = [] { told += "posted "; };
        counter->start();
    }
    ~DocumentCounter() override { counter->invalidate(); }
    static NSString* words(std::size_t count) {
        std::u16string text;
        for (std::size_t i = 0; i < count; ++i) text += u"word ";
        return NSString::of(text);
    }
    bool turn() { return NSRunLoop::mainRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, nullptr); }
    bool doWhatIsDue() { return NSRunLoop::mainRunLoop()->performReadyWorkForMode(NSDefaultRunLoopMode); }
    void runToTheEnd() {
        while (counter->isCounting()) turn();
    }
    void removeAWord() { document->replaceCharactersInRange_withString({0, 5}, u""_ns); }

    ClockScope clock;
    Retained<WRDocument> document = WRDocument::initWithPath_reader_answer(
        u"/a"_ns, nullptr, NSDictionary::of({{WRTextKey, words(100'000)}}));
    Retained<WRDocumentCounter> counter = WRDocumentCounter::initWithDocument(document);
    Retained<Object> observer = instanceOf(classNamed("WRTestObserver"));
    Retained<Listener> listener = Listener::to(WRDocumentDidCountNotification, counter);
};

TEST_F(DocumentCounter, TellsItsObserversAfterSlicesAndAtTheEnd) {
    EXPECT_TRUE(turn());
    EXPECT_TRUE(counter->isCounting());
    EXPECT_EQ(told, "advanced ");
    EXPECT_LT(counter->position(), document->text()->length());
    runToTheEnd();
    EXPECT_THAT(told, EndsWith(" advanced finished posted "));
    EXPECT_EQ(counter->count().words, 100'000u);
    EXPECT_EQ(clock.now(), 0);
}

TEST_F(DocumentCounter, CountsOnceAMomentAfterTheLastOfManyChanges) {
    turn();
    for (int i = 0; i < 5; ++i) {
        clock.advance(0.1);
        removeAWord();
        doWhatIsDue();
        EXPECT_EQ(told, "advanced ") << "in the middle of the changes";
    }
    runToTheEnd();
    EXPECT_NEAR(clock.now(), 0.7, 1e-6);
    EXPECT_EQ(counter->count().words, 99'995u);
    EXPECT_EQ(told.find("finished"), told.rfind("finished"));
}

TEST_F(DocumentCounter, IsSilentOnceItIsInvalid) {
    turn();
    counter->invalidate();
    removeAWord();
    clock.advance(1);
    while (doWhatIsDue()) continue;
    EXPECT_FALSE(counter->isCounting());
    EXPECT_EQ(told, "advanced ");
}

}  // namespace
