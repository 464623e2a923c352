// The nine anchors: their names, and where each keeps the old picture.

#include "view/CanvasAnchor.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

struct Row {
    u32 id;
    const char16_t* name;
    const char16_t* japanese;
    i32 x; // of 50 by 40 in 100 by 101
    i32 y;
    i32 smallX; // of 50 by 40 in 45 by 35
    i32 smallY;
};

// Typed by hand. Odd differences halve towards 0; the last edge is one pixel short.
const Row rows[] = {
    {1061, u"Upper-Left", u"左上配置", 0, 0, 0, 0},
    {1025, u"Upper", u"上部中央配置", 25, 0, -2, 0},
    {1062, u"Upper-Right", u"右上配置", 49, 0, -6, 0},
    {1059, u"Left", u"左配置", 0, 30, 0, -2},
    {1058, u"Center", u"上下中央配置", 25, 30, -2, -2},
    {1060, u"Right", u"右配置", 49, 30, -6, -2},
    {1063, u"Lower-Left", u"左下配置", 0, 60, 0, -6},
    {1057, u"Lower", u"下部中央配置", 25, 60, -2, -6},
    {1064, u"Lower-Right", u"右下配置", 49, 60, -6, -6},
};

} // namespace

TEST(CanvasAnchor, EachHasItsNamesAndItsPlace)
{
    for (const Row& row : rows) {
        const CanvasAnchor* anchor = FindCanvasAnchor(row.id);
        ASSERT_NE(anchor, nullptr) << row.id;
        EXPECT_EQ(std::u16string(anchor->name), row.name);
        EXPECT_EQ(std::u16string(anchor->japaneseName), row.japanese);
        EXPECT_EQ(PlaceOnCanvas(anchor->across, 50, 100), row.x) << row.id;
        EXPECT_EQ(PlaceOnCanvas(anchor->down, 40, 101), row.y) << row.id;
        EXPECT_EQ(PlaceOnCanvas(anchor->across, 50, 45), row.smallX) << row.id;
        EXPECT_EQ(PlaceOnCanvas(anchor->down, 40, 35), row.smallY) << row.id;
    }
}

TEST(CanvasAnchor, NoOtherNumberIsOne)
{
    for (const u32 id : {0u, 1u, 2u, 1005u, 1024u, 1026u, 1056u, 1065u, 0xFFFFFFFFu})
        EXPECT_EQ(FindCanvasAnchor(id), nullptr) << id;
}

TEST(CanvasAnchor, LengthsBeyondAllBoundsHaveAPlaceToo)
{
    for (const CanvasEdge edge : {CanvasEdge::First, CanvasEdge::Middle, CanvasEdge::Last})
        for (const u32 length : {0u, 1u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
            (void)PlaceOnCanvas(edge, length, 0);
            (void)PlaceOnCanvas(edge, 0, length);
        }
    EXPECT_EQ(PlaceOnCanvas(CanvasEdge::Last, 0, 0), -1);
    EXPECT_EQ(PlaceOnCanvas(CanvasEdge::Middle, 0xFFFFFFFF, 0), 0);
    EXPECT_EQ(PlaceOnCanvas(CanvasEdge::Last, 0, 0x80000000), 0x7FFFFFFF);
}
