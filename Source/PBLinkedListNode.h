// SPDX-License-Identifier: Apache-2.0
// PBLinkedListNode: a place in a linked list.
#pragma once

#include "Runtime/Class.h"

namespace pelvor {

/// A place in a PBLinkedList. A node retains its object, and the list owns its nodes:
///
///     for (PBLinkedListNode* node = list->nodeAtIndex_prevNode(0, nullptr); node; node = node->next)
///         use(node->object);
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

}  // namespace pelvor
