// A stream in memory that grows as it is written: for received objects and text whose size nobody
// knows beforehand. Its bytes lie in blocks of equal size, each an allocation of its own from the
// device's global heap, so that no large block is ever moved. Reaching a place walks the blocks
// from the last one reached or from the first on: reading and writing on cost the same everywhere.
#pragma once

#include "foundation/BlockList.h"
#include "foundation/DualString.h"
#include "foundation/Stream.h"

class BlockStream final : public Stream
{
public:
    BlockStream();
    ~BlockStream() override;

    /// Closes first. BadArgument for a block size of 0, and then stays closed. `name` may be null
    /// and is copied.
    [[nodiscard]] i32 Open(u32 blockSize, const WCHAR* name);
    /// Failed when not open. Null gives the empty name.
    i32 SetName(const WCHAR* name);

    /// BadArgument, Failed when not open, NothingDone when cut.
    i32 GetName(WCHAR* buffer, i32 capacity) override;
    /// The bytes held. BadArgument, Failed when not open.
    i32 GetSize(u64* size) override;
    /// Between 0 and the bytes held; see BoundedSeek. BadArgument, Failed when not open.
    i32 Seek(const i64* offset, u64* newPosition, u32 origin) override;
    /// BadArgument, Failed when not open, else `*length` is what was left of what was wanted. At
    /// the end the answer depends on the last block: NothingDone when it is full (or there is
    /// none), Done with no bytes when it is only partly used.
    i32 Read(void* buffer, u32* length) override;
    /// Overwrites up to the end and appends the rest. BadArgument, Failed when not open; NoMemory
    /// when a block could not be had on the way: what was written by then is kept, is told in
    /// `*length`, and the position stands behind it. What would carry the size past 32 bits is cut.
    i32 Write(const void* buffer, u32* length) override;
    /// BadArgument, Failed when not open, else as every stream.
    i32 GetInterface(PluginStreamRecord* record) override;
    /// Frees all blocks. BadArgument when not open, where other streams do nothing: this is meant.
    i32 Close() override;

private:
    BlockList::Node* BlockAt(u32 index) const;
    BlockList::Node* AppendBlock();

    BlockList blocks;
    i32 isOpen;
    DualString name;
    u32 blockSize;
    u32 blockCount;
    mutable BlockList::Node* reached; // where the last walk ended; null at first
    mutable u32 reachedIndex;
    u32 position; // never past `size`
    u32 size;
};
