// Open files: dispositions, kinds of files, reading, writing, the position, and failures.

#include "platform/tests/core/FileWorld.h"

#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

using namespace tavrix::platform;
using namespace tavrix::platform::tests;

namespace
{

/// An open file that closes itself.
struct Opened {
    explicit Opened(HANDLE opened) : handle(opened) {}
    ~Opened()
    {
        if (handle != INVALID_HANDLE_VALUE)
            CloseHandle(handle);
    }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;
    operator HANDLE() const { return handle; }
    HANDLE handle;
};

DWORD Write(HANDLE file, const std::string& text)
{
    DWORD done = 77;
    WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &done, nullptr);
    return done;
}

std::string Read(HANDLE file, DWORD length)
{
    std::string text(length, '\0');
    DWORD done = 77;
    EXPECT_TRUE(ReadFile(file, text.data(), length, &done, nullptr));
    text.resize(done);
    return text;
}

} // namespace

// Dispositions.

TEST(Files, CreateNewMakesAFileAndRefusesOneThatIsThere)
{
    const FileWorld world;
    EXPECT_TRUE(WriteDevice(u"\\a", "1", CREATE_NEW));
    EXPECT_FALSE(WriteDevice(u"\\a", "2", CREATE_NEW));
    EXPECT_EQ(ERROR_FILE_EXISTS, GetLastError());
    EXPECT_EQ("1", ReadDevice(u"\\a"));
    EXPECT_TRUE(WriteDevice(u"\\Temp\\000001.tmp", "1", CREATE_NEW));
    EXPECT_FALSE(WriteDevice(u"\\Temp\\000001.tmp", "2", CREATE_NEW));
    EXPECT_EQ(ERROR_FILE_EXISTS, GetLastError());
}

TEST(Files, CreateAlwaysEmptiesWhatIsThereAndTellsSo)
{
    const FileWorld world;
    for (const WCHAR* path : {u"\\a", u"\\Temp\\000001.tmp"}) {
        SetLastError(77);
        EXPECT_TRUE(WriteDevice(path, "12345"));
        EXPECT_EQ(ERROR_SUCCESS, GetLastError());
        EXPECT_TRUE(WriteDevice(path, "x"));
        EXPECT_EQ(ERROR_ALREADY_EXISTS, GetLastError());
        EXPECT_EQ("x", ReadDevice(path));
    }
}

TEST(Files, OpenExistingNeedsTheFile)
{
    const FileWorld world;
    EXPECT_EQ(INVALID_HANDLE_VALUE, Open(u"\\a", OPEN_EXISTING));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
    EXPECT_EQ(INVALID_HANDLE_VALUE, Open(u"\\none\\a", OPEN_EXISTING));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, GetLastError());
    EXPECT_FALSE(HostExists(world.Host("home/a")));
}

TEST(Files, OpenAlwaysKeepsWhatIsThereOrMakesIt)
{
    const FileWorld world;
    for (const WCHAR* path : {u"\\a", u"\\Temp\\000001.tmp"}) {
        EXPECT_TRUE(WriteDevice(path, "123", OPEN_ALWAYS));
        EXPECT_EQ(ERROR_SUCCESS, GetLastError());
        EXPECT_TRUE(WriteDevice(path, "X", OPEN_ALWAYS));
        EXPECT_EQ(ERROR_ALREADY_EXISTS, GetLastError());
        EXPECT_EQ("X23", ReadDevice(path));
    }
}

TEST(Files, TruncateExistingNeedsTheFileAndWriteAccess)
{
    const FileWorld world;
    EXPECT_FALSE(WriteDevice(u"\\a", "x", TRUNCATE_EXISTING));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
    WriteHost(world.Host("home/a"), "long");
    EXPECT_EQ(INVALID_HANDLE_VALUE, Open(u"\\a", TRUNCATE_EXISTING, GENERIC_READ));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
    EXPECT_TRUE(WriteDevice(u"\\a", "x", TRUNCATE_EXISTING));
    EXPECT_EQ("x", ReadHost(world.Host("home/a")));
}

TEST(Files, UnknownDispositionIsRefused)
{
    const FileWorld world;
    for (const DWORD disposition : {0u, 6u}) {
        EXPECT_EQ(INVALID_HANDLE_VALUE, Open(u"\\a", disposition));
        EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
    }
}

