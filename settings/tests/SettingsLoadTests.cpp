#include "SettingsText.h"

#include "foundation/tests/FailingAllocator.h"
#include "foundation/tests/TestFolder.h"
#include "settings/SettingsFile.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using tavrix::testing::Scope;
using tavrix::testing::SetAllocationFault;

// A settings file on disk and its store.
struct Loaded {
    explicit Loaded(const std::string& bytes)
    {
        folder.Write("s.ini", bytes);
        result = store.Load(folder.Path(u"s.ini").c_str());
    }
    std::u16string Text(const WCHAR* section, const WCHAR* name)
    {
        const WCHAR* text = nullptr;
        const i32 got = store.GetText(section, name, &text);
        if (got < 1)
            return u"(" + tavrix::testing::Wide(std::to_string(got)) + u")";
        return text;
    }
    i32 Get(const WCHAR* section, const WCHAR* name)
    {
        const WCHAR* text = nullptr;
        return store.GetText(section, name, &text);
    }
    std::string Saved()
    {
        EXPECT_EQ(1, store.Save(folder.Path(u"saved.ini").c_str()));
        return folder.Read("saved.ini");
    }
    TestFolder folder;
    SettingsFile store;
    i32 result = 0;
};

std::u16string Repeated(char16_t character, size_t count)
{
    return std::u16string(count, character);
}

std::u16string NumberedName(int number)
{
    return u"n" + tavrix::testing::Wide(std::to_string(number));
}

} // namespace

TEST(SettingsLoad, ReadsSectionsAndKeys)
{
    Loaded loaded(FileOf(u"[Tavrix]\r\nShowToolbox=1\r\nLastURL=http://\r\n\r\n[Global]\r\nk=v"));
    ASSERT_EQ(1, loaded.result);
    EXPECT_EQ(u"1", loaded.Text(u"Tavrix", u"ShowToolbox"));
    EXPECT_EQ(u"http://", loaded.Text(u"Tavrix", u"LastURL"));
    EXPECT_EQ(u"v", loaded.Text(u"Global", u"k")) << "the end of the file ends a line too";
}

TEST(SettingsLoad, MakesAnAbsentFileEmpty)
{
    TestFolder folder;
    SettingsFile store;
    EXPECT_EQ(1, store.Load(folder.Path(u"new.ini").c_str()));
    EXPECT_EQ("", folder.Read("new.ini"));
    EXPECT_TRUE(folder.Has("new.ini"));
    u32 value = 5;
    EXPECT_EQ(-1, store.GetUInt(u"Tavrix", u"BrushRadius", &value));
    EXPECT_EQ(5u, value);
}

TEST(SettingsLoad, FilesOfUpToTwoBytesAreEmpty)
{
    for (const std::string& bytes : {std::string(), std::string("["), std::string("\xFF\xFE")}) {
        Loaded loaded(bytes);
        EXPECT_EQ(1, loaded.result);
        EXPECT_EQ(FileOf(u""), loaded.Saved());
    }
}

TEST(SettingsLoad, ReadsAFileWithoutTheMarkFromItsFirstBytes)
{
    Loaded loaded(Utf16Bytes(u"[S]\r\nk=v\r\n"));
    ASSERT_EQ(1, loaded.result);
    EXPECT_EQ(u"v", loaded.Text(u"S", u"k"));
}

TEST(SettingsLoad, AnotherFirstCharacterStaysTheFirstOfTheText)
{
    // The mark of the other byte order, and a second mark, are characters like any others: what
    // would be a section line is a line without a sign then.
    for (const char16_t* first : {u"\uFFFE", u"\uFEFF\uFEFF", u"x"}) {
        Loaded loaded(Utf16Bytes(first + std::u16string(u"[S]\r\nk=v\r\n")));
        ASSERT_EQ(1, loaded.result);
        EXPECT_EQ(-1, loaded.Get(u"S", u"k"));
        EXPECT_EQ(u"v", loaded.Text(u"", u"k"));
    }
    Loaded key(Utf16Bytes(u"\uFFFEk=v\r\n"));
    EXPECT_EQ(u"v", key.Text(u"", u"\uFFFEk"));
}

TEST(SettingsLoad, DropsAnOddLastByte)
{
    Loaded loaded(FileOf(u"[S]\r\nk=v") + "x");
    ASSERT_EQ(1, loaded.result);
    EXPECT_EQ(u"v", loaded.Text(u"S", u"k"));
}

TEST(SettingsLoad, ASectionLineWithoutItsBracketFailsTheLoad)
{
    Loaded loaded(FileOf(u"[A]\r\nk=v\r\n[broken\r\n"));
    EXPECT_EQ(-1, loaded.result);
    EXPECT_EQ(-3, loaded.Get(u"A", u"k"));
    EXPECT_EQ(-3, loaded.store.SetUInt(u"A", u"k", 1));
    EXPECT_EQ(-1, loaded.store.Save(nullptr));
    EXPECT_EQ(-1, loaded.store.Close(1));
}

