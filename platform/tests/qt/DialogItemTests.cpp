#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/TestWindow.h"

#include <gtest/gtest.h>

#include <string>

using namespace tavrix::testing;
using tavrix::test::TestWindow;

namespace
{

constexpr int EditId = 55;

struct Field {
    Field()
        : edit(CreateWindowExW(0, TEXT("EDIT"), TEXT(""), WS_CHILD | WS_VISIBLE, 10, 10, 100, 20,
                               parent.handle, reinterpret_cast<HMENU>(EditId), nullptr, nullptr))
    {
    }
    TestWindow parent;
    HWND edit;
};

} // namespace

TEST(DialogItems, ANumberIsReadAsFarAsItsDigitsGo)
{
    struct Case {
        const WCHAR* text;
        BOOL isSigned;
        UINT value;
        BOOL translated;
    };
    const Case cases[] = {
        {TEXT("0"), TRUE, 0, TRUE},
        {TEXT("300"), FALSE, 300, TRUE},
        {TEXT("   42"), TRUE, 42, TRUE},
        {TEXT("007"), FALSE, 7, TRUE},
        {TEXT("12 dpi"), FALSE, 12, TRUE},
        {TEXT("-5"), TRUE, static_cast<UINT>(-5), TRUE},
        {TEXT("  -5"), TRUE, static_cast<UINT>(-5), TRUE},
        {TEXT("-5"), FALSE, 0, FALSE},
        {TEXT(""), TRUE, 0, FALSE},
        {TEXT("-"), TRUE, 0, FALSE},
        {TEXT("- 5"), TRUE, 0, FALSE},
        {TEXT("+5"), TRUE, 0, FALSE},
        {TEXT("abc"), FALSE, 0, FALSE},
        {TEXT("２"), FALSE, 0, FALSE},
        {TEXT("2147483647"), TRUE, 2147483647u, TRUE},
        {TEXT("2147483648"), TRUE, 0, FALSE},
        {TEXT("-2147483648"), TRUE, 2147483648u, TRUE},
        {TEXT("-2147483649"), TRUE, 0, FALSE},
        {TEXT("4294967295"), FALSE, 4294967295u, TRUE},
        {TEXT("4294967296"), FALSE, 0, FALSE},
        {TEXT("99999999999999999999999999"), FALSE, 0, FALSE},
        {TEXT("000000000000000000000000001"), FALSE, 1, TRUE},
    };
    const Scope scope;
    const Field field;
    for (const Case& each : cases) {
        SetWindowTextW(field.edit, each.text);
        BOOL translated = 9;
        EXPECT_EQ(GetDlgItemInt(field.parent.handle, EditId, &translated, each.isSigned),
                  each.value)
            << Utf8(each.text);
        EXPECT_EQ(translated, each.translated) << Utf8(each.text);
        EXPECT_EQ(GetDlgItemInt(field.parent.handle, EditId, nullptr, each.isSigned), each.value);
    }
    BOOL translated = TRUE;
    EXPECT_EQ(GetDlgItemInt(field.parent.handle, EditId + 1, &translated, TRUE), 0u);
    EXPECT_FALSE(translated);
}

TEST(DialogItems, ANumberIsWrittenWithItsSignOrWithout)
{
    const Scope scope;
    const Field field;
    const auto shown = [&field](UINT value, BOOL isSigned) {
        EXPECT_TRUE(SetDlgItemInt(field.parent.handle, EditId, value, isSigned));
        return ControlText(field.parent.handle, EditId);
    };
    EXPECT_EQ(shown(0, TRUE), u"0");
    EXPECT_EQ(shown(1234, FALSE), u"1234");
    EXPECT_EQ(shown(static_cast<UINT>(-7), TRUE), u"-7");
    EXPECT_EQ(shown(static_cast<UINT>(-7), FALSE), u"4294967289");
    EXPECT_EQ(shown(2147483648u, TRUE), u"-2147483648");
    EXPECT_FALSE(SetDlgItemInt(field.parent.handle, EditId + 1, 1, TRUE));
}
