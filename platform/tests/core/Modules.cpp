// Modules: the program, the built-in shell library, and real shared objects of the host.

#include "platform/host/Modules.h"
#include "platform/testing/core/TestHome.h"
#include "platform/testing/Testing.h"

#include <handheld.h>
#include <windows.h>

#include <gtest/gtest.h>

#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace
{

using tavrix::testing::TestHome;
using tavrix::testing::Utf8;
using tavrix::testing::Wide;

/// A host path as the device sees it.
std::u16string DevicePath(const std::string& host)
{
    std::string path = "\\Computer" + host;
    std::replace(path.begin(), path.end(), '/', '\\');
    return Wide(path);
}

std::string FileBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

bool IsMapped(const std::string& name)
{
    return FileBytes("/proc/self/maps").find(name) != std::string::npos;
}

HMODULE LoadSample()
{
    return LoadLibraryW(DevicePath(TAVRIX_SAMPLE_MODULE).c_str());
}

template <class Function>
Function Export(HMODULE module, const WCHAR* name)
{
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddressW(module, name)));
}

TEST(Modules, TheProgramHasItsFixedPlace)
{
    WCHAR path[260];
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 260), 32u);
    EXPECT_EQ(Utf8(path), "\\Program Files\\Tavrix\\Tavrix.exe");
    EXPECT_NE(GetModuleHandleW(nullptr), nullptr);
    EXPECT_EQ(GetModuleFileNameW(GetModuleHandleW(nullptr), path, 260), 32u);
    EXPECT_EQ(GetModuleHandleW(TEXT("tavrix.EXE")), GetModuleHandleW(nullptr));
    EXPECT_TRUE(FreeLibrary(GetModuleHandleW(nullptr)));
}

TEST(Modules, AFileNameThatDoesNotFitIsCutAndEndsWithAZero)
{
    WCHAR path[40];
    std::fill(std::begin(path), std::end(path), u'#');
    // The 32 characters need 33 places.
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 33), 32u);
    EXPECT_EQ(path[32], 0);
    EXPECT_EQ(path[33], u'#');
    std::fill(std::begin(path), std::end(path), u'#');
    SetLastError(0);
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 32), 32u);
    EXPECT_EQ(GetLastError(), ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(Utf8(path), "\\Program Files\\Tavrix\\Tavrix.ex");
    EXPECT_EQ(path[32], u'#');
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 1), 1u);
    EXPECT_EQ(path[0], 0);
    EXPECT_EQ(GetModuleFileNameW(nullptr, path, 0), 0u);
    EXPECT_EQ(GetModuleFileNameW(nullptr, nullptr, 10), 0u);
    EXPECT_EQ(GetModuleFileNameW(reinterpret_cast<HMODULE>(&path), path, 40), 0u);
}

TEST(Modules, ALibraryIsLoadedCalledAndReallyUnmapped)
{
    ASSERT_FALSE(IsMapped("SampleModule.dll"));
    const HMODULE module = LoadSample();
    ASSERT_NE(module, nullptr);
    EXPECT_TRUE(IsMapped("SampleModule.dll"));
    const auto answer = Export<int (*)()>(module, TEXT("SampleAnswer"));
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(answer(), 42);
    WCHAR path[4096];
    GetModuleFileNameW(module, path, 4096);
    EXPECT_EQ(path, DevicePath(TAVRIX_SAMPLE_MODULE));
    EXPECT_EQ(GetModuleHandleW(TEXT("samplemodule.dll")), module);
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_FALSE(IsMapped("SampleModule.dll"));
    EXPECT_EQ(GetModuleHandleW(TEXT("samplemodule.dll")), nullptr);
    EXPECT_EQ(GetProcAddressW(module, TEXT("SampleAnswer")), nullptr);
    EXPECT_FALSE(FreeLibrary(module));
    EXPECT_EQ(GetLastError(), ERROR_MOD_NOT_FOUND);
}

TEST(Modules, ALibraryLoadedTwiceIsFreedTwice)
{
    const HMODULE first = LoadSample();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(LoadSample(), first);
    EXPECT_TRUE(FreeLibrary(first));
    EXPECT_TRUE(IsMapped("SampleModule.dll"));
    EXPECT_NE(GetProcAddressW(first, TEXT("SampleAnswer")), nullptr);
    EXPECT_TRUE(FreeLibrary(first));
    EXPECT_FALSE(IsMapped("SampleModule.dll"));
}

