// SPDX-License-Identifier: Apache-2.0
// PBLinkedListEnumerator: a walk over a linked list that can remove what it has returned.
#pragma once

#include "Foundation/NSEnumerator.h"

namespace pelvor {

class PBLinkedList;
class PBLinkedListNode;

/// A walk over a list that can remove what it has returned:
///
///     PBLinkedListEnumerator* walk = waiting->objectEnumerator();
///     while (id object = walk->nextObject())
///         if (isDone(object)) walk->removeLastObject();
///
/// The enumerator does not retain the list. During the walk the list may change only in three ways: by
/// `removeLastObject`; by an object that ends because `removeLastObject` removed it; and by additions at the
/// tail, as long as the last object has not been returned.
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
