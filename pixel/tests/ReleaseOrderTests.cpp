// In what order the rasters of one operation get their rows back. It shows where memory is short:
// the row that is released first goes to a file first. A file's size tells whose row it is.

#include "Rasters.h"

namespace
{

using tavrix::testing::SetRandom;

/// Bytes of the files in the order of their making.
using Sizes = std::vector<size_t>;

class ReleaseOrder : public PagingTest
{
protected:
    void SetUp() override
    {
        PagingTest::SetUp();
        MakeRaster(source, 5, 2, 24, 1, Paging::Under);
        MakeRaster(target, 8, 2, 24, 2, Paging::Under);
        MakeRaster(alpha, 7, 2, 32, 3, Paging::Under);
        MakeRaster(mask, 20, 2, 8, 4, Paging::Under);
        ShortMemory();
        SetRandom({1, 2, 3});
    }
    void TearDown() override
    {
        for (Raster* raster : {&source, &target, &alpha, &mask})
            raster->Reset();
        PagingTest::TearDown();
    }
    static Sizes Released()
    {
        Sizes sizes;
        for (const auto& file : FilesIn(FirstFolder))
            sizes.push_back(file.second);
        return sizes;
    }

    static constexpr size_t OfSource = 16;
    static constexpr size_t OfTarget = 24;
    static constexpr size_t OfAlpha = 28;
    static constexpr size_t OfMask = 20;
    Raster source;
    Raster target;
    Raster alpha;
    Raster mask;
};

} // namespace

TEST_F(ReleaseOrder, ACopyReleasesTheSourceAndThenTheTarget)
{
    ASSERT_EQ(source.CopyTo(0, 0, 5, 1, &target, 0, 0, SRCCOPY), 1);
    EXPECT_EQ(Released(), (Sizes{OfSource, OfTarget}));
}

TEST_F(ReleaseOrder, AStretchReleasesTheSourceAndThenTheTarget)
{
    ASSERT_EQ(source.StretchRect(&target, 0, 0, 4, 0, 0, 0, 7, 0), 1);
    EXPECT_EQ(Released(), (Sizes{OfSource, OfTarget}));
}

TEST_F(ReleaseOrder, LayingOverReleasesTheTargetAndThenTheSource)
{
    ASSERT_EQ(alpha.CompositeTo(0, 0, 5, 1, &target, 0, 0), 1);
    EXPECT_EQ(Released(), (Sizes{OfTarget, OfAlpha}));
}

TEST_F(ReleaseOrder, AMaskedCopyReleasesTheTargetTheSourceAndThenTheMask)
{
    ASSERT_EQ(source.CopyMasked(0, 0, 5, 1, &target, 0, 0, &mask, 0, 0), 1);
    EXPECT_EQ(Released(), (Sizes{OfTarget, OfSource, OfMask}));
}

TEST_F(ReleaseOrder, PaintingThroughAMaskReleasesThePaintedRowAndThenTheMasks)
{
    PixelRect rectangle = {0, 0, 7, 1}; // the last row stays locked
    ASSERT_EQ(target.BlendMask(0x11223380, &rectangle, &mask, 0, 0), 1);
    EXPECT_EQ(Released(), (Sizes{OfTarget, OfMask}));
}