TEST(SettingsLoad, AfterAFailedLoadTheNextOneStartsClean)
{
    Loaded loaded(FileOf(u"[A]\r\nk=v\r\n[broken\r\n"));
    ASSERT_EQ(-1, loaded.result);
    loaded.folder.Write("good.ini", FileOf(u"[B]\r\nk=w\r\n"));
    ASSERT_EQ(1, loaded.store.Load(loaded.folder.Path(u"good.ini").c_str()));
    EXPECT_EQ(-1, loaded.Get(u"A", u"k"));
    EXPECT_EQ(u"w", loaded.Text(u"B", u"k"));
    EXPECT_EQ(FileOf(u"[B]\r\nk=w\r\n\r\n"), loaded.Saved());
    ASSERT_EQ(3, loaded.store.SetUInt(u"A", u"other", 1));
    EXPECT_EQ(-10, loaded.Get(u"A", u"k"));
    EXPECT_EQ(FileOf(u"[A]\r\nk=v\r\n[broken\r\n"), loaded.folder.Read("s.ini"))
        << "the file that failed is not to be written";
}

TEST(SettingsLoad, AKeyLineWithoutItsSignIsIgnored)
{
    Loaded loaded(FileOf(u"[A]\r\njust words\r\na b=1\r\n[B]\r\nk=v\r\n"));
    ASSERT_EQ(1, loaded.result);
    EXPECT_EQ(-10, loaded.Get(u"A", u"just"));
    EXPECT_EQ(-10, loaded.Get(u"A", u"a"));
    // With no count, the section vanishes when saved.
    EXPECT_EQ(FileOf(u"[B]\r\nk=v\r\n\r\n"), loaded.Saved());
}

TEST(SettingsLoad, BlanksBehindTheSignAreLostAndAtTheEndKept)
{
    Loaded loaded(FileOf(u"[S]\r\nk=   v  \r\n"));
    EXPECT_EQ(u"v  ", loaded.Text(u"S", u"k"));
}

TEST(SettingsLoad, ASectionLineMayHaveABlankBeforeAndTextBehind)
{
    Loaded loaded(FileOf(u" [S] more text\r\nk=v\r\n"));
    EXPECT_EQ(u"v", loaded.Text(u"S", u"k"));
}

TEST(SettingsLoad, ALineMayBeginWithTheSign)
{
    Loaded loaded(FileOf(u"[S]\r\n=v\r\n"));
    EXPECT_EQ(u"v", loaded.Text(u"S", u""));
}

TEST(SettingsLoad, OnlyThePairEndsALine)
{
    Loaded loaded(FileOf(u"[S]\r\na=1\nb=2\r\nc=3\rd=4\r\ne=5\r\r\nf=6\n\r\n"));
    EXPECT_EQ(u"1\nb=2", loaded.Text(u"S", u"a"));
    EXPECT_EQ(u"3\rd=4", loaded.Text(u"S", u"c"));
    EXPECT_EQ(u"5\r", loaded.Text(u"S", u"e"));
    EXPECT_EQ(u"6\n", loaded.Text(u"S", u"f"));
    EXPECT_EQ(-10, loaded.Get(u"S", u"b"));
}

TEST(SettingsLoad, ThePairMayLieAcrossTwoBlocks)
{
    // The mark is read by itself, so that the first block ends at 16,384 characters of text.
    std::u16string text = u"[S]\r\n";
    text += u"; " + Repeated(u'x', 16383 - text.size() - 2);
    ASSERT_EQ(16383u, text.size());
    text += u"\r\nk=v\r\n";
    Loaded loaded(FileOf(text));
    EXPECT_EQ(u"v", loaded.Text(u"S", u"k"));
}

TEST(SettingsLoad, CommentsAreNotKept)
{
    Loaded loaded(FileOf(u"; head\r\n[S]\r\n ;k=v\r\na=b\r\n"));
    EXPECT_EQ(FileOf(u"[S]\r\na=b\r\n\r\n"), loaded.Saved());
}

TEST(SettingsLoad, ASectionThatStandsTwiceIsContinued)
{
    Loaded loaded(FileOf(u"[A]\r\na=1\r\n[B]\r\nb=2\r\n[A]\r\nc=3\r\n"));
    EXPECT_EQ(FileOf(u"[A]\r\na=1\r\nc=3\r\n\r\n[B]\r\nb=2\r\n\r\n"), loaded.Saved());
}

