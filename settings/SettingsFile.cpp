// SettingsFile's life and its values. Reading and writing the file: SettingsLoad.cpp,
// SettingsSave.cpp.
#include "settings/SettingsFile.h"

#include "foundation/BoundedText.h"
#include "foundation/DualString.h"

#include <initializer_list>
#include <new>

SettingsFile::SettingsFile(Allocator* given)
    : allocator(given), ownedAllocator(nullptr), sections(given), keys(given), sectionCount(0),
      path(nullptr), readBuffer(nullptr), readPosition(0), readCount(0), lineBuffer(nullptr),
      linePosition(0), sectionBuffer(nullptr), keyBuffer(nullptr), valueBuffer(nullptr),
      composeBuffer(nullptr), loadBuffersReady(0), saveBuffersReady(0), isOpen(0)
{
    // The lists get what the store was given and not what it owns: they outlive that one.
    if (allocator == nullptr) {
        ownedAllocator = new (std::nothrow) MallocAllocator;
        allocator = ownedAllocator;
    }
}

SettingsFile::~SettingsFile()
{
    (void)Close(1);
    FreeBuffers();
    FreeText(&path);
    delete ownedAllocator;
}

i32 SettingsFile::Close(u32 save)
{
    if (isOpen == 0)
        return Failed;
    if (save != 0)
        (void)Save(nullptr);
    FreeText(&path);
    (void)sections.Clear();
    (void)keys.Clear();
    sectionCount = 0;
    isOpen = 0;
    return Done;
}

i32 SettingsFile::AllocText(u32 cells, WCHAR** out)
{
    *out = nullptr;
    void* block = nullptr;
    if (allocator == nullptr || cells > UINT32_MAX / sizeof(WCHAR) ||
        allocator->Alloc(&block, cells * static_cast<u32>(sizeof(WCHAR))) < 0)
        return NoMemory;
    *out = static_cast<WCHAR*>(block);
    return Done;
}

void SettingsFile::FreeText(WCHAR** text)
{
    if (*text != nullptr)
        (void)allocator->Free(*text);
    *text = nullptr;
}

void SettingsFile::FreeBuffers()
{
    for (WCHAR** buffer :
         {&readBuffer, &lineBuffer, &sectionBuffer, &keyBuffer, &valueBuffer, &composeBuffer})
        FreeText(buffer);
    loadBuffersReady = 0;
    saveBuffersReady = 0;
}

void SettingsFile::Compose(WCHAR* out, const WCHAR* section, const WCHAR* name)
{
    (void)CopyText(out, ComposeCells, section);
    (void)AppendText(out, ComposeCells, TEXT("::"));
    (void)AppendText(out, ComposeCells, name);
}

// As PropertyList::SetUnsigned, and NoMemory where the list did not tell of it.
i32 SettingsFile::StoreCount(const WCHAR* section, u32 keyCount)
{
    const i32 result = sections.SetUnsigned(section, keyCount);
    u32 held = 0;
    if (result > 0 && sections.GetUnsigned(section, &held) < 1)
        return NoMemory;
    return result;
}

i32 SettingsFile::SetValue(const WCHAR* section, const Variant* item)
{
    if (section == nullptr || item == nullptr || item->name == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return WrongState;
    WCHAR* composed = nullptr;
    if (AllocText(ComposeCells, &composed) < 0)
        return NoMemory;
    // Meant as it stands: the count rises with each change and counts no keys. A save asks only
    // whether it is 0, and it rises before the value is looked at.
    u32 changes = 0;
    (void)sections.GetUnsigned(section, &changes);
    i32 result = StoreCount(section, changes + 1);
    if (result > 0) {
        Compose(composed, section, item->name);
        const Variant stored{composed, item->type, item->value};
        result = keys.Set(&stored);
    }
    FreeText(&composed);
    return result;
}

i32 SettingsFile::SetUInt(const WCHAR* section, const WCHAR* name, u32 value)
{
    if (section == nullptr || name == nullptr)
        return BadArgument;
    const Variant item{name, VariantUnsigned, value};
    return SetValue(section, &item);
}

i32 SettingsFile::SetText(const WCHAR* section, const WCHAR* name, const WCHAR* text)
{
    if (section == nullptr || name == nullptr || text == nullptr)
        return BadArgument;
    const Variant item{name, VariantWide, reinterpret_cast<uintptr_t>(text)};
    return SetValue(section, &item);
}

i32 SettingsFile::SetNarrowText(const WCHAR* section, const WCHAR* name, const char* text)
{
    if (section == nullptr || name == nullptr || text == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return WrongState;
    DualString wide;
    wide.AssignNarrow(text);
    if (*text != 0 && *wide.Get() == 0)
        return NoMemory;
    return SetText(section, name, wide.Get());
}

i32 SettingsFile::GetValue(const WCHAR* section, Variant* item)
{
    if (section == nullptr || item == nullptr || item->name == nullptr)
        return BadArgument;
    if (isOpen == 0)
        return WrongState;
    WCHAR* composed = nullptr;
    if (AllocText(ComposeCells, &composed) < 0)
        return NoMemory;
    i32 result = Failed;
    i32 index = -1;
    if (sections.Find(section, &index) > 0) {
        Compose(composed, section, item->name);
        Variant read{composed, item->type, item->value};
        result = keys.Get(&read);
        item->type = read.type;
        item->value = read.value;
    }
    FreeText(&composed);
    return result;
}

i32 SettingsFile::GetUInt(const WCHAR* section, const WCHAR* name, u32* out)
{
    if (section == nullptr || name == nullptr || out == nullptr)
        return BadArgument;
    Variant item{name, VariantUnsigned, 0};
    const i32 result = GetValue(section, &item);
    if (result >= 1)
        *out = static_cast<u32>(item.value);
    return result;
}

i32 SettingsFile::GetText(const WCHAR* section, const WCHAR* name, const WCHAR** out)
{
    if (section == nullptr || name == nullptr || out == nullptr)
        return BadArgument;
    Variant item{name, VariantWide, 0};
    const i32 result = GetValue(section, &item);
    if (result >= 1)
        *out = reinterpret_cast<const WCHAR*>(item.value);
    return result;
}

i32 SettingsFile::GetNarrowText(const WCHAR* section, const WCHAR* name, const char** out)
{
    if (section == nullptr || name == nullptr || out == nullptr)
        return BadArgument;
    Variant item{name, VariantNarrow, 0};
    const i32 result = GetValue(section, &item);
    if (result >= 1)
        *out = reinterpret_cast<const char*>(item.value);
    return result;
}
