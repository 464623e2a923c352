// A new line whose page cannot be locked to be filled.

#include "image/PagedLineList.h"
#include "image/tests/PlainSwapStore.h"

using namespace tavrix::testing;

namespace
{

using PagedLineFill = SwapStoreTest;

constexpr u32 Reserve = 1000;
constexpr u64 Plenty = 1u << 24;

} // namespace

TEST_F(PagedLineFill, ALineThatCannotBeFilledIsTakenBackWithPageAndFile)
{
    for (const WCHAR* folder : {FirstFolder, static_cast<const WCHAR*>(nullptr)}) {
        SetFreeMemory(Plenty);
        SwapStore store(folder, Reserve);
        PagedLineList list(&store);
        ASSERT_EQ(list.Create(77, 2, 8), 1);
        const std::string bytes(77, 'x');
        // Room is there for the page, and once it is taken there is none to lock it. (The hooks'
        // own lock is held here, so their field is set by hand.)
        SetAllocationFault([](SIZE_T size) {
            if (size == 77)
                tavrix::platform::Hooks().freeBytes = Reserve;
            return false;
        });
        EXPECT_EQ(list.InsertLine(1, bytes.data()), -1);
        SetAllocationFault(nullptr);
        PagedLineInfo info = {};
        ASSERT_EQ(list.GetInfo(&info), 1);
        EXPECT_EQ(info.lineCount, 2u);
        // The search for room sent the old lines out, and the new one, whose file is gone again.
        EXPECT_EQ(SwapFiles().size(), folder != nullptr ? 2u : 0u);
        SetFreeMemory(Plenty);
        for (i32 at = 0; at < 2; ++at) {
            u8* line = nullptr;
            ASSERT_EQ(list.LockLine(at, &line), 1);
            EXPECT_EQ(std::vector<u8>(line, line + 77), std::vector<u8>(77));
        }
        EXPECT_EQ(list.Destroy(), 1);
        EXPECT_TRUE(SwapFiles().empty());
    }
}
