// The steps by which the documents folder is asked of the shell library, with a library that can
// lack parts and refuse. The source itself is compiled into this file against that library's
// loader; what the platform's own library answers is tested beside it.
#include "foundation/BoundedText.h"
#include "foundation/KnownFolders.h"
#include "foundation/TextSearch.h"

#include "platform/testing/Testing.h"

#include <handheld.h>

#include <gtest/gtest.h>

#include <string>

namespace
{

constexpr HRESULT Refused = static_cast<HRESULT>(0x80004005u);

struct ShellRecord {
    bool there = true;
    std::u16string lacks;     // the name of the export that is missing
    HRESULT memoryResult = 0; // of SHGetMalloc
    HRESULT folderResult = 0; // of SHGetSpecialFolderLocation
    BOOL pathResult = TRUE;   // of SHGetPathFromIDList
    std::u16string trace;     // what was called, in order, a letter each
    int folder = -1;
    HWND owner = reinterpret_cast<HWND>(1);
};
ShellRecord shell;

struct FakeMemory;
struct FakeTable {
    void (*entries[6])(); // each is called as what stands at its place
};
struct FakeMemory {
    const FakeTable* table;
};

int itemList;

void Never()
{
    shell.trace += u'!';
}
ULONG WINAPI ReleaseMemory(FakeMemory*)
{
    shell.trace += u'R';
    return 0;
}
void WINAPI FreeBlock(FakeMemory*, void* block)
{
    shell.trace += block == &itemList ? u'F' : u'?';
}

const FakeTable memoryTable = {{Never, Never, reinterpret_cast<void (*)()>(&ReleaseMemory), Never,
                                Never, reinterpret_cast<void (*)()>(&FreeBlock)}};
FakeMemory memoryObject = {&memoryTable};

HRESULT WINAPI GetMemory(FakeMemory** out)
{
    shell.trace += u'M';
    if (shell.memoryResult >= 0)
        *out = &memoryObject;
    return shell.memoryResult;
}
HRESULT WINAPI GetFolder(HWND owner, int folder, void** list)
{
    shell.trace += u'S';
    shell.owner = owner;
    shell.folder = folder;
    if (shell.folderResult >= 0)
        *list = &itemList;
    return shell.folderResult;
}
BOOL WINAPI GetPath(const void* list, WCHAR* path)
{
    shell.trace += list == &itemList ? u'P' : u'?';
    if (shell.pathResult)
        CopyText(path, 260, u"\\Elsewhere");
    return shell.pathResult;
}

HMODULE FakeLoadLibrary(const WCHAR* name)
{
    shell.trace += std::u16string(name) == u"ceshell.dll" ? u'L' : u'?';
    return shell.there ? reinterpret_cast<HMODULE>(&shell) : nullptr;
}
BOOL FakeFreeLibrary(HMODULE library)
{
    shell.trace += library == reinterpret_cast<HMODULE>(&shell) ? u'U' : u'?';
    return TRUE;
}
FARPROC FakeGetProcAddress(HMODULE, const WCHAR* name)
{
    const std::u16string asked = name;
    const auto address = [](auto* function) {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
    };
    if (asked == shell.lacks)
        return nullptr;
    if (asked == u"SHGetMalloc")
        return address(&GetMemory);
    if (asked == u"SHGetSpecialFolderLocation")
        return address(&GetFolder);
    if (asked == u"SHGetPathFromIDList")
        return address(&GetPath);
    shell.trace += u'?';
    return nullptr;
}

} // namespace

#define LoadLibraryW FakeLoadLibrary
#define FreeLibrary FakeFreeLibrary
#define GetProcAddressW FakeGetProcAddress
#define GetApplicationDirectory ApplicationDirectoryHere
#define GetDocumentsDirectory DocumentsDirectoryHere
#include "foundation/KnownFolders.cpp"
#undef LoadLibraryW
#undef FreeLibrary
#undef GetProcAddressW
#undef GetApplicationDirectory
#undef GetDocumentsDirectory

namespace
{

struct Answer {
    i32 result;
    std::u16string folder;
    std::u16string trace;
};

/// Asks a library that `change` has spoiled.
template <class Change>
Answer Ask(Change change, u32 capacity = 260)
{
    shell = {};
    change(shell);
    WCHAR folder[300] = u"left from before";
    const i32 result = DocumentsDirectoryHere(folder, capacity);
    return {result, folder, shell.trace};
}

} // namespace

TEST(ShellFolder, IsAskedInOrderAndGivesBackWhatItTook)
{
    const Answer answer = Ask([](ShellRecord&) {});
    EXPECT_EQ(1, answer.result);
    EXPECT_EQ(u"\\Elsewhere", answer.folder);
    // Load, memory object, location, path, the list freed, the object released, unload.
    EXPECT_EQ(u"LMSPFRU", answer.trace);
    EXPECT_EQ(5, shell.folder);
    EXPECT_EQ(nullptr, shell.owner);
}

TEST(ShellFolder, WithoutTheLibraryIsTheFixedName)
{
    const Answer answer = Ask([](ShellRecord& record) { record.there = false; });
    EXPECT_EQ(1, answer.result);
    EXPECT_EQ(u"\\My Documents", answer.folder);
    EXPECT_EQ(u"L", answer.trace);
}

TEST(ShellFolder, ALibraryThatLacksOneOfTheThreeIsUnloadedUnused)
{
    for (const char16_t* name :
         {u"SHGetMalloc", u"SHGetSpecialFolderLocation", u"SHGetPathFromIDList"}) {
        const Answer answer = Ask([name](ShellRecord& record) { record.lacks = name; });
        EXPECT_EQ(1, answer.result);
        EXPECT_EQ(u"\\My Documents", answer.folder);
        EXPECT_EQ(u"LU", answer.trace) << tavrix::testing::Utf8(name);
    }
}

TEST(ShellFolder, ABufferOfLessThan260IsNotShownToTheLibrary)
{
    const Answer answer = Ask([](ShellRecord&) {}, 259);
    EXPECT_EQ(1, answer.result);
    EXPECT_EQ(u"\\My Documents", answer.folder);
    EXPECT_EQ(u"LU", answer.trace);
}

TEST(ShellFolder, ARefusedMemoryObjectEndsTheQuestions)
{
    const Answer answer = Ask([](ShellRecord& record) { record.memoryResult = Refused; });
    EXPECT_EQ(1, answer.result);
    EXPECT_EQ(u"\\My Documents", answer.folder);
    EXPECT_EQ(u"LMU", answer.trace);
}

TEST(ShellFolder, ARefusedLocationEndsTheQuestionsWithoutARelease)
{
    const Answer answer = Ask([](ShellRecord& record) { record.folderResult = Refused; });
    EXPECT_EQ(1, answer.result);
    EXPECT_EQ(u"\\My Documents", answer.folder);
    EXPECT_EQ(u"LMSU", answer.trace);
}

TEST(ShellFolder, AFolderWithoutAPathIsStillAnAnswer)
{
    const Answer answer = Ask([](ShellRecord& record) { record.pathResult = FALSE; });
    EXPECT_EQ(1, answer.result);
    EXPECT_EQ(u"", answer.folder);
    EXPECT_EQ(u"LMSPFRU", answer.trace);
}
