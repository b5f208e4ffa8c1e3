// SPDX-License-Identifier: Apache-2.0
// What is kept up with a text while it is written, in a loop without windows.
#include "Writer/Windows/WRTextWork.h"

#include "Foundation/NSRunLoop.h"
#include "PBPostLoader.h"
#include "Prelude.h"
#include "Text/NSTextStorage.h"
#include "Writer/TextMeasure.h"
#include "Writer/Windows/WRWordCounter.h"
#include "Writer/Windows/WindowsLibrary.h"

namespace {

// Edits of all sizes at random places, with counting going on in between.
TEST(WordCounterTest, CountsWhatIsThereAfterAnyEdits) {
    registerLibrary(windowsLibrary);
    PBPostLoader::processClassesStartingRegistry(false);
    AutoreleasePool pool;
    std::u16string text;
    for (int i = 0; i < 5'000; ++i) text += i % 12 ? u"word " : u"1,000\n";
    auto storage = NSTextStorage::initWithString(NSString::of(text));
    int told = 0;
    auto counter = WRWordCounter::create(storage, [&told] { ++told; });
    EXPECT_FALSE(counter->isComplete());
    const auto finish = [&] {
        while (!counter->isUpToDate())
            NSRunLoop::mainRunLoop()->runMode_beforeDate(NSDefaultRunLoopMode, nullptr);
    };
    finish();
    for (const NSRange selected : {NSRange{0, storage->length()}, {2, 1}, {4, 1}, {2, 9'000}, {0, 0}}) {
        counter->setSelection(selected);
        counter->workAtIdle();
        NSString* part = storage->string()->substringWithRange(selected);
        EXPECT_EQ(counter->selectedCount().value_or(0), countWordsInRange(part, {0, selected.length}))
            << selected;
        EXPECT_EQ(counter->selectedCount().has_value(), selected.length > 0);
    }
    std::mt19937 random(7);
    const auto upTo = [&](NSUInteger most) { return static_cast<NSUInteger>(random() % (most + 1)); };
    for (int i = 0; i < 300; ++i) {
        const NSUInteger length = storage->length(), start = upTo(length);
        const NSUInteger removed = std::min(upTo(i % 10 ? 20 : 9'000), length - start);
        std::u16string added;
        for (NSUInteger units = upTo(i % 10 ? 20 : 9'000); units > 0; --units)
            added += u"ab 1,\n$"[random() % 7];
        storage->replaceCharactersInRange_withString({start, removed}, NSString::of(added));
        if (i % 3 == 0) counter->workAtIdle();
        if (i % 20) continue;
        finish();
        ASSERT_EQ(counter->count(), countWordsInRange(storage->string(), {0, storage->length()})) << i;
    }
    const NSUInteger count = counter->count();
    told = 0;
    storage->replaceCharactersInRange_withString({storage->length() / 2, 0}, u" a b "_ns);
    EXPECT_EQ(counter->count(), count) << "what was known is shown meanwhile";
    finish();
    EXPECT_GE(told, 1);  // more often where the work takes several slices
    counter->stop();
}

}  // namespace
