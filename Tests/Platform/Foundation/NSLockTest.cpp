// SPDX-License-Identifier: Apache-2.0
#include "Foundation/NSLock.h"

#include "Foundation/NSConditionLock.h"
#include "Foundation/NSRecursiveLock.h"
#include "Prelude.h"

namespace {

std::vector<Retained<NSObject>> locksOfAllKinds() {
    return {NSLock::init(), NSRecursiveLock::init(), NSConditionLock::initWithCondition(0)};
}

template <class Call>
auto onAnotherThread(Call call) {
    decltype(call()) result;
    std::thread([&] { result = call(); }).join();
    return result;
}

TEST(NSLockTest, LocksOfAllKindsKeepThreadsApart) {
    for (auto& lock : locksOfAllKinds()) {
        int count = 0;
        onThreads(4, [&](int) {
            for (int i = 0; i < 500; ++i) {
                send(lock, "lock"_sel);
                ++count;
                send(lock, "unlock"_sel);
            }
        });
        EXPECT_EQ(count, 2000) << lock->isa()->name();
    }
}

TEST(NSLockTest, ALockThatAnotherThreadHoldsIsNotTaken) {
    for (auto& lock : locksOfAllKinds()) {
        auto isTakenBefore = [&](NSDate* date) { return send<bool>(lock, "lockBeforeDate:"_sel, date); };
        const bool isRecursive = lock->isa() == NSRecursiveLock::classObject();
        ASSERT_TRUE(send<bool>(lock, "tryLock"_sel));
        EXPECT_TRUE(!isRecursive || send<bool>(lock, "tryLock"_sel));
        for (int held = isRecursive ? 2 : 1; held > 0; --held) {
            EXPECT_FALSE(onAnotherThread([&] { return send<bool>(lock, "tryLock"_sel); }));
            EXPECT_FALSE(onAnotherThread([&] { return isTakenBefore(NSDate::distantPast()); }));
            send(lock, "unlock"_sel);
        }
        EXPECT_TRUE(onAnotherThread([&] {
            const bool isTaken = isTakenBefore(NSDate::distantFuture());
            send(lock, "unlock"_sel);
            return isTaken;
        }));
    }
}

TEST(NSLockTest, AConditionHandsTheLockFromOneThreadToTheOther) {
    enum { empty, full };
    auto lock = NSConditionLock::initWithCondition(empty);
    int box = 0, sum = 0;
    std::thread producer([&] {
        for (int i = 1; i <= 100; ++i) {
            lock->lockWhenCondition(empty);
            box = i;
            lock->unlockWithCondition(full);
        }
    });
    for (int i = 1; i <= 100; ++i) {
        lock->lockWhenCondition(full);
        sum += box;
        lock->unlockWithCondition(empty);
    }
    producer.join();
    EXPECT_EQ(sum, 5050);
    EXPECT_EQ(lock->condition(), empty);
}

TEST(NSLockTest, ALockUnderAnotherConditionIsNotTaken) {
    auto lock = NSConditionLock::initWithCondition(1);
    EXPECT_FALSE(lock->tryLockWhenCondition(2));
    EXPECT_FALSE(lock->lockWhenCondition_beforeDate(2, NSDate::date()));
    ASSERT_TRUE(lock->lockWhenCondition_beforeDate(1, NSDate::distantFuture()));
    EXPECT_FALSE(lock->tryLock() || lock->tryLockWhenCondition(1));
    lock->unlock();
    EXPECT_TRUE(lock->tryLockWhenCondition(1));
    lock->unlockWithCondition(2);
    EXPECT_EQ(lock->condition(), 2);
}

}  // namespace
