// Searches: order, patterns, what is left out, and how a search ends.

#include "platform/core/FileNames.h"
#include "platform/tests/core/FileWorld.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace tavrix::platform;
using namespace tavrix::platform::tests;

namespace
{

bool Fits(const WCHAR* name, const WCHAR* pattern)
{
    return FitsPattern(Folded(name), Folded(pattern));
}

} // namespace

TEST(FindFiles, OrderIsByNameWithoutRegardToCase)
{
    const FileWorld world;
    for (const char* name : {"b.dll", "C.dll", "a.dll", "B2.dll", "É.dll", "_.dll", "ê.dll"})
        WriteHost(world.Host("home/f/") + name, "");
    EXPECT_EQ("_.dll|a.dll|b.dll|B2.dll|C.dll|É.dll|ê.dll", Names(u"\\f\\*"));
}

TEST(FindFiles, NamesThatDifferInCaseAloneAreBothListed)
{
    const FileWorld world;
    WriteHost(world.Host("home/f/a.txt"), "");
    WriteHost(world.Host("home/f/A.txt"), "");
    EXPECT_EQ("A.txt|a.txt", Names(u"\\f\\*"));
}

TEST(FindFiles, EmptyFolderGivesTheInvalidHandle)
{
    const FileWorld world;
    std::filesystem::create_directory(world.Host("home/empty"));
    WIN32_FIND_DATAW data{};
    EXPECT_EQ(INVALID_HANDLE_VALUE, FindFirstFileW(u"\\empty\\*", &data));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
    EXPECT_EQ(INVALID_HANDLE_VALUE, FindFirstFileW(u"\\none\\*", &data));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, GetLastError());
    WriteHost(world.Host("home/file"), "");
    EXPECT_EQ(INVALID_HANDLE_VALUE, FindFirstFileW(u"\\file\\*", &data));
    EXPECT_EQ(ERROR_PATH_NOT_FOUND, GetLastError());
}

TEST(FindFiles, DotAndDotDotAreNeverGivenAndHiddenFilesAre)
{
    const FileWorld world;
    WriteHost(world.Host("home/f/.config/x"), "");
    WriteHost(world.Host("home/f/..a"), "");
    EXPECT_EQ("..a|.config/", Names(u"\\f\\*"));
    EXPECT_EQ("f/", Names(u"\\f\\."));
}

TEST(FindFiles, NamesWithoutADeviceFormAreLeftOut)
{
    const FileWorld world;
    WriteHost(world.Host("home/f/good"), "");
    WriteHost(world.Host("home/f/back\\slash"), "");
    WriteHost(world.Host("home/f/latin\xE9"), "");
    WriteHost(world.Host("home/f/overlong\xC0\xAF"), "");
    WriteHost(world.Host("home/f/surrogate\xED\xA0\x80"), "");
    WriteHost(world.Host("home/f/cut\xE3\x81"), "");
    std::filesystem::create_symlink("nowhere", world.Host("home/f/dangling"));
    EXPECT_EQ("good", Names(u"\\f\\*"));
}

TEST(FindFiles, NamesOfAllPlanesComeThrough)
{
    const FileWorld world;
    WriteHost(world.Host("home/f/絵😀.png"), "x");
    EXPECT_EQ("絵😀.png", Names(u"\\f\\*.PNG"));
    EXPECT_EQ("x", ReadDevice(u"\\f\\絵😀.png"));
}

TEST(FindFiles, ExactPathIsFoundWithItsOwnSpelling)
{
    const FileWorld world;
    WriteHost(world.Host("home/f/Photo.Jpg"), "12345");
    EXPECT_EQ("Photo.Jpg", Names(u"\\F\\PHOTO.JPG"));
    EXPECT_EQ("f/", Names(u"\\F"));
    EXPECT_EQ("(none)", Names(u"\\f\\other.jpg"));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
}

TEST(FindFiles, ExactPathOfEachMountAndOfTheWayToItIsFound)
{
    const FileWorld world;
    EXPECT_EQ("Computer/", Names(u"\\Computer"));
    EXPECT_EQ("Program Files/", Names(u"\\program files"));
    EXPECT_EQ("Tavrix/", Names(u"\\Program Files\\TAVRIX"));
    EXPECT_EQ("Application Data/", Names(u"\\Application Data"));
    EXPECT_EQ("Tavrix/", Names(u"\\Application Data\\Tavrix"));
    EXPECT_EQ("My Documents/", Names(u"\\My Documents"));
    EXPECT_EQ("Temp/", Names(u"\\Temp"));
    EXPECT_EQ("Storage Card/", Names(u"\\Storage Card"));
    EXPECT_EQ("Temp/", Names(u"\\Storage Card\\Temp"));
}

TEST(FindFiles, MountsShowInTheListingOfTheirParent)
{
    const FileWorld world;
    WriteHost(world.Host("home/Application Data/mine.txt"), "");
    EXPECT_EQ("mine.txt|Tavrix/", Names(u"\\Application Data\\*"));
    EXPECT_EQ("Tavrix/", Names(u"\\Program Files\\*"));
    EXPECT_EQ("Temp/", Names(u"\\Storage Card\\*"));
    EXPECT_EQ("(none)", Names(u"\\Program Files\\*.txt"));
}

TEST(FindFiles, MountReplacesAFolderOfItsNameInTheListing)
{
    const FileWorld world;
    WriteHost(world.Host("home/my documents/x"), "");
    const std::string names = Names(u"\\*");
    EXPECT_NE(std::string::npos, names.find("My Documents/"));
    EXPECT_EQ(std::string::npos, names.find("my documents/"));
}

