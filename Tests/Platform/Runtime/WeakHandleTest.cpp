// SPDX-License-Identifier: Apache-2.0
#include "Runtime/WeakHandle.h"

#include "Creatures.h"

namespace {

TEST(WeakHandleTest, KnowsWhenItsObjectIsGone) {
    auto object = make<NSObject>();
    WeakHandle first(object), second(object), none(nullptr), moved;
    EXPECT_EQ(object->retainCount(), 1u);
    EXPECT_EQ(first.object(), object);
    EXPECT_EQ(none.object(), nullptr);
    moved = std::move(first);
    Retained<Object> kept = moved.object();
    object = nullptr;
    EXPECT_EQ(second.object(), kept);
    kept = nullptr;
    for (WeakHandle* handle : {&first, &second, &moved}) EXPECT_EQ(handle->object(), nullptr);
}

TEST(WeakHandleTest, AnObjectAtTheSamePlaceIsAnother) {
    std::vector<WeakHandle> handles;
    for (int i = 0; i < 100; ++i) {
        auto object = Counted::initWithName("");
        handles.emplace_back(object);
        handles.emplace_back(object);
        if (i % 2) handles.erase(handles.begin());
        EXPECT_EQ(handles.back().object(), object);
        EXPECT_EQ(handles.front().object(), i == 0 ? object.get() : nullptr);
    }
    for (const WeakHandle& handle : handles) EXPECT_EQ(handle.object(), nullptr);
}

// Each round ends an object on one thread while others ask for it and drop their handles.
TEST(WeakHandleTest, AnObjectEndsOnOneThreadWhileOthersAskForIt) {
    for (int round = 0; round < 200; ++round) {
        auto object = make<NSObject>();
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([handle = WeakHandle(object)]() mutable {
                for (int step = 0; step < 5; ++step) {
                    Retained<Object> found = handle.object();
                    EXPECT_TRUE(!found || found->retainCount() >= 1);
                }
            });
        object = nullptr;
        for (std::thread& thread : threads) thread.join();
    }
}

}  // namespace
