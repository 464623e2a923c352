// The bytes that processes exchange about windows.

#include "platform/core/WindowList.h"
#include "platform/core/WindowMail.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

using namespace tavrix::platform;

namespace
{

// A request typed by hand for a machine of this byte order: mark, kind 1, window 0x1234, dwData 7,
// four bytes of data, data present.
std::vector<unsigned char> Sample()
{
    std::vector<unsigned char> bytes = {'T', 'V', 'W', '1', 1, 0, 0, 0, 0x34, 0x12, 0, 0,
                                        0,   0,   0,   0,   7, 0, 0, 0, 0,    0,    0, 0,
                                        4,   0,   0,   0,   1, 0, 0, 0, 'a',  0,    0, 0};
    return bytes;
}

std::optional<WindowMail> Read(const std::vector<unsigned char>& bytes)
{
    return UnpackMail(bytes.data(), bytes.size());
}

} // namespace

TEST(WindowMail, ARequestIsReadFieldByField)
{
    const auto mail = Read(Sample());
    ASSERT_TRUE(mail);
    EXPECT_EQ(mail->kind, MailKind::CopyData);
    EXPECT_EQ(mail->window, 0x1234U);
    EXPECT_EQ(mail->word, 7U);
    EXPECT_TRUE(mail->hasData);
    EXPECT_EQ(mail->data, (std::vector<unsigned char>{'a', 0, 0, 0}));
    EXPECT_EQ(PackMail(*mail), Sample());
}

TEST(WindowMail, ARequestThatIsCutAnywhereIsRefused)
{
    const std::vector<unsigned char> whole = Sample();
    for (size_t size = 0; size < whole.size(); ++size) {
        // A block of its own for each length, so that a read beyond it is seen.
        const std::vector<unsigned char> cut(whole.begin(),
                                             whole.begin() + static_cast<ptrdiff_t>(size));
        EXPECT_FALSE(Read(cut)) << size;
    }
    std::vector<unsigned char> longer = whole;
    longer.push_back(0);
    EXPECT_FALSE(Read(longer));
}

TEST(WindowMail, FieldsThatMeanNothingAreRefused)
{
    struct {
        size_t at;
        unsigned char value;
    } const wrong[] = {{0, 'X'}, {3, '2'}, {4, 0},     {4, 4},  {7, 1},
                       {24, 3},  {24, 5},  {27, 0x80}, {28, 0}, {28, 2}};
    for (const auto& change : wrong) {
        std::vector<unsigned char> bytes = Sample();
        bytes[change.at] = change.value;
        EXPECT_FALSE(Read(bytes)) << change.at << " = " << int{change.value};
    }
}

TEST(WindowMail, AsMuchAsTheLongestCommandLineIsTakenAndAByteMoreIsNot)
{
    WindowMail mail;
    mail.hasData = true;
    mail.data.assign(65536, 'x'); // 32,767 characters and a zero
    EXPECT_TRUE(Read(PackMail(mail)));
    mail.data.push_back('x');
    EXPECT_FALSE(Read(PackMail(mail)));
}

TEST(WindowMail, AnAnswerIsOneSizeAndOneMark)
{
    const std::vector<unsigned char> bytes = PackAnswer({true, -5});
    ASSERT_EQ(bytes.size(), 16U);
    const auto answer = UnpackAnswer(bytes.data(), bytes.size());
    ASSERT_TRUE(answer);
    EXPECT_TRUE(answer->delivered);
    EXPECT_EQ(answer->result, -5);
    EXPECT_FALSE(UnpackAnswer(bytes.data(), 15));
    EXPECT_FALSE(UnpackAnswer(bytes.data(), 0));
    std::vector<unsigned char> wrong = bytes;
    wrong[0] ^= 1;
    EXPECT_FALSE(UnpackAnswer(wrong.data(), wrong.size()));
    wrong = bytes;
    wrong[4] = 2;
    EXPECT_FALSE(UnpackAnswer(wrong.data(), wrong.size()));
}

TEST(WindowList, WindowsComeBackInOrderWithTheirNames)
{
    const std::string bytes = PackWindowList({{9, u"One", u"タイトル"}, {8, u"Two", u""}});
    const std::vector<ListedWindow> windows = UnpackWindowList(bytes);
    ASSERT_EQ(windows.size(), 2U);
    EXPECT_EQ(windows[0].number, 9U);
    EXPECT_EQ(windows[0].className, u"One");
    EXPECT_EQ(windows[0].title, u"タイトル");
    EXPECT_EQ(windows[1].number, 8U);
    EXPECT_EQ(windows[1].className, u"Two");
    EXPECT_EQ(windows[1].title, u"");
}

TEST(WindowList, AListThatIsCutGivesItsWholeEntries)
{
    const std::string bytes = PackWindowList({{9, u"One", u"Title"}, {8, u"Two", u"Title"}});
    // The mark and two entries of 16 bytes and 8 characters.
    ASSERT_EQ(bytes.size(), 4U + 2 * (16 + 16));
    for (size_t size = 0; size <= bytes.size(); ++size) {
        const std::string cut = bytes.substr(0, size);
        EXPECT_EQ(UnpackWindowList(cut).size(), size < 36 ? 0U : size < 68 ? 1U : 2U) << size;
    }
}

TEST(WindowList, LongNamesAreCutAndManyWindowsLeftOut)
{
    std::vector<ListedWindow> many(70, {1, std::u16string(2000, u'c'), std::u16string(2000, u't')});
    const std::vector<ListedWindow> windows = UnpackWindowList(PackWindowList(many));
    ASSERT_EQ(windows.size(), 64U);
    EXPECT_EQ(windows[63].className, std::u16string(1024, u'c'));
    EXPECT_EQ(windows[63].title, std::u16string(1024, u't'));
}

TEST(WindowList, AnyBytesAreSurvived)
{
    std::mt19937 random(1);
    for (int round = 0; round < 20000; ++round) {
        std::string bytes(random() % 80, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random() % 4 != 0 ? 0 : random());
        if (bytes.size() >= 4)
            std::memcpy(bytes.data(), "TVL1", 4);
        for (const ListedWindow& window : UnpackWindowList(bytes))
            EXPECT_LE(window.className.size() + window.title.size(), bytes.size() / 2);
        (void)UnpackMail(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
    }
}