TEST(FindFiles, RootAndATrailingSeparatorAreNotFound)
{
    const FileWorld world;
    std::filesystem::create_directory(world.Host("home/f"));
    EXPECT_EQ("(none)", Names(u"\\"));
    EXPECT_EQ("(none)", Names(u"\\f\\"));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
}

TEST(FindFiles, PatternsMatchWithoutRegardToCase)
{
    EXPECT_TRUE(Fits(u"a.DLL", u"*.dll"));
    EXPECT_TRUE(Fits(u"É.dll", u"é.*"));
    EXPECT_FALSE(Fits(u"a.dllx", u"*.dll"));
    EXPECT_FALSE(Fits(u"dll", u"*.dll"));
    EXPECT_TRUE(Fits(u"a.b.dll", u"*.dll"));
    EXPECT_TRUE(Fits(u"abcbd", u"a*b?"));
    EXPECT_FALSE(Fits(u"abcb", u"a*b?"));
    EXPECT_TRUE(Fits(u"abab", u"*ab"));
    EXPECT_TRUE(Fits(u"x", u"?"));
    EXPECT_FALSE(Fits(u"", u"?"));
    EXPECT_FALSE(Fits(u"xy", u"?"));
    EXPECT_TRUE(Fits(u"anything", u"**"));
}

TEST(FindFiles, StarDotStarFitsNamesWithoutAnExtensionToo)
{
    EXPECT_TRUE(Fits(u"README", u"*.*"));
    EXPECT_TRUE(Fits(u"a.b", u"*.*"));
    EXPECT_TRUE(Fits(u"photo", u"photo.*"));
    EXPECT_FALSE(Fits(u"photos", u"photo.*"));
}

TEST(FindFiles, RecordTellsSizeTimesAndAttributes)
{
    const FileWorld world;
    WriteHost(world.Host("home/a"), "12345");
    const timespec times[2] = {{1000000000, 500}, {86400, 123456789}};
    ASSERT_EQ(0, utimensat(AT_FDCWD, world.Host("home/a").c_str(), times, 0));
    WIN32_FIND_DATAW data;
    std::fill_n(reinterpret_cast<BYTE*>(&data), sizeof data, BYTE{0xAA});
    const HANDLE find = FindFirstFileW(u"\\a", &data);
    ASSERT_NE(INVALID_HANDLE_VALUE, find);
    FindClose(find);
    EXPECT_EQ(FILE_ATTRIBUTE_NORMAL, data.dwFileAttributes);
    EXPECT_EQ(5u, data.nFileSizeLow);
    EXPECT_EQ(0u, data.nFileSizeHigh);
    EXPECT_EQ(u'\0', data.cAlternateFileName[0]);
    // 1970-01-02 is 134775 days behind 1601-01-01.
    const uint64_t written = 134775ull * 86400 * 10000000 + 1234567;
    EXPECT_EQ(static_cast<DWORD>(written), data.ftLastWriteTime.dwLowDateTime);
    EXPECT_EQ(static_cast<DWORD>(written >> 32), data.ftLastWriteTime.dwHighDateTime);
    const uint64_t read = (134774ull * 86400 + 1000000000) * 10000000 + 5;
    EXPECT_EQ(static_cast<DWORD>(read), data.ftLastAccessTime.dwLowDateTime);
    EXPECT_EQ(static_cast<DWORD>(read >> 32), data.ftLastAccessTime.dwHighDateTime);
}

TEST(FindFiles, SizesBeyond32BitsUseBothWords)
{
    const FileWorld world;
    WriteHost(world.Host("home/big"), "");
    std::filesystem::resize_file(world.Host("home/big"), 0x300000007ull);
    WIN32_FIND_DATAW data{};
    FindClose(FindFirstFileW(u"\\big", &data));
    EXPECT_EQ(3u, data.nFileSizeHigh);
    EXPECT_EQ(7u, data.nFileSizeLow);
}

TEST(FindFiles, SearchEndsWithNoMoreFilesAndIsClosedOnce)
{
    const FileWorld world;
    WriteHost(world.Host("home/f/a"), "");
    WIN32_FIND_DATAW data{};
    const HANDLE find = FindFirstFileW(u"\\f\\*", &data);
    ASSERT_NE(INVALID_HANDLE_VALUE, find);
    EXPECT_FALSE(FindNextFileW(find, &data));
    EXPECT_EQ(ERROR_NO_MORE_FILES, GetLastError());
    EXPECT_FALSE(FindNextFileW(find, &data));
    EXPECT_EQ(ERROR_NO_MORE_FILES, GetLastError());
    EXPECT_TRUE(FindClose(find));
    EXPECT_FALSE(FindClose(find));
    EXPECT_EQ(ERROR_INVALID_HANDLE, GetLastError());
    EXPECT_FALSE(FindNextFileW(find, &data));
    EXPECT_EQ(ERROR_INVALID_HANDLE, GetLastError());
}

TEST(FindFiles, FindCloseRefusesTheHandleOfAFile)
{
    const FileWorld world;
    const HANDLE file = Open(u"\\a", CREATE_NEW);
    EXPECT_FALSE(FindClose(file));
    EXPECT_EQ(ERROR_INVALID_HANDLE, GetLastError());
    EXPECT_TRUE(CloseHandle(file));
}

TEST(FindFiles, NullArgumentsAreRefused)
{
    const FileWorld world;
    WIN32_FIND_DATAW data{};
    EXPECT_EQ(INVALID_HANDLE_VALUE, FindFirstFileW(nullptr, &data));
    EXPECT_EQ(INVALID_HANDLE_VALUE, FindFirstFileW(u"\\*", nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
}