TEST(Modules, OnlyWhatTheLibraryItselfExportsIsFound)
{
    const HMODULE module = LoadSample();
    ASSERT_NE(module, nullptr);
    // The dependency works inside, and is none of the module's exports.
    const auto viaModule = Export<int (*)()>(module, TEXT("SampleDependency"));
    ASSERT_NE(viaModule, nullptr);
    EXPECT_EQ(viaModule(), 7);
    for (const WCHAR* name : {TEXT("DependencyAnswer"), TEXT("strlen"), TEXT("NoSuchName"),
                              TEXT("sampleanswer"), TEXT(""), TEXT("\u65E5")}) {
        SetLastError(0);
        EXPECT_EQ(GetProcAddressW(module, name), nullptr) << Utf8(name);
        EXPECT_EQ(GetLastError(), ERROR_PROC_NOT_FOUND);
    }
    EXPECT_EQ(GetProcAddressW(module, nullptr), nullptr);
    EXPECT_EQ(GetProcAddressW(module, MAKEINTRESOURCEW(1)), nullptr);
    FreeLibrary(module);
}

TEST(Modules, ALibraryKnowsItsHandleFromItsConstructorsOnAndHasResourcesOfItsOwn)
{
    const HMODULE module = LoadSample();
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(Export<HINSTANCE (*)()>(module, TEXT("SampleHandle"))(), module);
    EXPECT_EQ(
        TavrixModuleOf(reinterpret_cast<void*>(GetProcAddressW(module, TEXT("SampleAnswer")))),
        module);
    EXPECT_EQ(TavrixModuleOf(reinterpret_cast<void*>(&IsMapped)), nullptr);
    EXPECT_EQ(TavrixModuleOf(nullptr), nullptr);

    const HRSRC resource = FindResourceW(module, MAKEINTRESOURCEW(7), RT_RCDATA);
    ASSERT_NE(resource, nullptr);
    EXPECT_EQ(SizeofResource(module, resource), 4u);
    EXPECT_EQ(std::memcmp(LockResource(LoadResource(module, resource)), "mine", 4), 0);
    EXPECT_EQ(FindResourceW(nullptr, MAKEINTRESOURCEW(7), RT_RCDATA), nullptr);
    FreeLibrary(module);
    EXPECT_EQ(FindResourceW(module, MAKEINTRESOURCEW(7), RT_RCDATA), nullptr);
}

TEST(Modules, AMissingExtensionIsAddedAndTheProgramsFolderIsSearched)
{
    const std::string folder = TestHome() + "/data/tavrix";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    std::filesystem::copy_file(TAVRIX_SAMPLE_MODULE, folder + "/InFolder.dll");
    // It looks for its dependency beside itself.
    std::filesystem::copy_file(std::filesystem::path(TAVRIX_SAMPLE_MODULE).parent_path() /
                                   "libtavrix_sample_dependency.so",
                               folder + "/libtavrix_sample_dependency.so");
    const HMODULE module = LoadLibraryW(TEXT("InFolder"));
    ASSERT_NE(module, nullptr);
    WCHAR path[260];
    GetModuleFileNameW(module, path, 260);
    EXPECT_EQ(Utf8(path), "\\Program Files\\Tavrix\\InFolder.dll");
    EXPECT_TRUE(FreeLibrary(module));
    EXPECT_FALSE(IsMapped("InFolder.dll"));
}

TEST(Modules, WhatIsNoLibraryIsNotFound)
{
    const std::string folder = TestHome() + "/not-libraries";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder + "/folder.dll");
    std::ofstream(folder + "/text.dll") << "no library at all";
    std::ofstream(folder + "/empty.dll").flush();
    std::ofstream(folder + "/header.dll", std::ios::binary)
        << FileBytes(TAVRIX_SAMPLE_MODULE).substr(0, 64);
    std::ofstream(folder + "/script.dll") << "#!/bin/sh\ntouch " << folder << "/was-run\n";
    std::filesystem::permissions(folder + "/script.dll", std::filesystem::perms::owner_all);
    ASSERT_EQ(mkfifo((folder + "/fifo.dll").c_str(), 0600), 0);
    for (const char* name : {"/folder.dll", "/text.dll", "/empty.dll", "/header.dll", "/script.dll",
                             "/fifo.dll", "/missing.dll"}) {
        SetLastError(0);
        EXPECT_EQ(LoadLibraryW(DevicePath(folder + name).c_str()), nullptr) << name;
        EXPECT_EQ(GetLastError(), 126u) << name;
    }
    EXPECT_FALSE(std::filesystem::exists(folder + "/was-run"));
    EXPECT_EQ(LoadLibraryW(TEXT("\\Computer\\dev\\zero")), nullptr);
    EXPECT_EQ(LoadLibraryW(nullptr), nullptr);
    EXPECT_EQ(LoadLibraryW(TEXT("")), nullptr);
    // A program is an object of the host, but no library.
    EXPECT_EQ(LoadLibraryW(DevicePath(std::filesystem::read_symlink("/proc/self/exe")).c_str()),
              nullptr);
}

