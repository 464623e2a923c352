// A linked list of pointers, grown at its tail. The list owns its nodes and never what they point
// at; a class derived from it may give that back in `OnRemove`. Walks follow `next` alone. One
// thread at a time.
#pragma once

#include "foundation/Result.h"

class BlockList
{
public:
    struct Node {
        /// What stood in front when the node came in; not kept up when another comes in between.
        Node* prev;
        void* data;
        Node* next;
    };

    BlockList() = default;
    BlockList(const BlockList&) = delete;
    BlockList& operator=(const BlockList&) = delete;

    /// Whether a node's data is what Find looks for: above 0 when it is. By default when the two
    /// are the same value.
    virtual i32 Matches(const void* key, const void* data);
    /// Called for what a node points at after Remove has unlinked it. The result is not looked at.
    virtual i32 OnRemove(void* data);
    /// Drops the nodes that are left, without OnRemove: who derived from the list is gone by then.
    virtual ~BlockList();

    /// Done or Failed. BadArgument for null.
    i32 Contains(const Node* node) const;
    /// Makes a node for `data` behind `after`; null puts it in front. BadArgument when `after` is
    /// no node of the list, NoMemory when no node can be made.
    [[nodiscard]] i32 Insert(void* data, Node* after);
    /// The first node, null when empty. BadArgument.
    i32 GetHead(Node** out) const;
    /// The last node, null when empty. BadArgument.
    i32 GetTail(Node** out) const;
    /// The first node whose data matches. Failed when there is none: `*out` stays. BadArgument.
    i32 Find(const void* key, Node** out);
    /// Unlinks a node, calls OnRemove and deletes the node. BadArgument when it is not in the list,
    /// Failed on an empty list and also when all went well: nobody can tell by the result.
    i32 Remove(Node* node);

private:
    Node* head = nullptr;
    Node* tail = nullptr;
};
