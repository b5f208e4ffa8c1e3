// SPDX-License-Identifier: Apache-2.0
#include "PBLinkedList.h"

#include <deque>

#include "Prelude.h"
#include "RandomSteps.h"

namespace {

struct PBLinkedListTest : ::testing::Test {
    std::string text(PBLinkedList* of) {
        std::string result;
        PBLinkedListEnumerator* walk = of->objectEnumerator();
        while (id object = walk->nextObject()) result += shown(object);
        EXPECT_EQ(walk->nextObject(), nullptr);
        return result;
    }
    Retained<PBLinkedList> abc() {
        auto made = PBLinkedList::init();
        for (NSString* object : {u"a"_ns, u"b"_ns, u"c"_ns}) made->enqueueObject(object);
        return made;
    }
    Retained<PBLinkedList> list = abc();
};

TEST_F(PBLinkedListTest, IsAStackAndAQueue) {
    list->push(u"z"_ns);
    EXPECT_EQ(shown(list->top(), text(list)), "z zabc");
    EXPECT_EQ(shown(list->pop()), "z");
    EXPECT_EQ(shown(list->dequeueObject()), "a");
    EXPECT_EQ(shown(list.get()), "00: b \n01: c \n");
    for (int i = 0; i < 2; ++i) list->removeAllObjects();
    EXPECT_TRUE(list->isEmpty());
    EXPECT_EQ(shown(list->pop(), list->top(), list.get()), "(null) (null) ");
}

TEST_F(PBLinkedListTest, WhatIsPoppedLivesAsLongAsThePool) {
    auto object = make<NSObject>();
    list->push(object);
    {
        AutoreleasePool inner;
        list->pop();
        EXPECT_EQ(object->retainCount(), 2u);
    }
    EXPECT_EQ(object->retainCount(), 1u);
}

// The index that is the count is deliberately let through: there is no node, and the last is before it.
TEST_F(PBLinkedListTest, RaisesPastTheEndAndChangesNothing) {
    const std::string raised = std::string(NSRangeException) + ": index (";
    EXPECT_EQ(RAISED(list->objectAtIndex(3)), raised + "3) beyond bounds (3)");
    EXPECT_EQ(RAISED(list->nodeAtIndex_prevNode(4, nullptr)), raised + "4) beyond bounds (3)");
    EXPECT_EQ(RAISED(list->removeObjectsInRange({2, 2})), raised + "3) to remove beyond bounds (3)");
    EXPECT_EQ(RAISED(list->removeObjectAtIndex(3)), raised + "3) to remove beyond bounds (3)");
    EXPECT_EQ(RAISED(list->removeObjectsInRange({1, ~0u})), raised + "-1) to remove beyond bounds (3)");
    PBLinkedListNode *last = list->nodeAtIndex_prevNode(2, nullptr), *previous = nullptr;
    EXPECT_EQ(list->nodeAtIndex_prevNode(3, &previous), nullptr);
    EXPECT_EQ(previous, last);
    list->nodeAtIndex_prevNode(0, &previous);
    EXPECT_EQ(previous, nullptr);
    list->removeObjectsInRange({3, 0});
    list->removeNode_withPreviousNode(last, nullptr);
    list->removeNode_withPreviousNode(nullptr, last);
    EXPECT_EQ(text(list), "abc");
}

TEST_F(PBLinkedListTest, AnEnumeratorRemovesWhatItReturned) {
    for (std::string leaving : {"", "a", "b", "c", "ab", "bc", "ac", "abc"}) {
        auto copy = abc();
        std::string seen, left;
        PBLinkedListEnumerator* walk = copy->objectEnumerator();
        walk->removeLastObject();
        while (id object = walk->nextObject()) {
            bool leaves = leaving.find(shown(object)) != std::string::npos;
            seen += shown(object);
            if (!leaves) left += shown(object);
            for (int twice = 0; leaves && twice < 2; ++twice) walk->removeLastObject();
        }
        EXPECT_EQ(shown(seen, text(copy), copy->count()), shown("abc", left, left.size()));
    }
}

TEST_F(PBLinkedListTest, NodesMadeOnOneThreadMayGoOnAnother) {
    Retained<PBLinkedList> lists[4];
    onThreads(4, [&](int number) {
        lists[number] = PBLinkedList::init();
        for (int i = 0; i < 3000; ++i) lists[number]->push(u"a"_ns);
    });
    onThreads(4, [&](int number) {
        Retained<PBLinkedList> taken = std::move(lists[(number + 1) % 4]);
        PBLinkedListEnumerator* walk = taken->objectEnumerator();
        for (int i = 0; i < 1500 && walk->nextObject(); ++i) walk->removeLastObject();
        for (int i = 0; i < 1000; ++i) taken->push(u"b"_ns);
        EXPECT_EQ(taken->count(), 2500u);
    });
}

TEST_F(PBLinkedListTest, RandomStepsLeaveWhatAPlainListHolds) {
    std::mt19937 random(7);
    std::deque<id> model;
    auto made = PBLinkedList::init();
    for (int step = 0, steps = randomSteps(20'000); step < steps; ++step) {
        AutoreleasePool inner;
        id object = NSNumber::numberWithInt(step);
        auto size = static_cast<std::uint32_t>(model.size());
        std::uint32_t index = random() % (size + 1);
        unsigned choice = size > 40 ? 2 + random() % 4 : random() % 4;
        if (choice == 0) {
            made->push(object);
            model.push_front(object);
        } else if (choice == 1) {
            made->enqueueObject(object);
            model.push_back(object);
        } else if (choice == 2) {
            EXPECT_EQ(made->pop(), model.empty() ? nullptr : model.front());
            if (size) model.pop_front();
        } else {
            std::uint32_t length = std::min<std::uint32_t>(random() % 4, size - index);
            made->removeObjectsInRange({index, length});
            model.erase(model.begin() + index, model.begin() + index + length);
        }
        ASSERT_EQ(made->count(), model.size());
        if (model.empty()) continue;
        index = random() % made->count();
        ASSERT_EQ(made->objectAtIndex(index), model[index]);
    }
}

}  // namespace
