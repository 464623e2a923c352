#include "plugin/PluginPathList.h"

namespace
{

struct Key {
    explicit Key(u32 index) { wsprintfW(text, TEXT("%u"), index); }
    WCHAR text[12];
};

} // namespace

PluginPathList::PluginPathList(Allocator* allocator) : list(allocator), count(0) {}

i32 PluginPathList::Clear()
{
    count = 0;
    return list.Clear();
}

i32 PluginPathList::Add(const WCHAR* path)
{
    if (path == nullptr)
        return BadArgument;
    const i32 result = list.SetWide(Key(count).text, path);
    if (result < 0)
        return result;
    ++count;
    return Done;
}

const WCHAR* PluginPathList::Get(u32 index) const
{
    if (index >= count)
        return nullptr;
    const WCHAR* path = nullptr;
    return list.GetWide(Key(index).text, &path) < 0 ? nullptr : path;
}
