// SPDX-License-Identifier: Apache-2.0
#include "PBLinkedList.h"

#include <utility>

#include "BaseLibrary.h"
#include "Foundation/NSMutableString.h"
#include "PBLinkedListEnumerator.h"
#include "PBLinkedListNode.h"
#include "Runtime/Message.h"
#include "Runtime/NSException.h"
#include "Shared/ArgumentChecks.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBLinkedList, baseLibrary) {
    methods.creator<"init", &PBLinkedList::init>();
    methods.instance<"count", &PBLinkedList::count>();
    methods.instance<"isEmpty", &PBLinkedList::isEmpty>();
    methods.instance<"push:", &PBLinkedList::push>();
    methods.instance<"pop", &PBLinkedList::pop>();
    methods.instance<"top", &PBLinkedList::top>();
    methods.instance<"enqueueObject:", &PBLinkedList::enqueueObject>();
    methods.instance<"dequeueObject", &PBLinkedList::dequeueObject>();
    methods.instance<"objectAtIndex:", &PBLinkedList::objectAtIndex>();
    methods.instance<"nodeAtIndex:prevNode:", &PBLinkedList::nodeAtIndex_prevNode>();
    methods.instance<"removeNode:withPreviousNode:", &PBLinkedList::removeNode_withPreviousNode>();
    methods.instance<"removeObjectAtIndex:", &PBLinkedList::removeObjectAtIndex>();
    methods.instance<"removeObjectsInRange:", &PBLinkedList::removeObjectsInRange>();
    methods.instance<"removeAllObjects", &PBLinkedList::removeAllObjects>();
    methods.instance<"objectEnumerator", &PBLinkedList::objectEnumerator>();
}

Retained<PBLinkedList> PBLinkedList::init(Class* cls) { return make<PBLinkedList>(cls); }

void PBLinkedList::push(id object) {
    PBLinkedListNode* node = PBLinkedListNode::initWithObject(object).leak();
    node->next = std::exchange(_head, node);
    ++_count;
}

id PBLinkedList::pop() { return takeTop().autorelease(); }

Retained<Object> PBLinkedList::takeTop() {
    if (!_head) return nullptr;
    // The object of a node that nobody else has is moved, which saves a retain and a release.
    Retained<Object> object = _head->retainCount() == 1 ? std::move(_head->object) : _head->object;
    removeNode_withPreviousNode(_head, nullptr);
    return object;
}

id PBLinkedList::top() { return _head ? _head->object.get() : nullptr; }

void PBLinkedList::enqueueObject(id object) {
    if (!_head) return push(object);
    PBLinkedListNode* last = nodeAtIndex_prevNode(_count - 1, nullptr);
    last->next = PBLinkedListNode::initWithObject(object).leak();
    ++_count;
}

id PBLinkedList::dequeueObject() { return pop(); }

id PBLinkedList::objectAtIndex(NSUInteger index) {
    PBLinkedListNode* node = nodeAtIndex_prevNode(index, nullptr);
    if (!node) raiseIndexBeyondBounds(index, _count);
    return node->object;
}

PBLinkedListNode* PBLinkedList::nodeAtIndex_prevNode(NSUInteger index, PBLinkedListNode** previous) {
    if (index > _count) raiseIndexBeyondBounds(index, _count);
    PBLinkedListNode* before = nullptr;
    PBLinkedListNode* node = _head;
    for (NSUInteger i = 0; i < index; ++i) before = std::exchange(node, node->next);
    if (previous) *previous = before;
    return node;
}

// The node is taken out of the list before it is released, since the end of its object may change the list.
void PBLinkedList::removeNode_withPreviousNode(PBLinkedListNode* node, PBLinkedListNode* previous) {
    if (!node || (node != _head && (!previous || previous->next != node))) return;
    (node == _head ? _head : previous->next) = std::exchange(node->next, nullptr);
    --_count;
    ++_removals;
    node->release();
}

void PBLinkedList::removeObjectAtIndex(NSUInteger index) { removeObjectsInRange({index, 1}); }

void PBLinkedList::removeObjectsInRange(NSRange range) {
    std::uint64_t end = std::uint64_t{range.location} + range.length;
    if (end > _count)
        raiseException(NSRangeException, u"index (%d) to remove beyond bounds (%d)"_ns,
                       static_cast<int>(end - 1), static_cast<int>(_count));
    if (range.length == 0) return;
    PBLinkedListNode* previous = nullptr;
    PBLinkedListNode* first = nodeAtIndex_prevNode(range.location, &previous);
    PBLinkedListNode* last = first;
    for (NSUInteger i = 1; i < range.length; ++i) last = last->next;
    (previous ? previous->next : _head) = std::exchange(last->next, nullptr);
    _count -= range.length;
    ++_removals;
    // Objects are released only now, since the end of an object may change the list or destroy it.
    while (PBLinkedListNode* node = first) {
        first = std::exchange(node->next, nullptr);
        node->release();
    }
}

void PBLinkedList::removeAllObjects() {
    if (_count > 0) removeObjectsInRange({0, _count});
}

PBLinkedListEnumerator* PBLinkedList::objectEnumerator() {
    return PBLinkedListEnumerator::initWithList_node(this, _head).autorelease();
}

NSString* PBLinkedList::description() {
    NSMutableString* text = NSMutableString::string();
    NSUInteger index = 0;
    for (PBLinkedListNode* node = _head; node; node = node->next)
        text->appendFormat(u"%02d: %@ \n"_ns, index++, node->object);
    return text;
}

}  // namespace pelvor
