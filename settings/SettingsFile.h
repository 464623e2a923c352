// The settings store: one text file of sections and keys, read whole at start, changed in memory,
// written whole at the end. UTF-16 with byte order mark, lines end in CR LF. At most 512 keys and
// 512 sections. One thread at a time.
#pragma once

#include "foundation/Directory.h"
#include "settings/PropertyList.h"

class SettingsFile
{
public:
    /// Null makes a MallocAllocator that the store owns.
    explicit SettingsFile(Allocator* allocator = nullptr);
    /// Saves and closes.
    ~SettingsFile();
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;

    /// Reads the file, which is created empty if absent; what was open is saved and closed first,
    /// so that `path` must be no text of this store. BadArgument for null; NoMemory without
    /// buffers; Failed when the file cannot be opened, read or held, or a section line is broken:
    /// nothing is open then, and the file stays as it is.
    [[nodiscard]] i32 Load(const WCHAR* path);
    /// Writes to `path`, or with null to where the last load came from. Failed when not open,
    /// NoMemory without buffers, else Done: what the disk refuses is not told.
    i32 Save(const WCHAR* path);
    /// Saves if `save` is not 0, then drops everything. Failed when not open, else Done.
    i32 Close(u32 save);

    // WrongState when not open, BadArgument for null, else what the property list says.
    i32 SetValue(const WCHAR* section, const Variant* item);
    i32 SetUInt(const WCHAR* section, const WCHAR* name, u32 value);
    i32 SetText(const WCHAR* section, const WCHAR* name, const WCHAR* text);
    i32 SetNarrowText(const WCHAR* section, const WCHAR* name, const char* text);
    // Failed when the section is absent, NoSuchName, NotConvertible; `*out` only with Done.
    [[nodiscard]] i32 GetValue(const WCHAR* section, Variant* item);
    [[nodiscard]] i32 GetUInt(const WCHAR* section, const WCHAR* name, u32* out);
    [[nodiscard]] i32 GetText(const WCHAR* section, const WCHAR* name, const WCHAR** out);
    [[nodiscard]] i32 GetNarrowText(const WCHAR* section, const WCHAR* name, const char** out);

private:
    enum : u32 { BlockCells = 16384, NameCells = 1024, ComposeCells = 2048 };
    static constexpr WCHAR ByteOrderMark = 0xFEFF;

    i32 AllocText(u32 cells, WCHAR** out);
    void FreeText(WCHAR** text);
    void FreeBuffers();
    static void Compose(WCHAR* out, const WCHAR* section, const WCHAR* name);
    i32 StoreCount(const WCHAR* section, u32 keyCount);

    i32 AllocLoadBuffers();
    i32 KeepPath(const WCHAR* newPath);
    i32 ReadFile();
    i32 SkipMark();
    i32 ReadLines();
    i32 EnterSection(const WCHAR* name, u32* keyCount);
    i32 TakeKey(const WCHAR* name, const WCHAR* value, u32* keyCount);
    i32 ReadLine();
    i32 NextCharacter(WCHAR* out);
    i32 FillReadBuffer(u32 cells);
    bool IsReadToItsEnd();

    void WriteSections();
    void WriteKeys(const WCHAR* section);
    void PutText(const WCHAR* text);
    void Put(WCHAR character);
    void Flush();

    Allocator* allocator;
    Allocator* ownedAllocator;
    PropertyList sections; // section name -> number of keys, as text
    PropertyList keys;     // section::key -> value
    u32 sectionCount;
    Directory directory;
    FileStream file;
    WCHAR* path;
    // Owned; there only during a load or a save.
    WCHAR* readBuffer;
    u32 readPosition;
    u32 readCount;
    WCHAR* lineBuffer;
    u32 linePosition;
    WCHAR* sectionBuffer;
    WCHAR* keyBuffer;
    WCHAR* valueBuffer;
    WCHAR* composeBuffer;
    i32 loadBuffersReady;
    i32 saveBuffersReady;
    i32 isOpen;
};
