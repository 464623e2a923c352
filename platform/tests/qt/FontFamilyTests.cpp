#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/TestWindow.h"
#include "platform/tests/qt/TextPicture.h"

#include <gtest/gtest.h>

#include <QFontDatabase>

#include <algorithm>
#include <string>
#include <vector>

using namespace tavrix::testing;
using namespace tavrix::test;

namespace
{

struct Found {
    std::string name;
    LOGFONTW record;
    TEXTMETRICW metric;
    DWORD kind;
};

struct Taking {
    std::vector<Found> found;
    size_t most = 1000;
};

int CALLBACK Take(const LOGFONTW* record, const TEXTMETRICW* metric, DWORD kind, LPARAM parameter)
{
    Taking& taking = *reinterpret_cast<Taking*>(parameter);
    taking.found.push_back({Utf8(record->lfFaceName), *record, *metric, kind});
    return taking.found.size() < taking.most ? 77 : 0;
}

class FontFamilies : public ::testing::Test
{
protected:
    int Enumerate(const WCHAR* family = nullptr)
    {
        taking.found.clear();
        return EnumFontFamiliesW(picture.dc, family, Take, reinterpret_cast<LPARAM>(&taking));
    }
    const Found* Named(const std::string& name) const
    {
        for (const Found& found : taking.found)
            if (found.name == name)
                return &found;
        return nullptr;
    }

    Scope scope;
    TextPicture picture{300, 80, 1};
    Taking taking;
};

} // namespace

TEST_F(FontFamilies, ComeOnceEachInTheOrderOfTheirNamesWithTheLastAnswer)
{
    EXPECT_EQ(Enumerate(), 77);
    ASSERT_GT(taking.found.size(), 3u);
    for (size_t i = 1; i < taking.found.size(); ++i) {
        const QString before = QString::fromStdString(taking.found[i - 1].name);
        const QString after = QString::fromStdString(taking.found[i].name);
        EXPECT_LT(before.compare(after, Qt::CaseInsensitive), 0) << taking.found[i].name;
    }
    for (const Found& found : taking.found) {
        EXPECT_EQ(found.kind, DWORD{TRUETYPE_FONTTYPE}) << found.name;
        EXPECT_EQ(found.name.find('['), std::string::npos) << found.name;
        EXPECT_LE(std::char_traits<char16_t>::length(found.record.lfFaceName), 31u);
    }
    EXPECT_NE(Named("DejaVu Sans"), nullptr);
    EXPECT_NE(Named("VL Gothic"), nullptr);
    EXPECT_EQ(Named("Sans Serif"), nullptr) << "no font, but the toolkit's choice of one";
    EXPECT_EQ(Named("Monospace"), nullptr);
}

TEST_F(FontFamilies, TellMeasuresThatAreThoseOfTheFont)
{
    Enumerate();
    for (const char* name : {"DejaVu Sans", "DejaVu Sans Mono", "VL Gothic"}) {
        const Found* found = Named(name);
        ASSERT_NE(found, nullptr);
        const TEXTMETRICW& metric = found->metric;
        EXPECT_EQ(metric.tmHeight, metric.tmAscent + metric.tmDescent);
        EXPECT_EQ(found->record.lfHeight, metric.tmHeight);
        EXPECT_EQ(metric.tmWeight, 400);
        EXPECT_GT(metric.tmAveCharWidth, 0);
        EXPECT_GE(metric.tmMaxCharWidth, metric.tmAveCharWidth);
        // A font of that height has lines of that height.
        picture.Use(found->record.lfHeight, found->record.lfFaceName);
        EXPECT_EQ(picture.Measure(u"x", DT_LEFT).bottom, metric.tmHeight) << name;
    }
    EXPECT_EQ(Named("DejaVu Sans")->record.lfCharSet, DEFAULT_CHARSET);
    EXPECT_EQ(Named("VL Gothic")->record.lfCharSet, SHIFTJIS_CHARSET);
    EXPECT_EQ(Named("VL Gothic")->metric.tmCharSet, SHIFTJIS_CHARSET);
    EXPECT_EQ(Named("DejaVu Sans Mono")->record.lfPitchAndFamily & 3, 1) << "fixed";
    EXPECT_EQ(Named("DejaVu Sans")->record.lfPitchAndFamily & 3, 2) << "variable";
    EXPECT_EQ(Named("DejaVu Sans Mono")->metric.tmPitchAndFamily, 6);
    EXPECT_EQ(Named("DejaVu Sans")->metric.tmPitchAndFamily, 7);
}

TEST_F(FontFamilies, EndWhenTheyAreAskedTo)
{
    taking.most = 2;
    EXPECT_EQ(Enumerate(), 0);
    EXPECT_EQ(taking.found.size(), 2u);
}

TEST_F(FontFamilies, AreGivenByNameWhateverItsCase)
{
    EXPECT_EQ(Enumerate(TEXT("dejavu SANS")), 77);
    ASSERT_EQ(taking.found.size(), 1u);
    EXPECT_EQ(taking.found[0].name, "DejaVu Sans");
    EXPECT_EQ(Enumerate(TEXT("No Such Face")), 1);
    EXPECT_TRUE(taking.found.empty());
}

TEST_F(FontFamilies, AreNoneWithoutAContextOrATaker)
{
    EXPECT_EQ(EnumFontFamiliesW(nullptr, nullptr, Take, reinterpret_cast<LPARAM>(&taking)), 0);
    EXPECT_EQ(EnumFontFamiliesW(picture.dc, nullptr, nullptr, 0), 0);
    const HDC gone = CreateCompatibleDC(nullptr);
    DeleteDC(gone);
    EXPECT_EQ(EnumFontFamiliesW(gone, nullptr, Take, reinterpret_cast<LPARAM>(&taking)), 0);
    EXPECT_TRUE(taking.found.empty());
}

TEST_F(FontFamilies, DrawAsThemselvesByTheNamesThatTheyTell)
{
    Enumerate();
    const std::vector<Found> all = taking.found;
    const auto look = [this](const WCHAR* face) {
        picture.Clear();
        picture.Use(60, face);
        picture.Draw(u"Ragi&", DT_LEFT);
        return picture.Rows();
    };
    const std::string dialogs = look(TEXT("No Such Face"));
    for (const Found& found : all) {
        // Of the dialogs' own face, whole and condensed, two do not differ from it.
        if (found.name == "DejaVu Sans" || found.name.find("Symbols") != std::string::npos ||
            found.name == "D050000L")
            continue;
        EXPECT_NE(look(found.record.lfFaceName), dialogs) << found.name;
    }
    EXPECT_EQ(look(TEXT("DejaVu Sans")), dialogs);
}
