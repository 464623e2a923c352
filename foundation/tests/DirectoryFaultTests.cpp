// Folders and files while memory runs out or the device refuses, at every place where it can.
#include "foundation/Directory.h"
#include "foundation/tests/TestFolder.h"
#include "platform/testing/Faults.h"

#include <gtest/gtest.h>

using namespace tavrix::testing;

namespace
{

std::u16string BaseOf(Directory& directory)
{
    WCHAR buffer[300] = u"";
    EXPECT_EQ(1, directory.GetBase(buffer, 300));
    return buffer;
}

/// Done, or nothing else but memory's code.
bool IsDoneOrShort(i32 result)
{
    return result == 1 || result == -2;
}

} // namespace

TEST(DirectoryFaults, ABaseIsMovedOrStays)
{
    ForEveryFault(FaultKind::Allocation, [] {
        Directory directory;
        std::u16string base;
        const auto expect = [&](i32 result, const std::u16string& moved) {
            EXPECT_TRUE(IsDoneOrShort(result)) << result;
            if (result == 1)
                base = moved;
            EXPECT_EQ(base, BaseOf(directory));
        };
        expect(directory.SetBase(u"\\Temp"), u"\\Temp");
        expect(directory.Enter(u"\\a"), base + u"\\a");
        expect(directory.Enter(u"b"), base + u"\\b");
        expect(directory.SetBase(nullptr), u"\\Program Files\\Tavrix");
        expect(directory.SetBase(u"\\x"), u"\\x");
    });
}

TEST(DirectoryFaults, WhatIsToldOfAPathIsNeverWrong)
{
    TestFolder folder;
    folder.Write("file", "x");
    std::filesystem::create_directory(folder.Host("folder"));
    ForEveryFault(FaultKind::Allocation, [&folder] {
        Directory directory;
        if (directory.SetBase(folder.Device().c_str()) < 0)
            return;
        // Memory has no code of its own here.
        const i32 file = directory.IsFile(u"file");
        EXPECT_TRUE(file == 1 || file == -1) << file;
        const i32 isFolder = directory.IsDirectory(u"folder");
        EXPECT_TRUE(isFolder == 1 || isFolder == -1) << isFolder;
        EXPECT_EQ(-1, directory.IsFile(u"folder"));
        EXPECT_EQ(-1, directory.IsDirectory(u"file"));
    });
}

TEST(DirectoryFaults, AListingIsWholeOrDoesNotBegin)
{
    TestFolder folder;
    for (const char* name : {"a", "b", "c"})
        folder.Write(name, name);
    unsigned whole = 0;
    unsigned none = 0;
    ForEveryFault(FaultKind::Allocation, [&] {
        Directory directory;
        if (directory.SetBase(folder.Device().c_str()) < 0)
            return;
        FindRecord mark{};
        FindRecord* record = &mark;
        const i32 result = directory.FindFirst(&record, u"*");
        EXPECT_TRUE(IsDoneOrShort(result)) << result;
        if (result < 0) {
            EXPECT_EQ(nullptr, record);
            ++none;
            return;
        }
        FileEntry entry{};
        std::u16string names;
        while (directory.FindNext(record, &entry) > 0)
            names += entry.name;
        EXPECT_EQ(u"abc", names);
        EXPECT_EQ(1, directory.FindClose(record));
        ++whole;
    });
    EXPECT_GT(whole, 0u);
    EXPECT_GT(none, 0u);
}

TEST(DirectoryFaults, ThingsAreMadeAndDeletedOrLeftAsTheyAre)
{
    TestFolder folder;
    folder.Write("old", "text");
    const auto run = [&folder](FaultKind kind, i32 refusal) {
        SCOPED_TRACE(static_cast<int>(kind));
        ForEveryFault(
            kind,
            [&folder, refusal] {
                Directory directory;
                if (directory.SetBase(folder.Device().c_str()) < 0)
                    return;
                const auto expect = [&](i32 result, const char* name, bool thereAfter) {
                    EXPECT_TRUE(result == 1 || result == refusal) << name << ' ' << result;
                    EXPECT_EQ(folder.Has(name), (result == 1) == thereAfter) << name;
                };
                WCHAR sub[] = u"sub";
                expect(directory.MakeDirectory(sub), "sub", true);
                expect(directory.MakeFile(u"new", 1), "new", true);
                const i32 emptied = directory.MakeFile(u"old", 2);
                EXPECT_TRUE(emptied == 1 || emptied == refusal) << emptied;
                EXPECT_EQ(emptied == 1 ? "" : "text", folder.Read("old"));
                const std::u16string from = folder.Path(u"old");
                const std::u16string copy = folder.Path(u"copy");
                const i32 copied = directory.CopyFile(from.c_str(), copy.c_str(), 1);
                EXPECT_TRUE(copied == 1 || copied == -1) << copied;
                if (folder.Has("sub")) {
                    expect(directory.RemoveDirectory(sub), "sub", false);
                }
                if (folder.Has("new")) {
                    WCHAR name[] = u"new";
                    expect(directory.DeleteFile(name), "new", false);
                }
            },
            [&folder](bool) {
                for (const char* name : {"sub", "new", "copy"})
                    std::filesystem::remove(folder.Host(name));
                folder.Write("old", "text");
            });
    };
    run(FaultKind::Allocation, -2);
    run(FaultKind::Create, -1);
}

