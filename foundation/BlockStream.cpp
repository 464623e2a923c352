#include "foundation/BlockStream.h"

#include "foundation/BoundedSeek.h"
#include "foundation/BoundedText.h"

#include <string.h>

BlockStream::BlockStream()
    : isOpen(0), blockSize(0), blockCount(0), reached(nullptr), reachedIndex(0), position(0),
      size(0)
{
}

BlockStream::~BlockStream()
{
    (void)Close();
}

i32 BlockStream::Open(u32 newBlockSize, const WCHAR* newName)
{
    (void)Close();
    if (newBlockSize == 0)
        return BadArgument;
    blockSize = newBlockSize;
    name.Assign(newName);
    isOpen = 1;
    return Done;
}

i32 BlockStream::SetName(const WCHAR* newName)
{
    if (isOpen == 0)
        return Failed;
    name.Assign(newName);
    return Done;
}

i32 BlockStream::GetName(WCHAR* buffer, i32 capacity)
{
    if (buffer == nullptr || capacity <= 0)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    return CopyText(buffer, static_cast<u32>(capacity), name.Get());
}

i32 BlockStream::GetSize(u64* sizeOut)
{
    if (sizeOut == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    *sizeOut = size;
    return Done;
}

i32 BlockStream::Seek(const i64* offset, u64* newPosition, u32 origin)
{
    if (offset == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    return BoundedSeek(*offset, origin, size, &position, newPosition);
}

i32 BlockStream::Read(void* buffer, u32* length)
{
    if (buffer == nullptr || length == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    u32 left = BoundedCount(*length, position, size);
    *length = 0;
    const BlockList::Node* block = BlockAt(position / blockSize);
    if (block == nullptr)
        return NothingDone;
    u8* target = static_cast<u8*>(buffer);
    for (; left > 0; block = block->next) {
        const u32 offset = position % blockSize;
        const u32 count = BoundedCount(left, offset, blockSize);
        memcpy(target + *length, static_cast<const u8*>(block->data) + offset, count);
        left -= count;
        position += count;
        *length += count;
    }
    return Done;
}

i32 BlockStream::Write(const void* buffer, u32* length)
{
    if (buffer == nullptr || length == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    u32 left = BoundedCount(*length, position, UINT32_MAX);
    *length = 0;
    const u8* source = static_cast<const u8*>(buffer);
    BlockList::Node* block = BlockAt(position / blockSize);
    while (left > 0) {
        // Only ever past the last block at the very start of the next one.
        if (block == nullptr)
            block = AppendBlock();
        if (block == nullptr)
            return NoMemory;
        const u32 offset = position % blockSize;
        const u32 count = BoundedCount(left, offset, blockSize);
        memcpy(static_cast<u8*>(block->data) + offset, source + *length, count);
        left -= count;
        position += count;
        *length += count;
        if (position > size)
            size = position;
        block = block->next;
    }
    return Done;
}

i32 BlockStream::GetInterface(PluginStreamRecord* record)
{
    if (record == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return Failed;
    return Stream::GetInterface(record);
}

i32 BlockStream::Close()
{
    if (isOpen == 0)
        return BadArgument;
    BlockList::Node* head = nullptr;
    while (blocks.GetHead(&head) > 0 && head != nullptr) {
        GlobalFree(head->data);
        (void)blocks.Remove(head);
    }
    isOpen = 0;
    name.Clear();
    blockSize = 0;
    blockCount = 0;
    reached = nullptr;
    reachedIndex = 0;
    position = 0;
    size = 0;
    return Done;
}

/// Null when there are not so many.
BlockList::Node* BlockStream::BlockAt(u32 index) const
{
    BlockList::Node* block = reached;
    u32 at = reachedIndex;
    if (block == nullptr || index < at) {
        (void)blocks.GetHead(&block);
        at = 0;
    }
    for (; at < index && block != nullptr; ++at)
        block = block->next;
    if (block != nullptr) {
        reached = block;
        reachedIndex = at;
    }
    return block;
}

/// A new block behind the last. Null when memory is short; then nothing has changed.
BlockList::Node* BlockStream::AppendBlock()
{
    BlockList::Node* tail = nullptr;
    (void)blocks.GetTail(&tail);
    void* data = GlobalAlloc(GMEM_FIXED, blockSize);
    if (data == nullptr)
        return nullptr;
    if (blocks.Insert(data, tail) < Done) {
        GlobalFree(data);
        return nullptr;
    }
    ++blockCount;
    (void)blocks.GetTail(&tail);
    return tail;
}