TEST(Files, EmptyAndNullPathsAreNoFiles)
{
    const FileWorld world;
    EXPECT_FALSE(Probe(u""));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, GetLastError());
    EXPECT_FALSE(Probe(nullptr));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, GetLastError());
}

TEST(Files, MakingAFileInAMissingFolderFails)
{
    const FileWorld world;
    EXPECT_FALSE(WriteDevice(u"\\none\\a", "x"));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, GetLastError());
    WriteHost(world.Host("home/file"), "");
    EXPECT_FALSE(WriteDevice(u"\\file\\a", "x"));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, GetLastError());
}

TEST(Files, AttributeReadOnlyMakesAFileThatLaterOpensRefuseToWrite)
{
    const FileWorld world;
    CloseHandle(CreateFileW(u"\\a", GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_READONLY,
                            nullptr));
    EXPECT_EQ(FILE_ATTRIBUTE_READONLY, GetFileAttributesW(u"\\a"));
}

// Kinds of files.

TEST(Files, FoldersFifosAndDevicesFailAtOnce)
{
    const FileWorld world;
    std::filesystem::create_directory(world.Host("home/folder"));
    ASSERT_EQ(0, mkfifo(world.Host("home/fifo").c_str(), 0600));
    ASSERT_EQ(0, mkfifo(tavrix::testing::HostPath(u"\\Temp\\000001.tmp").c_str(), 0600));
    const auto begin = std::chrono::steady_clock::now();
    for (const WCHAR* path :
         {u"\\folder", u"\\fifo", u"\\Computer\\dev\\null", u"\\Computer\\dev\\zero", u"\\",
          u"\\Temp", u"\\Application Data", u"\\Temp\\000001.tmp"}) {
        for (const DWORD access : {0u, GENERIC_READ, GENERIC_WRITE}) {
            EXPECT_EQ(INVALID_HANDLE_VALUE, Open(path, OPEN_EXISTING, access))
                << tavrix::testing::Utf8(path) << " " << access;
            EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError()) << tavrix::testing::Utf8(path);
        }
        EXPECT_FALSE(WriteDevice(path, "x")) << tavrix::testing::Utf8(path);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

TEST(Files, PathThatEndsInASeparatorIsNoFile)
{
    const FileWorld world;
    WriteHost(world.Host("home/a"), "x");
    EXPECT_FALSE(Probe(u"\\a\\"));
    EXPECT_EQ(ERROR_INVALID_NAME, GetLastError());
}

TEST(Files, LinksAreFollowed)
{
    const FileWorld world;
    WriteHost(world.Host("target"), "x");
    std::filesystem::create_symlink(world.Host("target"), world.Host("home/link"));
    std::filesystem::create_symlink("nowhere", world.Host("home/dangling"));
    EXPECT_EQ("x", ReadDevice(u"\\link"));
    EXPECT_FALSE(Probe(u"\\dangling"));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
}

TEST(Files, AccessZeroProbesAFileThatMayNotBeReadAndTellsItsSize)
{
    const FileWorld world;
    WriteHost(world.Host("home/secret"), "12345");
    std::filesystem::permissions(world.Host("home/secret"), std::filesystem::perms::none);
    const Opened file(Open(u"\\secret", OPEN_EXISTING, 0));
    ASSERT_NE(INVALID_HANDLE_VALUE, file.handle);
    EXPECT_EQ(5u, GetFileSize(file, nullptr));
    char byte = 0;
    DWORD done = 9;
    EXPECT_FALSE(ReadFile(file, &byte, 1, &done, nullptr));
    EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
    EXPECT_EQ(0u, done);
    EXPECT_FALSE(WriteFile(file, &byte, 1, &done, nullptr));
    EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
}

TEST(Files, ShareModesAreNotEnforced)
{
    const FileWorld world;
    const Opened first(CreateFileW(u"\\log", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    EXPECT_EQ(5u, Write(first, "first"));
    // A second start empties the log that the first holds open.
    const Opened second(
        CreateFileW(u"\\log", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    ASSERT_NE(INVALID_HANDLE_VALUE, second.handle);
    EXPECT_EQ(0u, GetFileSize(first, nullptr));
    EXPECT_TRUE(DeleteFileW(u"\\log"));
}

// Reading, writing, the position.

TEST(Files, ReadStopsAtTheEndAndThenGivesNothing)
{
    const FileWorld world;
    WriteHost(world.Host("home/a"), "12345");
    const Opened file(Open(u"\\a", OPEN_EXISTING, GENERIC_READ));
    EXPECT_EQ("123", Read(file, 3));
    EXPECT_EQ("45", Read(file, 3));
    EXPECT_EQ("", Read(file, 3));
    DWORD done = 9;
    char byte = 0;
    EXPECT_FALSE(WriteFile(file, "x", 1, &done, nullptr));
    EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
    EXPECT_EQ(0u, done);
    EXPECT_FALSE(ReadFile(file, &byte, 1, nullptr, nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
    EXPECT_FALSE(ReadFile(file, nullptr, 1, &done, nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
}

TEST(Files, FileOpenedForWritingOnlyCannotBeRead)
{
    const FileWorld world;
    const Opened file(Open(u"\\a", CREATE_NEW, GENERIC_WRITE));
    EXPECT_EQ(1u, Write(file, "x"));
    char byte = 0;
    DWORD done = 9;
    EXPECT_FALSE(ReadFile(file, &byte, 1, &done, nullptr));
    EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
}

TEST(Files, ReadingAndWritingShareOnePosition)
{
    const FileWorld world;
    WriteHost(world.Host("home/a"), "0123456789");
    const Opened file(Open(u"\\a", OPEN_EXISTING));
    EXPECT_EQ("01", Read(file, 2));
    EXPECT_EQ(2u, Write(file, "XY"));
    EXPECT_EQ("45", Read(file, 2));
    EXPECT_EQ(6u, SetFilePointer(file, 0, nullptr, FILE_CURRENT));
    EXPECT_EQ("01XY456789", ReadHost(world.Host("home/a")));
}

TEST(Files, PositionIsSetFromTheBeginTheCurrentPlaceAndTheEnd)
{
    const FileWorld world;
    WriteHost(world.Host("home/a"), "0123456789");
    const Opened file(Open(u"\\a", OPEN_EXISTING));
    EXPECT_EQ(3u, SetFilePointer(file, 3, nullptr, FILE_BEGIN));
    EXPECT_EQ(5u, SetFilePointer(file, 2, nullptr, FILE_CURRENT));
    EXPECT_EQ(4u, SetFilePointer(file, -1, nullptr, FILE_CURRENT));
    EXPECT_EQ("4", Read(file, 1));
    EXPECT_EQ(8u, SetFilePointer(file, -2, nullptr, FILE_END));
    EXPECT_EQ("89", Read(file, 9));
    EXPECT_EQ(INVALID_SET_FILE_POINTER, SetFilePointer(file, 0, nullptr, 3));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
}

TEST(Files, PositionBeforeTheBeginFailsAndStaysWhereItWas)
{
    const FileWorld world;
    WriteHost(world.Host("home/a"), "0123456789");
    const Opened file(Open(u"\\a", OPEN_EXISTING));
    SetFilePointer(file, 3, nullptr, FILE_BEGIN);
    EXPECT_EQ(INVALID_SET_FILE_POINTER, SetFilePointer(file, -4, nullptr, FILE_CURRENT));
    EXPECT_EQ(131u, GetLastError());
    EXPECT_EQ(3u, SetFilePointer(file, 0, nullptr, FILE_CURRENT));
}

TEST(Files, PositionsBeyond32BitsNeedTheHighWord)
{
    const FileWorld world;
    const Opened file(Open(u"\\a", CREATE_NEW));
    LONG high = 1;
    EXPECT_EQ(5u, SetFilePointer(file, 5, &high, FILE_BEGIN));
    EXPECT_EQ(1, high);
    EXPECT_EQ(1u, Write(file, "x"));
    DWORD sizeHigh = 9;
    EXPECT_EQ(6u, GetFileSize(file, &sizeHigh));
    EXPECT_EQ(1u, sizeHigh);
    EXPECT_EQ(INVALID_SET_FILE_POINTER, SetFilePointer(file, 0, nullptr, FILE_CURRENT));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
    // A move backwards is a distance of 64 bits too.
    high = -1;
    EXPECT_EQ(2u, SetFilePointer(file, -4, &high, FILE_CURRENT));
    EXPECT_EQ(1, high);
}

TEST(Files, LowWordThatLooksLikeAFailureIsToldByTheLastError)
{
    const FileWorld world;
    const Opened file(Open(u"\\a", CREATE_NEW));
    LONG high = 0;
    SetLastError(77);
    EXPECT_EQ(INVALID_SET_FILE_POINTER, SetFilePointer(file, -1, &high, FILE_BEGIN));
    EXPECT_EQ(0, high);
    EXPECT_EQ(ERROR_SUCCESS, GetLastError());
    ASSERT_TRUE(SetEndOfFile(file));
    SetLastError(77);
    EXPECT_EQ(INVALID_FILE_SIZE, GetFileSize(file, nullptr));
    EXPECT_EQ(ERROR_SUCCESS, GetLastError());
}

TEST(Files, SetEndOfFileCutsAndStretchesAtThePosition)
{
    const FileWorld world;
    WriteHost(world.Host("home/a"), "0123456789");
    {
        const Opened file(Open(u"\\a", OPEN_EXISTING));
        SetFilePointer(file, 4, nullptr, FILE_BEGIN);
        EXPECT_TRUE(SetEndOfFile(file));
        EXPECT_EQ(4u, GetFileSize(file, nullptr));
        SetFilePointer(file, 6, nullptr, FILE_BEGIN);
        EXPECT_TRUE(SetEndOfFile(file));
        EXPECT_TRUE(FlushFileBuffers(file));
    }
    EXPECT_EQ(std::string("0123\0\0", 6), ReadHost(world.Host("home/a")));
    const Opened readOnly(Open(u"\\a", OPEN_EXISTING, GENERIC_READ));
    EXPECT_FALSE(SetEndOfFile(readOnly));
    EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
    EXPECT_FALSE(FlushFileBuffers(readOnly));
    EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
}

TEST(Files, ClosedAndForeignHandlesAreRefused)
{
    const FileWorld world;
    const HANDLE file = Open(u"\\a", CREATE_NEW);
    EXPECT_TRUE(CloseHandle(file));
    char byte = 0;
    DWORD done = 0;
    for (const HANDLE handle : {file, HANDLE(nullptr), INVALID_HANDLE_VALUE, HANDLE(&byte)}) {
        SetLastError(0);
        EXPECT_FALSE(ReadFile(handle, &byte, 1, &done, nullptr));
        EXPECT_EQ(ERROR_INVALID_HANDLE, GetLastError());
        EXPECT_FALSE(WriteFile(handle, &byte, 1, &done, nullptr));
        EXPECT_FALSE(SetEndOfFile(handle));
        EXPECT_FALSE(FlushFileBuffers(handle));
        EXPECT_EQ(INVALID_FILE_SIZE, GetFileSize(handle, nullptr));
        EXPECT_EQ(INVALID_SET_FILE_POINTER, SetFilePointer(handle, 0, nullptr, FILE_BEGIN));
        EXPECT_FALSE(CloseHandle(handle));
        EXPECT_EQ(ERROR_INVALID_HANDLE, GetLastError());
    }
}

TEST(Files, ThreadsPageLinesSideBySide)
{
    const FileWorld world;
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([number, &wrong] {
            for (int i = 0; i < 200; ++i) {
                const std::string digits = std::to_string(100000 + number * 1000 + i);
                const std::u16string path = tavrix::testing::Wide("\\Temp\\" + digits + ".tmp");
                wrong += Probe(path.c_str());
                wrong += !WriteDevice(path.c_str(), digits, CREATE_NEW);
                wrong += ReadDevice(path.c_str()) != digits;
                wrong += !DeleteFileW(path.c_str());
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(0, wrong);
    EXPECT_EQ("(none)", Names(u"\\Temp\\*"));
}

// Failures.

TEST(Files, WriteThatFillsTheDiskTellsWhatWentInAndTheNextOneFails)
{
    const FileWorld world;
    EXPECT_EQ(0, InChild([] {
                  std::signal(SIGXFSZ, SIG_IGN);
                  const rlimit limit{100, 100};
                  if (setrlimit(RLIMIT_FSIZE, &limit) != 0)
                      return 1;
                  const Opened file(Open(u"\\a", CREATE_NEW));
                  const std::string text(150, 'x');
                  DWORD done = 0;
                  if (!WriteFile(file, text.data(), 150, &done, nullptr) || done != 100)
                      return 2;
                  if (GetLastError() != ERROR_DISK_FULL)
                      return 3;
                  if (WriteFile(file, text.data(), 150, &done, nullptr) || done != 0)
                      return 4;
                  return GetLastError() == ERROR_DISK_FULL ? 0 : 5;
              }));
}

TEST(Files, FaultyWriteComesUpShortByAtLeastOneByte)
{
    const FileWorld world;
    const tavrix::testing::Scope scope;
    const Opened file(Open(u"\\a", CREATE_NEW));
    DWORD shortBy = 3;
    std::u16string asked;
    tavrix::testing::SetFileFault([&](FileOperation operation, const WCHAR* path, DWORD* missing) {
        *missing = shortBy;
        asked = path;
        return operation == FileOperation::Write;
    });
    DWORD done = 0;
    EXPECT_TRUE(WriteFile(file, "0123456789", 10, &done, nullptr));
    EXPECT_EQ(7u, done);
    EXPECT_EQ(ERROR_DISK_FULL, GetLastError());
    EXPECT_EQ(u"\\a", asked);
    shortBy = 0;
    EXPECT_TRUE(WriteFile(file, "abc", 3, &done, nullptr));
    EXPECT_EQ(2u, done);
    shortBy = 4;
    EXPECT_FALSE(WriteFile(file, "abc", 3, &done, nullptr));
    EXPECT_EQ(0u, done);
    EXPECT_EQ(ERROR_DISK_FULL, GetLastError());
    EXPECT_EQ("0123456ab", ReadHost(world.Host("home/a")));
}

TEST(Files, FaultyReadGivesNothingAndKeepsThePosition)
{
    const FileWorld world;
    const tavrix::testing::Scope scope;
    WriteHost(world.Host("home/a"), "abc");
    const Opened file(Open(u"\\a", OPEN_EXISTING));
    tavrix::testing::SetFileFault([](FileOperation operation, const WCHAR*, DWORD*) {
        return operation == FileOperation::Read;
    });
    char bytes[3] = {};
    DWORD done = 9;
    EXPECT_FALSE(ReadFile(file, bytes, 3, &done, nullptr));
    EXPECT_EQ(0u, done);
    tavrix::testing::Reset();
    EXPECT_EQ("abc", Read(file, 3));
}

TEST(Files, FaultyCreateMakesNothingAndFaultyOpenOpensNothing)
{
    const FileWorld world;
    const tavrix::testing::Scope scope;
    WriteHost(world.Host("home/there"), "abc");
    FileOperation failing = FileOperation::Create;
    tavrix::testing::SetFileFault(
        [&](FileOperation operation, const WCHAR*, DWORD*) { return operation == failing; });
    EXPECT_EQ(INVALID_HANDLE_VALUE, Open(u"\\Temp\\000001.tmp", CREATE_NEW));
    EXPECT_EQ(INVALID_HANDLE_VALUE, Open(u"\\there", CREATE_ALWAYS));
    EXPECT_FALSE(CreateDirectoryW(u"\\folder", nullptr));
    EXPECT_EQ("abc", ReadDevice(u"\\there"));
    failing = FileOperation::Open;
    EXPECT_EQ(INVALID_HANDLE_VALUE, Open(u"\\there", OPEN_EXISTING));
    EXPECT_FALSE(Probe(u"\\there"));
    EXPECT_TRUE(WriteDevice(u"\\new", "x"));
    EXPECT_FALSE(Probe(u"\\Temp\\000001.tmp"));
    EXPECT_FALSE(HostExists(world.Host("home/folder")));
}

TEST(Files, FaultFunctionMayUseFilesItself)
{
    const FileWorld world;
    const tavrix::testing::Scope scope;
    bool inside = false;
    tavrix::testing::SetFileFault([&](FileOperation, const WCHAR*, DWORD*) {
        if (!inside) {
            inside = true;
            WriteDevice(u"\\noted", "x");
        }
        return false;
    });
    EXPECT_TRUE(WriteDevice(u"\\a", "1"));
    EXPECT_EQ("x", ReadHost(world.Host("home/noted")));
}
