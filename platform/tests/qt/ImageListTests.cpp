#include "platform/qt/ImageLists.h"
#include "platform/testing/WindowTesting.h"
#include "platform/tests/qt/SolidIcons.h"

#include <gtest/gtest.h>

#include <QImage>

using namespace tavrix::platform;
using namespace tavrix::test;
using namespace tavrix::testing;

namespace
{

constexpr uint32_t Red = 0xFF0000;
constexpr uint32_t Green = 0x00FF00;
constexpr uint32_t Blue = 0x0000FF;

/// An icon for the length of a block.
struct Icon {
    explicit Icon(HICON loaded) : handle(loaded) {}
    ~Icon() { DestroyIcon(handle); }
    Icon(const Icon&) = delete;
    Icon& operator=(const Icon&) = delete;
    HICON handle;
};

class ImageLists : public ::testing::Test
{
protected:
    ImageLists() : list(ImageList_Create(16, 16, ILC_COLOR | ILC_MASK, 2, 0)) {}
    ~ImageLists() override { ImageList_Destroy(list); }

    int Put(int index, HICON icon) { return ImageList_ReplaceIcon(list, index, icon); }

    uint32_t ColorAt(int index, int x, int y)
    {
        return ImageListPicture(list, index).toImage().pixel(x, y) & 0xFFFFFF;
    }

    Scope scope;
    HIMAGELIST list;
    Icon red{SolidIcon(Red)};
    Icon green{SolidIcon(Green)};
    Icon blue{SolidIcon(Blue)};
};

} // namespace

TEST_F(ImageLists, ANewListIsEmptyWhateverItsInitialSize)
{
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(ImageList_GetImageCount(list), 0);
    EXPECT_EQ(ImageListSize(list), QSize(16, 16));
}

TEST_F(ImageLists, AListOfNoSizeIsNotMade)
{
    EXPECT_EQ(ImageList_Create(0, 16, ILC_MASK, 1, 0), nullptr);
    EXPECT_EQ(ImageList_Create(16, 0, ILC_MASK, 1, 0), nullptr);
    EXPECT_EQ(ImageList_Create(-16, 16, ILC_MASK, 1, 0), nullptr);
    EXPECT_EQ(ImageList_Create(16, -1, ILC_MASK, 1, 0), nullptr);
}

TEST_F(ImageLists, IconsAreAppendedInOrderAndKeepTheirPixels)
{
    EXPECT_EQ(Put(-1, red.handle), 0);
    EXPECT_EQ(Put(-1, green.handle), 1);
    EXPECT_EQ(ImageList_GetImageCount(list), 2);
    EXPECT_EQ(ColorAt(0, 8, 8), Red);
    EXPECT_EQ(ColorAt(1, 0, 15), Green);
}

TEST_F(ImageLists, AnIconTakesThePlaceOfAnother)
{
    Put(-1, red.handle);
    Put(-1, green.handle);
    EXPECT_EQ(Put(0, blue.handle), 0);
    EXPECT_EQ(ImageList_GetImageCount(list), 2);
    EXPECT_EQ(ColorAt(0, 8, 8), Blue);
    EXPECT_EQ(ColorAt(1, 8, 8), Green);
}

TEST_F(ImageLists, AnIndexThatIsNotThereIsRefused)
{
    Put(-1, red.handle);
    EXPECT_EQ(Put(1, green.handle), -1);
    EXPECT_EQ(Put(-2, green.handle), -1);
    EXPECT_EQ(ImageList_GetImageCount(list), 1);
}

TEST_F(ImageLists, AnIconThatIsNoneIsRefused)
{
    EXPECT_EQ(Put(-1, nullptr), -1);
    const HICON gone = SolidIcon(Red);
    DestroyIcon(gone);
    EXPECT_EQ(Put(-1, gone), -1);
    EXPECT_EQ(Put(-1, reinterpret_cast<HICON>(list)), -1);
    EXPECT_EQ(ImageList_GetImageCount(list), 0);
}

TEST_F(ImageLists, ThePictureOutlivesTheIcon)
{
    const HICON icon = SolidIcon(Green);
    Put(-1, icon);
    EXPECT_TRUE(DestroyIcon(icon)) << "it stayed the caller's";
    EXPECT_EQ(ColorAt(0, 3, 3), Green);
}

TEST_F(ImageLists, PicturesHaveTheListsSizeWhateverTheIcons)
{
    const Icon large{LargeSolidIcon(Blue)};
    EXPECT_EQ(Put(-1, large.handle), 0);
    EXPECT_EQ(ImageListPicture(list, 0).size(), QSize(16, 16));
    EXPECT_EQ(ColorAt(0, 15, 15), Blue);
    const HIMAGELIST wide = ImageList_Create(48, 24, ILC_COLOR, 0, 4);
    EXPECT_EQ(ImageList_ReplaceIcon(wide, -1, red.handle), 0);
    EXPECT_EQ(ImageListPicture(wide, 0).size(), QSize(48, 24));
    EXPECT_EQ(ImageListPicture(wide, 0).toImage().pixel(47, 23) & 0xFFFFFF, Red);
    ImageList_Destroy(wide);
}

TEST_F(ImageLists, TransparentPartsStayTransparent)
{
    const HICON hand = LoadIconW(nullptr, MAKEINTRESOURCEW(32513)); // a round sign
    EXPECT_EQ(Put(-1, hand), 0);
    const QImage picture = ImageListPicture(list, 0).toImage();
    EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0);
    EXPECT_EQ(qAlpha(picture.pixel(8, 8)), 255);
}

TEST_F(ImageLists, APictureThatIsNotThereIsNull)
{
    Put(-1, red.handle);
    EXPECT_FALSE(ImageListPicture(list, 0).isNull());
    EXPECT_TRUE(ImageListPicture(list, 1).isNull());
    EXPECT_TRUE(ImageListPicture(list, -1).isNull());
    EXPECT_TRUE(ImageListPicture(nullptr, 0).isNull());
}

TEST_F(ImageLists, NullForeignAndStaleListsFail)
{
    const HIMAGELIST gone = ImageList_Create(8, 8, 0, 0, 0);
    EXPECT_EQ(ImageList_ReplaceIcon(gone, -1, red.handle), 0);
    EXPECT_TRUE(ImageList_Destroy(gone));
    const HIMAGELIST next = ImageList_Create(8, 8, 0, 0, 0);
    EXPECT_NE(next, gone) << "a stale handle never comes back to life";
    for (const HIMAGELIST bad :
         {static_cast<HIMAGELIST>(nullptr), gone, reinterpret_cast<HIMAGELIST>(red.handle),
          reinterpret_cast<HIMAGELIST>(&scope)}) {
        EXPECT_FALSE(ImageList_Destroy(bad));
        EXPECT_EQ(ImageList_GetImageCount(bad), 0);
        EXPECT_EQ(ImageList_ReplaceIcon(bad, -1, red.handle), -1);
        EXPECT_TRUE(ImageListPicture(bad, 0).isNull());
        EXPECT_FALSE(ImageListSize(bad).isValid());
    }
    EXPECT_TRUE(ImageList_Destroy(next));
}
