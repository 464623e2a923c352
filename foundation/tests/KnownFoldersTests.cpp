#include "foundation/KnownFolders.h"
#include "platform/testing/Testing.h"

#include <gtest/gtest.h>

#include <string>

TEST(GetApplicationDirectory, CutsTheProgramsPathAtItsLastSeparator)
{
    WCHAR path[300];
    ASSERT_LT(0u, GetModuleFileNameW(nullptr, path, 300));
    const std::u16string full = path;
    WCHAR folder[300];
    ASSERT_EQ(1, GetApplicationDirectory(folder, 300));
    EXPECT_EQ(full.substr(0, full.rfind(u'\\')), folder);
    EXPECT_EQ(std::u16string(u"\\Program Files\\Tavrix"), folder);
}

TEST(GetApplicationDirectory, GivesNothingWhenThePathDoesNotFit)
{
    WCHAR folder[10] = u"";
    EXPECT_EQ(0, GetApplicationDirectory(folder, 10));
    EXPECT_EQ(-4, GetApplicationDirectory(nullptr, 10));
    EXPECT_EQ(-4, GetApplicationDirectory(folder, 0));
}

TEST(GetDocumentsDirectory, AsksTheShell)
{
    WCHAR folder[260];
    ASSERT_EQ(1, GetDocumentsDirectory(folder, 260));
    EXPECT_EQ(std::u16string(u"\\Application Data\\Tavrix"), folder);
}

TEST(GetDocumentsDirectory, FallsBackBelow260CharactersThoughTheShellIsThere)
{
    WCHAR folder[259];
    EXPECT_EQ(1, GetDocumentsDirectory(folder, 100));
    EXPECT_EQ(std::u16string(u"\\My Documents"), folder);
    EXPECT_EQ(1, GetDocumentsDirectory(folder, 259));
    EXPECT_EQ(std::u16string(u"\\My Documents"), folder);
}

TEST(GetDocumentsDirectory, TellsWhenTheFallbackDoesNotFit)
{
    WCHAR folder[14];
    EXPECT_EQ(0, GetDocumentsDirectory(folder, 5));
    EXPECT_EQ(std::u16string(u"\\My "), folder);
    // Thirteen characters and the final zero: the exact fit counts as a cut.
    EXPECT_EQ(0, GetDocumentsDirectory(folder, 14));
    EXPECT_EQ(-4, GetDocumentsDirectory(nullptr, 5));
    EXPECT_EQ(-4, GetDocumentsDirectory(folder, 0));
}
