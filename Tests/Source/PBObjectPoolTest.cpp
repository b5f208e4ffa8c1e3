// SPDX-License-Identifier: Apache-2.0
#include "PBObjectPool.h"

#include "ActingObject.h"
#include "PBExternalObjectPool.h"

namespace {

TEST(PBObjectPoolTest, ARawPoolTakesReferencesOverAndGivesThemBack) {
    auto first = make<NSObject>(), second = make<NSObject>(), third = make<NSObject>();
    auto counts = [&] { return shown(first->retainCount(), second->retainCount(), third->retainCount()); };
    auto pool = PBObjectPool::initWithCapacity(2), none = PBObjectPool::initWithCapacity(0);
    for (auto* object : {&first, &second}) EXPECT_TRUE(pool->poolObject(Retained<Object>(*object).leak()));
    EXPECT_FALSE(pool->poolObject(third));
    EXPECT_EQ(counts(), "2 2 1");
    EXPECT_EQ(pool->popObject(), second);
    EXPECT_EQ(counts(), "2 1 1");
    pool = nullptr;
    EXPECT_EQ(counts(), "1 1 1");
    EXPECT_FALSE(PBObjectPool::initWithCapacity(1)->poolObject(nullptr));
    EXPECT_FALSE(none->poolObject(first));
    EXPECT_EQ(none->popObject(), nullptr);
}

TEST(PBObjectPoolTest, AnExternalPoolRetainsAndAnswersBorrowedObjects) {
    for (bool useLock : {false, true}) {
        auto object = make<NSObject>();
        auto pool = PBExternalObjectPool::initWithCapacity_useLock(1, useLock);
        EXPECT_EQ(pool->_lock != nullptr, useLock);
        EXPECT_TRUE(send<bool>(pool, "poolObject:"_sel, object.get()));
        EXPECT_FALSE(pool->poolObject(object));
        EXPECT_EQ(object->retainCount(), 2u);
        {
            AutoreleasePool inner;
            EXPECT_EQ(pool->popObject(), object.get());
            pool = nullptr;
            EXPECT_EQ(object->retainCount(), 2u);
        }
        EXPECT_EQ(object->retainCount(), 1u);
    }
}

TEST(PBObjectPoolTest, AnExternalPoolIsOneAlsoThroughAPointerToARawOne) {
    auto object = make<NSObject>();
    Retained<PBObjectPool> pool = PBExternalObjectPool::initWithCapacity_useLock(1, true);
    EXPECT_TRUE(pool->poolObject(object));
    EXPECT_EQ(object->retainCount(), 2u) << "not retained";
    pool->_lock->lock();
    std::thread waiting([&] { EXPECT_EQ(pool->popObject(), object); });
    EXPECT_FALSE(pool->isEmpty()) << "not locked";
    pool->_lock->unlock();
    waiting.join();
    EXPECT_TRUE(pool->isEmpty());
    EXPECT_EQ(object->retainCount(), 1u);
}

TEST(PBObjectPoolTest, WhatAPoolHoldsMayComeBackToItWhenThePoolEnds) {
    PBObjectPool* borrowed = nullptr;
    auto pool = PBExternalObjectPool::initWithCapacity_useLock(2, true);
    borrowed = pool.get();
    std::string heard;
    {
        auto object = ActingObject::endingWith(
            [&] { heard = shown(borrowed->poolObject(u"a"_ns), borrowed->popObject() == nullptr); });
        pool->poolObject(object);
    }
    pool = nullptr;
    EXPECT_EQ(heard, "0 1");
}

TEST(PBObjectPoolTest, TellsHowFullItIs) {
    auto pool = PBExternalObjectPool::initWithCapacity_useLock(3, false);
    pool->poolObject(u"a"_ns);
    EXPECT_EQ(pool->description()->toUTF8(),
              "<PBExternalObjectPool " + addressOf(pool) + "> 1 of 3, without a lock");
}

TEST(PBObjectPoolTest, ThreadsShareALockedPool) {
    auto pool = PBExternalObjectPool::initWithCapacity_useLock(3, true);
    onThreads(8, [&](int) {
        for (int step = 0; step < 500; ++step) {
            id object = pool->popObject();
            pool->poolObject(!object || step % 3 == 0 ? make<NSObject>().autorelease() : object);
        }
    });
    int left = 0;
    while (pool->popObject()) ++left;
    EXPECT_LE(left, 3);
}

}  // namespace
