// SPDX-License-Identifier: Apache-2.0
#include "PBLinkedListEnumerator.h"

#include "BaseLibrary.h"
#include "PBLinkedList.h"
#include "PBLinkedListNode.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBLinkedListEnumerator, baseLibrary) {
    methods.creator<"initWithList:node:", &PBLinkedListEnumerator::initWithList_node>();
    methods.instance<"removeLastObject", &PBLinkedListEnumerator::removeLastObject>();
}

Retained<PBLinkedListEnumerator> PBLinkedListEnumerator::initWithList_node(PBLinkedList* list,
                                                                           PBLinkedListNode* node,
                                                                           Class* cls) {
    auto enumerator = make<PBLinkedListEnumerator>(cls);
    enumerator->_list = list;
    enumerator->_next = node;
    return enumerator;
}

id PBLinkedListEnumerator::nextObject() {
    if (!_isCurRemoved && _cur) _prev = _cur;
    _isCurRemoved = false;
    _cur = _next;
    if (!_cur) return nullptr;
    _next = _cur->next;
    return _cur->object;
}

void PBLinkedListEnumerator::removeLastObject() {
    if (!_cur || _isCurRemoved) return;
    _isCurRemoved = true;
    std::uint32_t removals = _list->_removals;
    _list->removeNode_withPreviousNode(_cur, _prev);
    if (_list->_removals - removals > 1) findPlaceAgain();
}

// The end of the removed object has removed other objects, so the nodes around the place may be gone: their
// addresses are compared with the nodes of the list, and the nodes are not read. If the previous node is
// still in the list, the walk goes on behind it; else it goes on with the next node; and if neither is in the
// list, the walk is over.
void PBLinkedListEnumerator::findPlaceAgain() {
    if (!_prev) return void(_next = _list->_head);
    for (PBLinkedListNode *before = nullptr, *node = _list->_head; node; before = node, node = node->next) {
        if (node == _prev) return void(_next = node->next);
        if (node == _next) return void(_prev = before);
    }
    _prev = _next = nullptr;
}

}  // namespace pelvor