TEST(SettingsLoad, AKeyThatStandsTwiceTakesTheLaterValueAndTheEarlierPlace)
{
    Loaded loaded(FileOf(u"[A]\r\na=1\r\nb=2\r\na=3\r\n"));
    EXPECT_EQ(FileOf(u"[A]\r\na=3\r\nb=2\r\n\r\n"), loaded.Saved());
}

TEST(SettingsLoad, AKeyWithoutAValueExistsAndHasNone)
{
    Loaded loaded(FileOf(u"[S]\r\nk=\r\n"));
    ASSERT_EQ(1, loaded.result);
    EXPECT_EQ(-100, loaded.Get(u"S", u"k"));
    u32 value = 5;
    EXPECT_EQ(-100, loaded.store.GetUInt(u"S", u"k", &value));
    EXPECT_EQ(5u, value);
}

TEST(SettingsLoad, ALineOf16383CharactersIsRead)
{
    Loaded loaded(FileOf(u"[S]\r\nk=" + Repeated(u'x', 16381) + u"\r\nlast=1\r\n"));
    ASSERT_EQ(1, loaded.result);
    EXPECT_EQ(Repeated(u'x', 16381), loaded.Text(u"S", u"k"));
    EXPECT_EQ(u"1", loaded.Text(u"S", u"last"));
}

TEST(SettingsLoad, ALongerLineEndsTheReadingAndIsNotUsed)
{
    for (const char16_t* end : {u"\r\nlast=1\r\n", u"", u"\r", u"\n"}) {
        Loaded loaded(FileOf(u"[S]\r\nfirst=1\r\nk=" + Repeated(u'x', 16382) + end));
        ASSERT_EQ(1, loaded.result);
        EXPECT_EQ(u"1", loaded.Text(u"S", u"first"));
        EXPECT_EQ(-10, loaded.Get(u"S", u"k"));
        EXPECT_EQ(-10, loaded.Get(u"S", u"last"));
    }
}

TEST(SettingsLoad, TheLastCellOfALineHoldsNoLoneCarriageReturn)
{
    // 16,383 characters and a CR that no LF follows: 16,384 characters.
    for (const char16_t* end : {u"", u"x"}) {
        Loaded loaded(FileOf(u"[S]\r\nk=" + Repeated(u'x', 16381) + u"\r" + end));
        ASSERT_EQ(1, loaded.result);
        EXPECT_EQ(-10, loaded.Get(u"S", u"k"));
    }
}

TEST(SettingsLoad, NamesAreCutToTheirBuffers)
{
    const std::u16string cut = Repeated(u's', 1023);
    Loaded loaded(FileOf(u"[" + cut + u"ss]\r\n" + Repeated(u'k', 1100) + u"=v\r\n"));
    ASSERT_EQ(1, loaded.result);
    // 1,023 of the section, the two colons, and what is left of 2,047 for the key.
    EXPECT_EQ(u"v", loaded.Text(cut.c_str(), Repeated(u'k', 1022).c_str()));
    EXPECT_EQ(-1, loaded.Get((cut + u"s").c_str(), u"k"));

    Loaded shortSection(FileOf(u"[S]\r\n" + Repeated(u'k', 1100) + u"=v\r\n"));
    EXPECT_EQ(u"v", shortSection.Text(u"S", Repeated(u'k', 1023).c_str()));
    EXPECT_EQ(-10, shortSection.Get(u"S", Repeated(u'k', 1100).c_str()));
}

TEST(SettingsLoad, KeysBeyondAFullListAreLeftOut)
{
    std::u16string text = u"[A]\r\n";
    for (int i = 0; i < 512; ++i)
        text += NumberedName(i) + u"=1\r\n";
    text += u"[B]\r\none=2\r\n[A]\r\nn0=3\r\n";
    Loaded loaded(FileOf(text));
    ASSERT_EQ(1, loaded.result);
    EXPECT_EQ(u"1", loaded.Text(u"A", u"n511"));
    EXPECT_EQ(u"3", loaded.Text(u"A", u"n0")) << "replacing goes on";
    EXPECT_EQ(-10, loaded.Get(u"B", u"one"));
    // What was refused was not counted, so that B has no keys and is not saved.
    EXPECT_EQ(std::string::npos, loaded.Saved().find(Utf16Bytes(u"[B]")));
}

TEST(SettingsLoad, ARefusedKeyWithoutAValueIsCountedAllTheSame)
{
    std::u16string text = u"[A]\r\n";
    for (int i = 0; i < 512; ++i)
        text += NumberedName(i) + u"=1\r\n";
    text += u"[B]\r\none=\r\n";
    Loaded loaded(FileOf(text));
    ASSERT_EQ(1, loaded.result);
    EXPECT_NE(std::string::npos, loaded.Saved().find(Utf16Bytes(u"[B]\r\n\r\n")));
}

