#include "platform/tests/qt/TreeFixture.h"

#include "platform/tests/qt/ControlResources.h"
#include "platform/tests/qt/SolidIcons.h"

#include <algorithm>

namespace tavrix::test
{
namespace
{

constexpr int DialogId = 210;
constexpr int ExpanderBefore = 10; // half of the column before an image

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(dialog, DWLP_USER, lParam);
        return TRUE;
    }
    auto* test = reinterpret_cast<TreeTest*>(GetWindowLongPtrW(dialog, DWLP_USER));
    if (message != WM_NOTIFY || test == nullptr)
        return FALSE;
    Notice notice;
    notice.header = *reinterpret_cast<const NMHDR*>(lParam);
    notice.id = wParam;
    if (notice.header.code == TVN_SELCHANGEDW)
        notice.selection = *reinterpret_cast<const NMTREEVIEWW*>(lParam);
    test->notices.push_back(notice);
    if (!test->onNotice)
        return FALSE;
    const LRESULT answer = test->onNotice(notice);
    SetWindowLongPtrW(dialog, DWLP_MSGRESULT, answer);
    return TRUE;
}

} // namespace

TreeTest::TreeTest()
{
    dialog =
        CreateDialogIndirectParamW(testing::ControlResources(), testing::DialogResource(DialogId),
                                   nullptr, Procedure, reinterpret_cast<LPARAM>(this));
    tree = GetDlgItem(dialog, TreeId);
}

TreeTest::~TreeTest()
{
    DestroyWindow(dialog);
    ImageList_Destroy(images);
}

HTREEITEM TreeTest::Insert(const TVINSERTSTRUCTW& record)
{
    return reinterpret_cast<HTREEITEM>(Send(TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&record)));
}

HTREEITEM TreeTest::Add(HTREEITEM parent, const std::u16string& text, LPARAM data, int image,
                        HTREEITEM after)
{
    std::u16string copy = text;
    TVINSERTSTRUCTW record{};
    record.hParent = parent;
    record.hInsertAfter = after;
    record.item.mask = TVIF_TEXT | TVIF_PARAM | TVIF_IMAGE | TVIF_SELECTEDIMAGE;
    record.item.pszText = copy.data();
    record.item.lParam = data;
    record.item.iImage = image;
    record.item.iSelectedImage = image;
    return Insert(record);
}

HTREEITEM TreeTest::Next(WPARAM which, HTREEITEM item)
{
    return reinterpret_cast<HTREEITEM>(Send(TVM_GETNEXTITEM, which, item));
}

bool TreeTest::Exists(HTREEITEM item)
{
    TVITEMW record{};
    record.hItem = item;
    return Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&record)) != 0;
}

std::u16string TreeTest::Text(HTREEITEM item)
{
    WCHAR buffer[64] = TEXT("no item");
    TVITEMW record{};
    record.mask = TVIF_TEXT;
    record.hItem = item;
    record.pszText = buffer;
    record.cchTextMax = 64;
    Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&record));
    return buffer;
}

UINT TreeTest::State(HTREEITEM item)
{
    TVITEMW record{};
    record.mask = TVIF_STATE;
    record.hItem = item;
    record.stateMask = ~0u;
    EXPECT_TRUE(Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&record)));
    return record.state;
}

int TreeTest::Children(HTREEITEM item)
{
    TVITEMW record{};
    record.mask = TVIF_CHILDREN;
    record.hItem = item;
    record.cChildren = -7;
    Send(TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&record));
    return record.cChildren;
}

std::u16string TreeTest::Siblings(HTREEITEM first)
{
    std::u16string texts;
    for (HTREEITEM item = first; item != nullptr; item = Next(TVGN_NEXT, item))
        texts += (texts.empty() ? u"" : u" ") + Text(item);
    return texts;
}

void TreeTest::Show()
{
    ShowWindow(dialog, SW_SHOW);
    SetFocus(tree);
    testing::PumpUntil([this] { return GetFocus() == tree; });
    testing::Pump(20);
}

void TreeTest::GiveImages()
{
    images = ImageList_Create(16, 16, ILC_MASK, 4, 0);
    for (const uint32_t color : {Red, Green, Blue, Yellow}) {
        const HICON icon = SolidIcon(color);
        ImageList_ReplaceIcon(images, -1, icon);
        DestroyIcon(icon);
    }
    Send(TVM_SETIMAGELIST, TVSIL_NORMAL, reinterpret_cast<LPARAM>(images));
}

std::optional<RECT> TreeTest::Find(uint32_t color)
{
    testing::Pump(10);
    const testing::Picture picture = testing::WindowPixels(tree);
    RECT found{picture.width, picture.height, 0, 0};
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            if (picture.At(x, y) != color)
                continue;
            found.left = std::min<LONG>(found.left, x);
            found.top = std::min<LONG>(found.top, y);
            found.right = std::max<LONG>(found.right, x + 1);
            found.bottom = std::max<LONG>(found.bottom, y + 1);
        }
    }
    if (found.right == 0)
        return std::nullopt;
    return found;
}

POINT TreeTest::OnScreen(int x, int y)
{
    RECT place{};
    GetWindowRect(tree, &place);
    return {place.left + x, place.top + y};
}

void TreeTest::ClickColor(uint32_t color)
{
    const auto place = Find(color);
    ASSERT_TRUE(place);
    const POINT at = OnScreen((place->left + place->right) / 2, (place->top + place->bottom) / 2);
    testing::ClickScreen(at.x, at.y);
    testing::Pump(10);
}

void TreeTest::ClickExpander(uint32_t color)
{
    const auto place = Find(color);
    ASSERT_TRUE(place);
    const POINT at = OnScreen(place->left - ExpanderBefore, (place->top + place->bottom) / 2);
    testing::ClickScreen(at.x, at.y);
    testing::Pump(10);
}

void TreeTest::DoubleClickColor(uint32_t color)
{
    const auto place = Find(color);
    ASSERT_TRUE(place);
    const POINT at = OnScreen((place->left + place->right) / 2, (place->top + place->bottom) / 2);
    testing::DoubleClickScreen(at.x, at.y);
    testing::Pump(10);
}

size_t TreeTest::SelectionNotices() const
{
    return static_cast<size_t>(
        std::count_if(notices.begin(), notices.end(),
                      [](const Notice& notice) { return notice.header.code == TVN_SELCHANGEDW; }));
}

void TreeFamilyTest::AddFamily()
{
    a = Add(TVI_ROOT, u"a", 1);
    a1 = Add(a, u"a1", 11);
    a2 = Add(a, u"a2", 12);
    b = Add(TVI_ROOT, u"b", 2);
    b1 = Add(b, u"b1", 21);
    b2 = Add(b, u"b2", 22);
}

ColoredTreeTest::ColoredTreeTest()
{
    constexpr int None = 4;
    GiveImages();
    a = Add(TVI_ROOT, u"a", 1, 0);
    a1 = Add(a, u"a1", 11, 1);
    a2 = Add(a, u"a2", 12, 2);
    b = Add(TVI_ROOT, u"b", 2, 3);
    b1 = Add(b, u"b1", 21, None);
    Show();
}

void ColoredTreeTest::SetTreeStyle(DWORD style)
{
    constexpr DWORD OwnBits = 0xFFFF;
    const auto before = static_cast<DWORD>(GetWindowLongPtrW(tree, GWL_STYLE));
    SetWindowLongPtrW(tree, GWL_STYLE, static_cast<LONG_PTR>((before & ~OwnBits) | style));
}

} // namespace tavrix::test
