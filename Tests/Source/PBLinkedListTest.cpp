// SPDX-License-Identifier: Apache-2.0
#include "PBLinkedList.h"

#include <deque>

#include "Prelude.h"
#include "RandomSteps.h"

namespace pelvor::testing {
namespace {

class PBLinkedListTest : public ::testing::Test {
  protected:
    std::string text(PBLinkedList* of) {
        std::string result;
        PBLinkedListEnumerator* walk = of->objectEnumerator();
        while (id object = walk->nextObject()) result += object->description()->toUTF8();
        EXPECT_EQ(walk->nextObject(), nullptr);
        return result;
    }
    Retained<PBLinkedList> listOf(std::initializer_list<id> objects) {
        auto made = PBLinkedList::init();
        for (id object : objects) made->enqueueObject(object);
        return made;
    }
    Retained<PBLinkedList> list = listOf({u"a"_ns, u"b"_ns, u"c"_ns});
};

TEST_F(PBLinkedListTest, IsAStackAndAQueue) {
    list->push(u"z"_ns);
    EXPECT_EQ(list->top()->description()->toUTF8(), "z");
    EXPECT_EQ(text(list), "zabc");
    EXPECT_EQ(list->pop()->description()->toUTF8(), "z");
    EXPECT_EQ(list->dequeueObject()->description()->toUTF8(), "a");
    EXPECT_EQ(list->description()->toUTF8(), "00: b \n01: c \n");
    list->removeAllObjects();
    list->removeAllObjects();
    EXPECT_TRUE(list->isEmpty());
    EXPECT_EQ(list->pop(), nullptr);
    EXPECT_EQ(list->top(), nullptr);
    EXPECT_EQ(list->description()->toUTF8(), "");
}

TEST_F(PBLinkedListTest, WhatIsPoppedLivesAsLongAsThePool) {
    auto object = NSObject::init();
    auto stack = PBLinkedList::init();
    stack->push(object);
    {
        AutoreleasePool inner;
        stack->pop();
        EXPECT_EQ(object->retainCount(), 2u);
    }
    EXPECT_EQ(object->retainCount(), 1u);
}

// The index that is the count is deliberately let through: there is no node, and the last is before it.
TEST_F(PBLinkedListTest, TheNodePastTheLastIsNone) {
    PBLinkedListNode* previous = nullptr;
    EXPECT_EQ(list->nodeAtIndex_prevNode(3, &previous), nullptr);
    EXPECT_EQ(previous, list->nodeAtIndex_prevNode(2, nullptr));
    list->nodeAtIndex_prevNode(0, &previous);
    EXPECT_EQ(previous, nullptr);
}

TEST_F(PBLinkedListTest, RaisesPastTheEndAndChangesNothing) {
    const struct {
        std::function<void()> operation;
        const char* reason;
    } cases[] = {
        {[&] { list->objectAtIndex(3); }, "index (3) beyond bounds (3)"},
        {[&] { list->nodeAtIndex_prevNode(4, nullptr); }, "index (4) beyond bounds (3)"},
        {[&] {
             list->removeObjectsInRange({2, 2});
         },
         "index (3) to remove beyond bounds (3)"},
        {[&] { list->removeObjectAtIndex(3); }, "index (3) to remove beyond bounds (3)"},
        {[&] {
             list->removeObjectsInRange({1, 0xFFFFFFFF});
         },
         "index (-1) to remove beyond bounds (3)"},
        {[&] {
             list->removeObjectsInRange({3, 0});
         },
         "nothing raised"},
        {[&] { list->removeNode_withPreviousNode(list->nodeAtIndex_prevNode(2, nullptr), nullptr); },
         "nothing raised"},
        {[&] { list->removeNode_withPreviousNode(nullptr, list->nodeAtIndex_prevNode(2, nullptr)); },
         "nothing raised"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(reasonOf(NSRangeException, c.operation), c.reason);
        EXPECT_EQ(text(list), "abc");
    }
}

TEST_F(PBLinkedListTest, AnEnumeratorRemovesWhatItReturned) {
    for (std::string leaving : {"", "a", "b", "c", "ab", "bc", "ac", "abc"}) {
        auto copy = listOf({u"a"_ns, u"b"_ns, u"c"_ns});
        std::string seen, left;
        PBLinkedListEnumerator* walk = copy->objectEnumerator();
        walk->removeLastObject();
        while (id object = walk->nextObject()) {
            std::string name = object->description()->toUTF8();
            seen += name;
            if (leaving.find(name) == std::string::npos)
                left += name;
            else
                for (int twice = 0; twice < 2; ++twice) walk->removeLastObject();
        }
        EXPECT_EQ(seen, "abc");
        EXPECT_EQ(text(copy), left);
        EXPECT_EQ(copy->count(), left.size());
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
        std::uint32_t index = size ? random() % size : 0;
        switch (size > 40 ? 2 + random() % 4 : random() % 4) {
            case 0:
                made->push(object), model.push_front(object);
                break;
            case 1:
                made->enqueueObject(object), model.push_back(object);
                break;
            case 2: {
                id expected = model.empty() ? nullptr : model.front();
                EXPECT_EQ(made->pop(), expected);
                if (expected) model.pop_front();
                break;
            }
            default: {
                std::uint32_t length = size ? random() % std::min(4u, size - index + 1) : 0;
                length = std::min(length, size - index);
                made->removeObjectsInRange({index, length});
                model.erase(model.begin() + index, model.begin() + index + length);
            }
        }
        ASSERT_EQ(made->count(), model.size());
        if (!model.empty()) {
            index = random() % made->count();
            ASSERT_EQ(made->objectAtIndex(index), model[index]);
        }
    }
}

}  // namespace
}  // namespace pelvor::testing
