#include "plugin/PluginScan.h"

namespace
{

constexpr u32 TextCapacity = 2048; // characters

/// A work buffer, one character longer than plugins are told.
class WorkBuffer
{
public:
    explicit WorkBuffer(Allocator& provider) : allocator(provider), text(nullptr)
    {
        void* block = nullptr;
        if (allocator.Alloc(&block, (TextCapacity + 1) * sizeof(WCHAR)) > 0)
            text = static_cast<WCHAR*>(block);
    }
    ~WorkBuffer()
    {
        if (text != nullptr)
            (void)allocator.Free(text);
    }
    WorkBuffer(const WorkBuffer&) = delete;
    WorkBuffer& operator=(const WorkBuffer&) = delete;

    const WCHAR* Text() const { return text; }
    /// Emptied first: a plugin that answers without writing must not repeat the answer before.
    i32 Ask(PluginModule& module, u32 index)
    {
        text[0] = 0;
        return module.Info(index, text, TextCapacity);
    }

private:
    Allocator& allocator;
    WCHAR* text;
};

void AddFormats(PluginModule& module, i32 plugin, FormatList& formats, WorkBuffer& description,
                WorkBuffer& pattern)
{
    for (u32 k = 0; k < PluginFormatLimit; ++k) {
        if (description.Ask(module, PluginInfoFormat + 2 * k) < 0 ||
            pattern.Ask(module, PluginInfoPattern + 2 * k) < 0 || description.Text()[0] == 0)
            return;
        (void)formats.Add(plugin, description.Text(), pattern.Text()); // a full list stays full
    }
}

void ScanKind(const PluginKindEntry& kind, WorkBuffer& a, WorkBuffer& b)
{
    PluginModule& module = *kind.module;
    const i32 found = module.Scan(nullptr, KeepPaths);
    for (i32 i = 0; i < found; ++i) {
        // Not looked at: a plugin that fails here answers no question below and adds nothing.
        (void)module.LoadByIndex(static_cast<u32>(i), 0);
        if (kind.formats != nullptr)
            AddFormats(module, i, *kind.formats, a, b);
        if (a.Ask(module, PluginInfoName) > 0 && kind.names != nullptr)
            (void)kind.names->SetUnsigned(a.Text(), static_cast<u32>(i));
        (void)module.Unload();
    }
}

} // namespace

i32 ScanPluginKinds(const PluginKindEntry* kinds, u32 count, Allocator* allocator)
{
    if (kinds == nullptr)
        return BadArgument;
    MallocAllocator own;
    Allocator& provider = allocator != nullptr ? *allocator : own;
    WorkBuffer a(provider);
    WorkBuffer b(provider);
    if (a.Text() == nullptr || b.Text() == nullptr)
        return Failed;
    for (u32 i = 0; i < count; ++i)
        if (kinds[i].module != nullptr)
            ScanKind(kinds[i], a, b);
    return Done;
}
