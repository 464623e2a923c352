// What becomes of typed names, and the names beside those that are taken.

#include "standard-plugins/pdf-print/FileNames.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

std::u16string Made(const std::u16string& typed)
{
    TavrixChar path[MAX_PATH];
    const bool whole = MakeFilePath(path, typed.c_str());
    return (whole ? u"" : u"no: ") + std::u16string(path);
}

std::u16string Numbered(const char16_t* from, uint32_t number)
{
    TavrixChar path[MAX_PATH];
    return MakeNumberedPath(path, from, number) ? path : u"no";
}

} // namespace

TEST(FileNames, ATypedNameBecomesAPath)
{
    EXPECT_EQ(Made(u"\\a.pdf"), u"\\a.pdf");
    EXPECT_EQ(Made(u"\\Computer\\x\\a.PDF"), u"\\Computer\\x\\a.PDF");
    EXPECT_EQ(Made(u"\\a"), u"\\a.pdf");
    EXPECT_EQ(Made(u"\\a.png"), u"\\a.png.pdf");
    EXPECT_EQ(Made(u"\\a.pdf.gz"), u"\\a.pdf.gz.pdf");
    EXPECT_EQ(Made(u"\\a.pdfx"), u"\\a.pdfx.pdf");
    EXPECT_EQ(Made(u"\\v1.2\\page"), u"\\v1.2\\page.pdf");
    EXPECT_EQ(Made(u"\\.pdf"), u"\\.pdf.pdf"); // a hidden file without an extension
    EXPECT_EQ(Made(u"page"), u"\\My Documents\\page.pdf");
    EXPECT_EQ(Made(u"  page 1.pdf\t"), u"\\My Documents\\page 1.pdf");
    EXPECT_EQ(Made(u"\u3000写真\u3000"), u"\\My Documents\\写真.pdf");
    EXPECT_EQ(Made(u"/home/a.pdf"), u"\\home\\a.pdf");
    EXPECT_EQ(Made(u"sub/a"), u"\\My Documents\\sub\\a.pdf");
}

TEST(FileNames, WhatNamesNoFileGivesNothing)
{
    for (const char16_t* typed : {u"", u"   ", u"\u3000", u"\\", u"/", u"\\folder\\", u"folder/ "})
        EXPECT_EQ(Made(typed), u"no: ") << std::string(typed, typed + 1);
}

TEST(FileNames, APathIsAtMost259Characters)
{
    // 1 + 254 + 4 characters.
    EXPECT_EQ(Made(u"\\" + std::u16string(254, u'x')).size(), 259u);
    EXPECT_EQ(Made(u"\\" + std::u16string(255, u'x')).substr(0, 6), u"no: \\x");
}

TEST(FileNames, TheNumberStandsBeforeTheExtension)
{
    EXPECT_EQ(Numbered(u"\\a\\Tavrix.pdf", 2), u"\\a\\Tavrix (2).pdf");
    EXPECT_EQ(Numbered(u"\\a.b\\page", 10), u"\\a.b\\page (10)");
    EXPECT_EQ(Numbered(u"\\a.tar.gz", 9999), u"\\a.tar (9999).gz");
    EXPECT_EQ(Numbered(u"\\.hidden", 3), u"\\.hidden (3)");
    const std::u16string longest = u"\\" + std::u16string(254, u'x') + u".pdf";
    EXPECT_EQ(Numbered(longest.c_str(), 2), u"no");
}

TEST(FileNames, AFilePathIsAbsoluteAndNamesSomething)
{
    EXPECT_TRUE(IsFilePath(u"\\a"));
    EXPECT_TRUE(IsFilePath(u"\\a\\b.pdf"));
    for (const char16_t* path : {u"", u"a", u"a\\b", u"\\", u"\\a\\"})
        EXPECT_FALSE(IsFilePath(path));
}

TEST(FileNames, TheFolderOfAPathIsLookedFor)
{
    EXPECT_TRUE(HasFolder(u"\\page.pdf"));
    EXPECT_TRUE(HasFolder(u"\\My Documents\\page.pdf"));
    EXPECT_TRUE(HasFolder(u"\\Computer\\tmp\\page.pdf"));
    EXPECT_FALSE(HasFolder(u"\\Computer\\tmp\\no such folder\\page.pdf"));
    EXPECT_FALSE(HasFolder(u"\\Computer\\dev\\null\\page.pdf"));
}
