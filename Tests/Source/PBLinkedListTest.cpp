// SPDX-License-Identifier: Apache-2.0
#include "PBLinkedList.h"

#include "ActingObject.h"
#include "PBLinkedListEnumerator.h"
#include "PBLinkedListNode.h"
#include "Prelude.h"

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
        taken->removeObjectsInRange({500, 1500});
        for (int i = 0; i < 1000; ++i) taken->push(u"b"_ns);
        EXPECT_EQ(taken->count(), 2500u);
    });
}

// The list is a, an object, b and c; the object's end changes the list.
TEST_F(PBLinkedListTest, WhatIsRemovedMayChangeTheListWhenItEnds) {
    struct Row {
        const char* name;
        std::function<void()> remove, end;
        const char* left;
    };
    auto removeOne = [this] { list->removeObjectAtIndex(1); };
    auto removeTwo = [this] { list->removeObjectsInRange({1, 2}); };
    auto removeAll = [this] { list->removeAllObjects(); };
    auto removeFirst = [this] { list->removeObjectAtIndex(0); };
    auto walk = [this] {
        PBLinkedListEnumerator* walk = list->objectEnumerator();
        while (id object = walk->nextObject())
            if (cast<ActingObject>(object) || object->isEqual(u"b"_ns)) walk->removeLastObject();
    };
    const Row rows[] = {
        {"one, then all", removeOne, removeAll, ""},
        {"two, then the last", removeTwo, removeOne, "a"},
        {"all, then all", removeAll, removeAll, ""},
        {"all, then one is added", removeAll, [this] { list->push(u"z"_ns); }, "z"},
        {"all, then the list ends", removeAll, [this] { list = nullptr; }, ""},
        {"in a walk, then the next", walk, removeOne, "ac"},
        {"in a walk, then the one before", walk, removeFirst, "c"},
        {"in a walk, then those around it", walk, [=] { removeFirst(), removeFirst(); }, "c"},
        {"in a walk, then all", walk, removeAll, ""},
    };
    for (const Row& row : rows) {
        AutoreleasePool pool;
        list = PBLinkedList::init();
        for (id object :
             {id(u"a"_ns), id(ActingObject::endingWith(row.end).autorelease()), id(u"b"_ns), id(u"c"_ns)})
            list->enqueueObject(object);
        pool.drain();  // the list has the last reference
        row.remove();
        EXPECT_EQ(list ? shown(text(list), list->count()) : " 0",
                  shown(std::string(row.left), std::strlen(row.left)))
            << row.name;
    }
}

TEST_F(PBLinkedListTest, RemovesRangesAtEachPlace) {
    expectAll({"0 0 -> abc", "0 1 -> bc", "1 1 -> ac", "2 1 -> ab", "0 2 -> c", "1 2 -> a", "0 3 -> "},
              [&](const std::string& row) {
                  list = abc();
                  list->removeObjectsInRange({NSUInteger(row[0] - '0'), NSUInteger(row[2] - '0')});
                  std::string left = text(list);
                  EXPECT_EQ(list->count(), left.size()) << row;
                  list->enqueueObject(u"z"_ns);
                  EXPECT_EQ(shown(list->objectAtIndex(list->count() - 1)), "z") << row;
                  return left;
              });
}

}  // namespace
