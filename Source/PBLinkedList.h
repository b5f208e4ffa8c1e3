// SPDX-License-Identifier: Apache-2.0
// PBLinkedList: a singly linked list, its nodes, and an enumerator that removes what it has returned.
#pragma once

#include "Foundation/NSEnumerator.h"

namespace pelvor {

class PBLinkedListEnumerator;

/// A place in a list. It retains its object; the list owns its nodes.
class PELVOR_EXPORT PBLinkedListNode final : public NSObject {
    PELVOR_CLASS(PBLinkedListNode, NSObject);

  public:
    static Retained<PBLinkedListNode> initWithObject(id object, Class* cls = classObject());

    Retained<Object> object;
    /// The node behind this one, borrowed; null for the last node and for one that was removed.
    Unretained<PBLinkedListNode> next = nullptr;

  protected:
    PBLinkedListNode() = default;
    ~PBLinkedListNode() = default;

  private:
    // Nodes that a thread makes one after the other stand one after the other in memory.
    static void* operator new(std::size_t size);
    static void operator delete(void* memory) noexcept;
};

/// A list of objects, which it retains. It is a stack (`push`, `pop`), a queue (`enqueueObject`,
/// `dequeueObject`), both of them mixed, and a sequence with indexes:
///
///     auto waiting = PBLinkedList::init();
///     waiting->enqueueObject(first);
///     waiting->enqueueObject(second);
///     id next = waiting->dequeueObject();  // first
///
/// The head is at hand. Every other place, the end among them, is reached by walking from the head.
///
/// An object that ends because it is removed may change the list: what goes is out of the list before the
/// first of it is released. For one thread at a time.
class PELVOR_EXPORT PBLinkedList : public NSObject {
    PELVOR_CLASS(PBLinkedList, NSObject);
    PELVOR_CREATORS(init);

  public:
    static Retained<PBLinkedList> init(Class* cls = classObject());

    NSUInteger count() { return _count; }
    bool isEmpty() { return _count == 0; }

    // Stack and queue. Results are borrowed, and null for an empty list. An object that is taken out lives at
    // least as long as the current autorelease pool.

    /// Puts the object at the head.
    void push(id object);
    /// Takes out the object at the head.
    id pop();
    /// The object at the head, which stays.
    id top();
    /// Puts the object at the tail.
    void enqueueObject(id object);
    /// Takes out the object at the head, as `pop` does.
    id dequeueObject();

    // C++ only
    /// Takes out the object at the head. The result is owned.
    Retained<Object> takeTop();

    // Indexes. An operation that would reach past the end raises NSRangeException and changes nothing.

    id objectAtIndex(NSUInteger index);
    /// Returns the node at the index, borrowed, and writes the node before it (null for the head) to
    /// `previous` unless that is null. The index may be the count: the result is null, and the last node is
    /// before it.
    PBLinkedListNode* nodeAtIndex_prevNode(NSUInteger index, PBLinkedListNode** previous);
    /// Removes the node. `previous` is the node before it, null for the head; does nothing if it is not.
    void removeNode_withPreviousNode(PBLinkedListNode* node, PBLinkedListNode* previous);
    void removeObjectAtIndex(NSUInteger index);
    void removeObjectsInRange(NSRange range);
    void removeAllObjects();

    /// Returns a borrowed enumerator over the list. The list must outlive it.
    PBLinkedListEnumerator* objectEnumerator();
    /// A line for each object, index and description: "00: page ".
    NSString* description() override;

  protected:
    PBLinkedList() = default;
    ~PBLinkedList() { removeAllObjects(); }

  private:
    friend class PBLinkedListEnumerator;

    NSUInteger _count = 0;
    std::uint32_t _removals = 0;        // how often something was removed, by which enumerators notice it
    PBLinkedListNode* _head = nullptr;  // owned, as is every node behind it
};

/// A walk over a list that can remove what it has returned:
///
///     PBLinkedListEnumerator* walk = waiting->objectEnumerator();
///     while (id object = walk->nextObject())
///         if (isDone(object)) walk->removeLastObject();
///
/// It does not retain the list. During the walk the list may change only by `removeLastObject`, by what the
/// end of an object does that was removed in this way, and by additions at the tail before the last object
/// has been returned.
class PELVOR_EXPORT PBLinkedListEnumerator final : public NSEnumerator {
    PELVOR_CLASS(PBLinkedListEnumerator, NSEnumerator);

  public:
    /// Makes a walk that begins at `node`, which may be null.
    static Retained<PBLinkedListEnumerator> initWithList_node(PBLinkedList* list, PBLinkedListNode* node,
                                                              Class* cls = classObject());

    id nextObject() override;
    /// Removes the object that was returned last from the list. A second call for the same object does
    /// nothing.
    void removeLastObject();

  protected:
    PBLinkedListEnumerator() = default;
    ~PBLinkedListEnumerator() = default;

  private:
    void findPlaceAgain();

    Unretained<PBLinkedList> _list = nullptr;
    Unretained<PBLinkedListNode> _prev = nullptr;
    Unretained<PBLinkedListNode> _cur = nullptr;
    Unretained<PBLinkedListNode> _next = nullptr;
    bool _isCurRemoved = false;
};

}  // namespace pelvor