TEST(SettingsLoad, MoreSectionsThanTheListHoldsFailTheLoad)
{
    std::u16string text;
    for (int i = 0; i < 512; ++i)
        text += u"[" + NumberedName(i) + u"]\r\n";
    Loaded most(FileOf(text));
    EXPECT_EQ(1, most.result);
    Loaded tooMany(FileOf(text + u"[one more]\r\n"));
    EXPECT_EQ(-1, tooMany.result);
    EXPECT_EQ(-3, tooMany.Get(u"n0", u"k"));
}

TEST(SettingsLoad, SavesAndClosesWhatWasOpen)
{
    Loaded loaded(FileOf(u"[A]\r\nk=v\r\n"));
    ASSERT_LT(0, loaded.store.SetUInt(u"A", u"n", 3));
    ASSERT_EQ(1, loaded.store.Load(loaded.folder.Path(u"other.ini").c_str()));
    EXPECT_EQ(FileOf(u"[A]\r\nk=v\r\nn=3\r\n\r\n"), loaded.folder.Read("s.ini"));
    EXPECT_EQ(-1, loaded.Get(u"A", u"k"));
    EXPECT_EQ("", loaded.folder.Read("other.ini"));
}

TEST(SettingsLoad, ReadsItsOwnFileAnew)
{
    Loaded loaded(FileOf(u"[A]\r\nk=v\r\n"));
    ASSERT_LT(0, loaded.store.SetText(u"A", u"k", u"w"));
    ASSERT_EQ(1, loaded.store.Load(loaded.folder.Path(u"s.ini").c_str()));
    EXPECT_EQ(u"w", loaded.Text(u"A", u"k"));
}

TEST(SettingsLoad, RefusesNullAndLeavesWhatIsOpenAlone)
{
    Loaded loaded(FileOf(u"[A]\r\nk=v\r\n"));
    EXPECT_EQ(-4, loaded.store.Load(nullptr));
    EXPECT_EQ(u"v", loaded.Text(u"A", u"k"));
}

TEST(SettingsLoad, FailsWhereNoFileCanBe)
{
    TestFolder folder;
    SettingsFile store;
    EXPECT_EQ(-1, store.Load(folder.Path(u"no folder\\s.ini").c_str()));
    EXPECT_EQ(-3, store.SetUInt(u"A", u"k", 1));
    EXPECT_EQ(-1, store.Load(folder.Device().c_str())) << "a folder is no settings file";
}

TEST(SettingsLoad, AFailingAllocationOfItsBuffersGivesNoMemory)
{
    TestFolder folder;
    folder.Write("s.ini", FileOf(u"[A]\r\nk=v\r\n"));
    // Six buffers and the copy of the path.
    for (int allowed = 0; allowed < 7; ++allowed) {
        FailingAllocator allocator;
        {
            SettingsFile store(&allocator);
            const int before = allocator.Live();
            allocator.AllowOnly(allowed);
            EXPECT_EQ(-2, store.Load(folder.Path(u"s.ini").c_str())) << allowed;
            EXPECT_TRUE(allocator.HasFailed());
            const WCHAR* text = nullptr;
            EXPECT_EQ(-3, store.GetText(u"A", u"k", &text));
            EXPECT_LE(allocator.Live(), before + 1) << "only the path may be kept";
            allocator.AllowAll();
            EXPECT_EQ(1, store.Load(folder.Path(u"s.ini").c_str()));
        }
        EXPECT_EQ(0, allocator.Live());
    }
}

TEST(SettingsLoad, SurvivesMemoryThatRunsOutAtAnyPoint)
{
    TestFolder folder;
    folder.Write("s.ini", FileOf(u"k=v\r\n[A]\r\nk=v\r\ne=\r\n[B]\r\nk=v\r\n"));
    for (int allowed = 0;; ++allowed) {
        ASSERT_LT(allowed, 1000);
        FailingAllocator allocator;
        bool failed = false;
        {
            SettingsFile store(&allocator);
            allocator.AllowOnly(allowed);
            const i32 result = store.Load(folder.Path(u"s.ini").c_str());
            failed = allocator.HasFailed();
            EXPECT_TRUE(result == 1 || result == -1 || result == -2) << result;
            allocator.AllowAll();
            // Not saved: what could not be held would be lost from the file.
            (void)store.Close(0);
        }
        EXPECT_EQ(0, allocator.Live()) << allowed;
        if (!failed)
            break;
    }
}

TEST(SettingsLoad, AHeapThatIsFullGivesNoMemory)
{
    Scope scope;
    TestFolder folder;
    HeapAllocator allocator;
    SettingsFile store(&allocator);
    SetAllocationFault([](SIZE_T size) { return size == 32768; });
    EXPECT_EQ(-2, store.Load(folder.Path(u"s.ini").c_str()));
}
