// What a Directory holds, in which order, and for how long: its base and the path resolved last.
#include "foundation/Directory.h"
#include "foundation/PathText.h"
#include "foundation/tests/Slots.h"
#include "foundation/tests/TestFolder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <malloc.h>

namespace
{

/// The fields as they are to lie behind the table of operations.
struct Fields {
    void* table;
    WCHAR* base;
    Allocator* allocator;
    WCHAR* scratch;
};
static_assert(sizeof(Fields) == sizeof(Directory));

Fields FieldsOf(const Directory& directory)
{
    Fields fields;
    std::memcpy(&fields, static_cast<const void*>(&directory), sizeof fields);
    return fields;
}

} // namespace

TEST(DirectoryLayout, FieldsStandInTheirOrder)
{
    Directory directory;
    EXPECT_EQ(nullptr, FieldsOf(directory).base);
    EXPECT_NE(nullptr, FieldsOf(directory).allocator);
    EXPECT_EQ(nullptr, FieldsOf(directory).scratch);
    ASSERT_EQ(1, directory.SetBase(u"\\Temp"));
    EXPECT_EQ(std::u16string(u"\\Temp"), FieldsOf(directory).base);
    EXPECT_EQ(nullptr, FieldsOf(directory).scratch);
}

#ifdef TAVRIX_SLOTS_CAN_BE_READ
TEST(DirectoryLayout, OperationsStandInTheirOrder)
{
    EXPECT_TRUE(StandInOrder(&Directory::SetBase, &Directory::GetBase, &Directory::Enter,
                             &Directory::IsFile, &Directory::IsDirectory, &Directory::FindFirst,
                             &Directory::FindNext, &Directory::FindClose, &Directory::MakeDirectory,
                             &Directory::RemoveDirectory, &Directory::MakeFile,
                             &Directory::DeleteFile, &Directory::CopyFile, &Directory::MoveFile,
                             &Directory::OpenFile, &Directory::CloseFile));
}

TEST(AllocatorLayout, AllocStandsBeforeFree)
{
    EXPECT_TRUE(StandInOrder(&Allocator::Alloc, &Allocator::Free));
    EXPECT_TRUE(StandInOrder(&HeapAllocator::Alloc, &HeapAllocator::Free));
}
#endif

TEST(AllocatorLayout, AHeapAllocatorIsAHeapAndWhetherItIsItsOwn)
{
    struct HeapFields {
        void* table;
        HANDLE heap;
        i32 ownsHeap;
    };
    static_assert(sizeof(HeapFields) == sizeof(HeapAllocator));
    static_assert(sizeof(MallocAllocator) == sizeof(void*)); // no field at all
    const auto fieldsOf = [](const HeapAllocator& allocator) {
        HeapFields fields;
        std::memcpy(&fields, static_cast<const void*>(&allocator), sizeof fields);
        return fields;
    };
    HeapAllocator own;
    EXPECT_NE(nullptr, fieldsOf(own).heap);
    EXPECT_EQ(1, fieldsOf(own).ownsHeap);
    HeapAllocator borrowed(GetProcessHeap());
    EXPECT_EQ(GetProcessHeap(), fieldsOf(borrowed).heap);
    EXPECT_EQ(0, fieldsOf(borrowed).ownsHeap);
    EXPECT_EQ(1, own.SetHeap(GetProcessHeap()));
    EXPECT_EQ(0, fieldsOf(own).ownsHeap);
}

TEST(DirectoryLayout, RecordsOfAListingAreLaidOutAsTold)
{
    EXPECT_EQ(0u, offsetof(FileEntry, name));
    EXPECT_EQ(520u, offsetof(FileEntry, type));
    EXPECT_EQ(528u, offsetof(FileEntry, size));
    EXPECT_LT(offsetof(FindRecord, find), offsetof(FindRecord, data));
    EXPECT_LT(offsetof(FindRecord, data), offsetof(FindRecord, finished));
}

TEST(DirectoryLayout, TheProgramsFolderLiesInABlockOf8192Bytes)
{
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(nullptr));
    const size_t usable = malloc_usable_size(FieldsOf(directory).base);
    EXPECT_GE(usable, 8192u);
    EXPECT_LT(usable, 8192u + 64); // an allocator may round up by some bytes
}

TEST(DirectoryLayout, NoOperationLeavesTheResolvedPathBehind)
{
    TestFolder folder;
    folder.Write("a", "x");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    WCHAR sub[] = u"sub";
    WCHAR file[] = u"made";
    FindRecord* record = nullptr;
    FileStream* stream = nullptr;
    const auto expectNone = [&directory](const char* operation) {
        EXPECT_EQ(nullptr, FieldsOf(directory).scratch) << operation;
    };
    for (const char* round : {"that succeeds", "that fails"}) {
        (void)directory.MakeDirectory(sub);
        expectNone("MakeDirectory");
        (void)directory.MakeFile(file, 1);
        expectNone("MakeFile");
        (void)directory.IsFile(file);
        expectNone("IsFile");
        (void)directory.IsDirectory(file);
        expectNone("IsDirectory");
        SCOPED_TRACE(round);
    }
    for (const char* round : {"that succeeds", "that fails"}) {
        (void)directory.RemoveDirectory(sub);
        expectNone("RemoveDirectory");
        (void)directory.DeleteFile(file);
        expectNone("DeleteFile");
        SCOPED_TRACE(round);
    }
    ASSERT_EQ(1, directory.FindFirst(&record, u"a"));
    expectNone("FindFirst");
    EXPECT_EQ(1, directory.FindClose(record));
    EXPECT_EQ(-1, directory.FindFirst(&record, u"absent"));
    expectNone("FindFirst that finds nothing");
    ASSERT_EQ(1, directory.OpenFile(u"a", &stream, 1));
    expectNone("OpenFile");
    EXPECT_EQ(1, directory.CloseFile(&stream));
}

TEST(DirectoryLayout, AFailedOpenLeavesItsPathAndTheNextResolvedOneTakesItsPlace)
{
    TestFolder folder;
    folder.Write("a", "x");
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(folder.Device().c_str()));
    FileStream* stream = nullptr;
    EXPECT_EQ(-1, directory.OpenFile(u"absent", &stream, 1));
    ASSERT_NE(nullptr, FieldsOf(directory).scratch);
    EXPECT_EQ(folder.Path(u"absent"), FieldsOf(directory).scratch);
    // A call that is refused before it resolves leaves it, too.
    EXPECT_EQ(-4, directory.IsFile(nullptr));
    EXPECT_NE(nullptr, FieldsOf(directory).scratch);
    EXPECT_EQ(1, directory.IsFile(u"a"));
    EXPECT_EQ(nullptr, FieldsOf(directory).scratch);
}

TEST(DirectoryLayout, AResolvedPathTakesBothLengthsAndTwoCharacters)
{
    Directory directory;
    ASSERT_EQ(1, directory.SetBase(u"\\no such folder"));
    FileStream* stream = nullptr;
    ASSERT_EQ(-1, directory.OpenFile(u"x/y", &stream, 1));
    const WCHAR* scratch = FieldsOf(directory).scratch;
    ASSERT_NE(nullptr, scratch);
    EXPECT_EQ(std::u16string(u"\\no such folder\\x\\y"), scratch);
    EXPECT_EQ(15u + 3u + 2u, ResolvedCells(15, 3));
#if defined(__SANITIZE_ADDRESS__)
    // Only here is the size told to the byte.
    EXPECT_EQ((15u + 3u + 2u) * 2, malloc_usable_size(const_cast<WCHAR*>(scratch)));
#endif
}