TEST(Modules, ALibraryCutShortIsRefusedInsteadOfEndingTheProcess)
{
    const std::string whole = FileBytes(TAVRIX_SAMPLE_MODULE);
    ASSERT_GT(whole.size(), 4096u);
    const std::string path = TestHome() + "/cut.dll";
    for (size_t eighths = 0; eighths < 5; ++eighths)
        for (const size_t more : {0u, 1u, 63u, 500u}) {
            std::ofstream(path, std::ios::binary | std::ios::trunc)
                << whole.substr(0, whole.size() * eighths / 16 + more);
            EXPECT_EQ(LoadLibraryW(DevicePath(path).c_str()), nullptr) << eighths << " " << more;
        }
}

TEST(Modules, HeadersThatPointNowhereAreRefused)
{
    const std::string whole = FileBytes(TAVRIX_SAMPLE_MODULE);
    const std::string path = TestHome() + "/spoiled.dll";
    // The highest byte of the segment table's offset and count, its entries' size, kind, class, the
    // machine's byte order.
    using Header = ElfW(Ehdr);
    for (const size_t at : {offsetof(Header, e_shoff) - 1, offsetof(Header, e_phentsize),
                            offsetof(Header, e_phnum) + 1, offsetof(Header, e_type),
                            size_t{EI_CLASS}, size_t{EI_DATA}}) {
        std::string spoiled = whole;
        spoiled[at] = static_cast<char>(0x7E);
        std::ofstream(path, std::ios::binary | std::ios::trunc) << spoiled;
        EXPECT_EQ(LoadLibraryW(DevicePath(path).c_str()), nullptr) << at;
    }
}

/// The shell's interface as its callers see it.
struct Allocator {
    struct Table {
        LONG (*QueryInterface)(Allocator*, const void*, void**);
        ULONG (*AddRef)(Allocator*);
        ULONG (*Release)(Allocator*);
        void* (*Alloc)(Allocator*, SIZE_T);
        void* (*Realloc)(Allocator*, void*, SIZE_T);
        void (*Free)(Allocator*, void*);
    };
    const Table* table;
};

TEST(ShellModule, TellsWhereTheUsersDocumentsLie)
{
    const HMODULE shell = LoadLibraryW(TEXT("ceshell.dll"));
    ASSERT_NE(shell, nullptr);
    const auto getMalloc = Export<HRESULT (*)(Allocator**)>(shell, TEXT("SHGetMalloc"));
    const auto getFolder =
        Export<HRESULT (*)(HWND, int, void**)>(shell, TEXT("SHGetSpecialFolderLocation"));
    const auto getPath = Export<BOOL (*)(const void*, LPWSTR)>(shell, TEXT("SHGetPathFromIDList"));
    ASSERT_TRUE(getMalloc != nullptr && getFolder != nullptr && getPath != nullptr);
    Allocator* allocator = nullptr;
    ASSERT_GE(getMalloc(&allocator), 0);
    void* list = nullptr;
    ASSERT_GE(getFolder(nullptr, 5, &list), 0);
    WCHAR path[260];
    EXPECT_TRUE(getPath(list, path));
    EXPECT_EQ(Utf8(path), "\\Application Data\\Tavrix");
    // The sanitizer tells whether the list was given back.
    allocator->table->Free(allocator, list);
    EXPECT_GE(allocator->table->Release(allocator), 1u);

    void* other = &other;
    EXPECT_LT(getFolder(nullptr, 4711, &other), 0);
    EXPECT_EQ(other, nullptr);
    EXPECT_FALSE(getPath(nullptr, path));
    EXPECT_EQ(GetProcAddressW(shell, TEXT("SHGetNothing")), nullptr);
    EXPECT_TRUE(FreeLibrary(shell));
}

TEST(ShellModule, ItsAllocatorGivesGrowsAndAnswersForItself)
{
    const HMODULE shell = LoadLibraryW(TEXT("CESHELL"));
    ASSERT_NE(shell, nullptr);
    EXPECT_EQ(GetModuleHandleW(TEXT("ceshell.dll")), shell);
    Allocator* allocator = nullptr;
    Export<HRESULT (*)(Allocator**)>(shell, TEXT("SHGetMalloc"))(&allocator);
    void* block = allocator->table->Alloc(allocator, 4);
    std::memcpy(block, "abc", 4);
    block = allocator->table->Realloc(allocator, block, 4000);
    EXPECT_STREQ(static_cast<char*>(block), "abc");
    allocator->table->Free(allocator, block);
    allocator->table->Free(allocator, nullptr);
    const BYTE unknown[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46};
    const BYTE nonsense[16] = {9};
    void* same = nullptr;
    EXPECT_EQ(allocator->table->QueryInterface(allocator, unknown, &same), 0);
    EXPECT_EQ(same, allocator);
    EXPECT_LT(allocator->table->QueryInterface(allocator, nonsense, &same), 0);
    EXPECT_EQ(same, nullptr);
    EXPECT_TRUE(FreeLibrary(shell));
    EXPECT_FALSE(FreeLibrary(shell));
}

} // namespace
