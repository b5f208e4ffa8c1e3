// SPDX-License-Identifier: Apache-2.0
// PBLinkedList: a singly linked list.
#pragma once

#include "Foundation/NSRange.h"
#include "Runtime/Class.h"

namespace pelvor {

class PBLinkedListEnumerator;
class PBLinkedListNode;

/// A list of objects, which it retains. It is a stack (`push`, `pop`), a queue (`enqueueObject`,
/// `dequeueObject`), both of them mixed, and a sequence with indexes:
///
///     auto waiting = PBLinkedList::init();
///     waiting->enqueueObject(first);
///     waiting->enqueueObject(second);
///     id next = waiting->dequeueObject();  // first
///
/// An operation at the head takes the same time for every list. Any other place, such as the end, is reached
/// by a walk from the head.
///
/// An object that ends because it is removed may change the list: an operation takes all objects that it
/// removes out of the list before it releases the first one. For one thread at a time.
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
    /// Removes the node. `previous` is the node before it, null for the head. Does nothing if `previous` is
    /// another node.
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

}  // namespace pelvor
