// SPDX-License-Identifier: Apache-2.0
// PBLinkedList: a singly linked list, its nodes, and an enumerator that removes what it has returned.
#pragma once

#include "Foundation/NSEnumerator.h"

namespace pelvor {

class PBLinkedListEnumerator;

/// A place in a list.
class PELVOR_EXPORT PBLinkedListNode final : public NSObject {
    PELVOR_CLASS(PBLinkedListNode, NSObject);

  public:
    static Retained<PBLinkedListNode> initWithObject(id object, Class* cls = classObject());

    Retained<Object> object;
    /// Borrowed: the list owns its nodes.
    PBLinkedListNode* next = nullptr;

  protected:
    PBLinkedListNode() = default;
    ~PBLinkedListNode() = default;

  private:
    // Nodes that a thread makes one after the other stand one after the other in memory.
    static void* operator new(std::size_t size);
    static void operator delete(void* memory) noexcept;
};

/// A list of objects, which it retains: a stack and a queue, also mixed, and a sequence with indexes. The
/// head is at hand; every other place, the end among them, is reached by walking. One thread at a time.
class PELVOR_EXPORT PBLinkedList : public NSObject {
    PELVOR_CLASS(PBLinkedList, NSObject);

  public:
    static Retained<PBLinkedList> init(Class* cls = classObject());

    NSUInteger count() { return _count; }
    bool isEmpty() { return _count == 0; }

    // At the head. The results are borrowed, none for an empty list; what is taken out is left to the
    // current autorelease pool.

    void push(id object);
    id pop();
    id top();
    /// Puts the object at the tail.
    void enqueueObject(id object);
    /// The same as `pop`.
    id dequeueObject();

    // C++ only
    /// What `pop` takes out, owned.
    Retained<Object> takeTop();

    // Indexes. All raise NSRangeException and change nothing when they reach past the end.

    id objectAtIndex(NSUInteger index);
    /// The node, borrowed, and, if asked for, the one before it. At the index that is the count there is
    /// no node, and the last one is before it.
    PBLinkedListNode* nodeAtIndex_prevNode(NSUInteger index, PBLinkedListNode** previous);
    /// Takes the node out; `previous` is the node before it, none for the head. Nothing if it is not.
    void removeNode_withPreviousNode(PBLinkedListNode* node, PBLinkedListNode* previous);
    void removeObjectAtIndex(NSUInteger index);
    void removeObjectsInRange(NSRange range);
    void removeAllObjects();

    /// An enumerator, borrowed, over the list, which must outlive it.
    PBLinkedListEnumerator* objectEnumerator();
    /// A line "00: object " for each object.
    NSString* description() override;

  protected:
    PBLinkedList() = default;
    ~PBLinkedList() { removeAllObjects(); }

  private:
    NSUInteger _count = 0;
    PBLinkedListNode* _head = nullptr;  // owned, as every node that follows
};

/// A walk over a list, which it does not keep. The list may change meanwhile only through
/// `removeLastObject`, and by additions at its end as long as the last object has not been returned.
class PELVOR_EXPORT PBLinkedListEnumerator final : public NSEnumerator {
    PELVOR_CLASS(PBLinkedListEnumerator, NSEnumerator);

  public:
    /// A walk that begins at `node`.
    static Retained<PBLinkedListEnumerator> initWithList_node(PBLinkedList* list, PBLinkedListNode* node,
                                                              Class* cls = classObject());

    id nextObject() override;
    /// Takes the object that was returned last out of the list. Nothing the second time.
    void removeLastObject();

  protected:
    PBLinkedListEnumerator() = default;
    ~PBLinkedListEnumerator() = default;

  private:
    PBLinkedList* _list = nullptr;
    PBLinkedListNode* _prev = nullptr;
    PBLinkedListNode* _cur = nullptr;
    PBLinkedListNode* _next = nullptr;
    bool _isCurRemoved = false;
};

}  // namespace pelvor
