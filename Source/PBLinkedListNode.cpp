// SPDX-License-Identifier: Apache-2.0
#include "PBLinkedListNode.h"

#include "BaseLibrary.h"
#include "Shared/RowMemory.h"

namespace pelvor {

PELVOR_DEFINE_CLASS(PBLinkedListNode, baseLibrary) {
    methods.creator<"initWithObject:", &PBLinkedListNode::initWithObject>();
}

Retained<PBLinkedListNode> PBLinkedListNode::initWithObject(id object, Class* cls) {
    auto node = make<PBLinkedListNode>(cls);
    node->object.set(object);
    return node;
}

void* PBLinkedListNode::operator new(std::size_t) { return RowMemory<PBLinkedListNode>::allocate(); }

void PBLinkedListNode::operator delete(void* node) noexcept { RowMemory<PBLinkedListNode>::free(node); }

}  // namespace pelvor
