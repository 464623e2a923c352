#include "plugin/PluginHeap.h"

#include "image/Raster.h"
#include "platform/testing/Testing.h"
#include "plugin/FunctionTables.h"
#include "plugin/PluginObjects.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{

TEST(PluginHeap, IsThereBetweenMakeAndDropOnly)
{
    EXPECT_EQ(PluginHeap(), nullptr);
    EXPECT_EQ(DropHeap(), 0);
    EXPECT_EQ(MakeHeap(), 1);
    EXPECT_NE(PluginHeap(), nullptr);
    EXPECT_EQ(DropHeap(), 1);
    EXPECT_EQ(PluginHeap(), nullptr);
    EXPECT_EQ(DropHeap(), 0);
}

TEST(PluginHeap, MakingOneDropsTheOneBefore)
{
    ASSERT_EQ(MakeHeap(), 1);
    void* block = nullptr;
    ASSERT_EQ(PluginHeap()->Alloc(&block, 1000), 1);
    Raster* raster = nullptr;
    ASSERT_EQ(MakePluginObject(&raster), 1);
    EXPECT_EQ(MakeHeap(), 1);
    // The picture went with its heap.
    EXPECT_EQ(DestroyPluginObject(ToHandle(raster)), -1);
    EXPECT_EQ(DropHeap(), 1);
}

TEST(PluginHeap, IsAHeapOfItsOwn)
{
    ASSERT_EQ(MakeHeap(), 1);
    void* block = nullptr;
    ASSERT_EQ(PluginHeap()->Alloc(&block, 64), 1);
    std::memset(block, 1, 64);
    // Neither freed singly nor leaked: the sanitizer would tell.
    EXPECT_EQ(DropHeap(), 1);
}

TEST(PluginObjects, AreFoundByTheirOwnAddressOnly)
{
    ASSERT_EQ(MakeHeap(), 1);
    Raster* first = nullptr;
    Raster* second = nullptr;
    ColorTable* palette = nullptr;
    ASSERT_EQ(MakePluginObject(&first), 1);
    ASSERT_EQ(MakePluginObject(&palette), 1);
    ASSERT_EQ(MakePluginObject(&second), 1);
    EXPECT_EQ(DestroyPluginObject(reinterpret_cast<TavrixImageHandle>(palette)), -1);
    EXPECT_EQ(DestroyPluginObject(ToHandle(first)), 1);
    EXPECT_EQ(DestroyPluginObject(ToHandle(first)), -1);
    EXPECT_EQ(DestroyPluginObject(ToHandle(palette)), 1);
    EXPECT_EQ(DestroyPluginObject(ToHandle(second)), 1);
    EXPECT_EQ(DropHeap(), 1);
}

} // namespace