TEST(DirectoryFaults, AStreamOpensOrIsNotThere)
{
    TestFolder folder;
    folder.Write("a", "hello");
    const auto body = [&folder](i32 refusal) {
        Directory directory;
        if (directory.SetBase(folder.Device().c_str()) < 0)
            return;
        FileStream other;
        FileStream* stream = &other;
        const i32 result = directory.OpenFile(u"a", &stream, 1);
        EXPECT_TRUE(result == 1 || result == refusal) << result;
        EXPECT_EQ(result == 1, stream != nullptr);
        if (result < 0)
            return;
        char text[6] = "";
        u32 length = 5;
        EXPECT_EQ(1, stream->Read(text, &length));
        EXPECT_STREQ("hello", text);
        EXPECT_EQ(1, directory.CloseFile(&stream));
        EXPECT_EQ(nullptr, stream);
    };
    // The resolved path, the stream itself and the name it keeps.
    EXPECT_GE(ForEveryFault(FaultKind::Allocation, [&] { body(-2); }), 4u);
    EXPECT_EQ(ForEveryFault(FaultKind::Open, [&] { body(-1); }), 1u);
}

TEST(DirectoryFaults, WithoutAnAllocatorEverythingThatResolvesAnswersNoMemory)
{
    Scope scope;
    TestFolder folder;
    folder.Write("a", "hello");
    const std::u16string path = folder.Path(u"a");
    ArmedFault fault(FaultKind::Allocation, 1, FaultReach::Once);
    Directory directory; // its allocator finds no memory
    ASSERT_TRUE(fault.Fired());
    fault.Disarm();
    WCHAR name[] = u"\\Temp\\x/y";
    FindRecord* record = nullptr;
    FileStream* stream = nullptr;
    EXPECT_EQ(-2, directory.SetBase(u"\\Temp"));
    EXPECT_EQ(-2, directory.SetBase(nullptr));
    EXPECT_EQ(-2, directory.Enter(u"a"));
    EXPECT_EQ(-1, directory.IsFile(path.c_str()));
    EXPECT_EQ(-1, directory.IsDirectory(path.c_str()));
    EXPECT_EQ(-2, directory.FindFirst(&record, path.c_str()));
    EXPECT_EQ(-2, directory.MakeDirectory(name));
    EXPECT_EQ(-2, directory.RemoveDirectory(name));
    EXPECT_EQ(-2, directory.DeleteFile(name));
    EXPECT_EQ(-2, directory.MakeFile(path.c_str(), 1));
    EXPECT_EQ(-2, directory.OpenFile(path.c_str(), &stream, 1));
    EXPECT_EQ(nullptr, stream);
    EXPECT_EQ(std::u16string(u"\\Temp\\x\\y"), name) << "turned before memory is looked for";
    // Null is told first, all the same.
    EXPECT_EQ(-4, directory.MakeFile(nullptr, 1));
    EXPECT_EQ(-4, directory.OpenFile(nullptr, &stream, 1));
    EXPECT_EQ(u"", BaseOf(directory));
    // What needs no memory works.
    EXPECT_EQ(1, directory.CopyFile(path.c_str(), folder.Path(u"b").c_str(), 1));
}

TEST(KnownFolderFaults, AShellWithoutMemoryMeansTheFixedName)
{
    std::u16string asked;
    ForEveryFault(
        FaultKind::Allocation,
        [&asked] {
            WCHAR folder[260] = u"";
            EXPECT_EQ(1, GetDocumentsDirectory(folder, 260));
            asked = folder;
            EXPECT_EQ(1, GetApplicationDirectory(folder, 260));
            EXPECT_EQ(std::u16string(u"\\Program Files\\Tavrix"), folder);
        },
        [&asked](bool fired) {
            EXPECT_EQ(fired ? u"\\My Documents" : u"\\Application Data\\Tavrix", asked);
        });
}
