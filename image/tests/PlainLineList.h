// A list of paged lines written out plainly, over the plain page store.
#pragma once

#include "image/PagedLineList.h"
#include "image/tests/PlainSwapStore.h"

class PlainLineList
{
public:
    explicit PlainLineList(PlainSwapStore& theStore) : store(theStore) {}

    i32 Create(u32 width, u32 count, u32 depth)
    {
        Destroy();
        created = true;
        stride = (width * depth + 7) >> 3;
        if (InsertBlank(0, &count) != Done) {
            Destroy();
            return Failed;
        }
        return Done;
    }

    i32 Destroy()
    {
        if (!created)
            return NothingDone;
        for (const PlainSwapStore::Handle line : lines)
            (void)store.Free(line);
        lines.clear();
        created = false;
        return Done;
    }

    i32 InsertBlank(i32 index, u32* count)
    {
        i64 at = 0;
        if (const i32 result = Locate(index, &at); result != Done)
            return result;
        const u32 wanted = *count;
        for (*count = 0; *count < wanted; ++*count)
            if (const i32 result = Enter(at + *count, nullptr); result != Done)
                return result;
        return Done;
    }

    i32 InsertLine(i32 index, const u8* source)
    {
        i64 at = 0;
        const i32 result = Locate(index, &at);
        return result == Done ? Enter(at, source) : result;
    }

    i32 RemoveLine(i32 index)
    {
        i64 at = 0;
        if (const i32 result = LocateLine(index, &at); result != Done)
            return result;
        (void)store.Free(lines[static_cast<size_t>(at)]);
        lines.erase(lines.begin() + at);
        return Done;
    }

    i32 RemoveFrom(i32 index, u32* count)
    {
        i64 at = 0;
        if (const i32 result = Locate(index, &at); result != Done)
            return result;
        const u32 wanted = *count;
        for (*count = 0; at < Count(); ++*count)
            (void)RemoveLine(static_cast<i32>(at));
        return *count == wanted ? Done : Failed;
    }

    i32 LockLine(i32 index, PlainSwapStore::Handle* page)
    {
        i64 at = 0;
        if (const i32 result = LocateLine(index, &at); result != Done)
            return result;
        *page = lines[static_cast<size_t>(at)];
        return store.Lock(*page);
    }

    i32 UnlockLine(i32 index)
    {
        i64 at = 0;
        const i32 result = LocateLine(index, &at);
        return result == Done ? store.Unlock(lines[static_cast<size_t>(at)]) : result;
    }

    i32 UnlockAll()
    {
        if (!created)
            return WrongState;
        for (const PlainSwapStore::Handle line : lines)
            (void)store.Unlock(line);
        return Done;
    }

    i64 Count() const { return static_cast<i64>(lines.size()); }

    bool created = false;
    u32 stride = 0;
    std::vector<PlainSwapStore::Handle> lines;

private:
    /// A place from 0 to the count.
    i32 Locate(i32 index, i64* at) const
    {
        if (!created)
            return WrongState;
        *at = index < 0 ? index + Count() : index;
        return *at < 0 || *at > Count() ? BadArgument : Done;
    }
    /// A line.
    i32 LocateLine(i32 index, i64* at) const
    {
        const i32 result = Locate(index, at);
        return result == Done && *at == Count() ? Failed : result;
    }
    i32 Enter(i64 at, const u8* source)
    {
        PlainSwapStore::Handle page = nullptr;
        if (store.Allocate(&page, stride) != Done)
            return Failed;
        if (source != nullptr) {
            if (store.Lock(page) != Done) {
                (void)store.Free(page);
                return Failed;
            }
            page->bytes.assign(source, source + stride);
            (void)store.Unlock(page);
        }
        lines.insert(lines.begin() + at, page);
        return Done;
    }

    PlainSwapStore& store;
};
