// The figure of available memory.

#include "platform/core/MemoryStatus.h"
#include "platform/testing/core/TestHome.h"
#include "platform/testing/Testing.h"
#include "platform/tests/core/ChildProcess.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

namespace
{

using tavrix::platform::HostAvailableBytes;
using tavrix::platform::ParseMemorySize;
using tavrix::testing::Scope;
using tavrix::testing::SetFreeMemory;
using Bytes = unsigned long long;

SIZE_T Available()
{
    MEMORYSTATUS status{};
    GlobalMemoryStatus(&status);
    return status.dwAvailPhys;
}

/// A host's /proc and /sys made of the test's own files.
class PretendedHost
{
public:
    PretendedHost()
    {
        static int count = 0;
        root = tavrix::testing::TestHome() + "/host" + std::to_string(++count);
    }
    void Write(const std::string& path, const std::string& text) const
    {
        const std::filesystem::path file = root + path;
        std::filesystem::create_directories(file.parent_path());
        std::ofstream(file) << text;
    }
    std::optional<Bytes> Available() const { return HostAvailableBytes(root); }

private:
    std::string root;
};

TEST(Memory, SizesAreReadWithTheirSuffixes)
{
    EXPECT_EQ(ParseMemorySize("16M"), Bytes{16777216});
    EXPECT_EQ(ParseMemorySize("16m"), Bytes{16777216});
    EXPECT_EQ(ParseMemorySize("512K"), Bytes{524288});
    EXPECT_EQ(ParseMemorySize("512k"), Bytes{524288});
    EXPECT_EQ(ParseMemorySize("2G"), Bytes{2147483648u});
    EXPECT_EQ(ParseMemorySize("1000"), Bytes{1000});
    EXPECT_EQ(ParseMemorySize("99999999999999999999"), Bytes{18446744073709551615u});
    EXPECT_EQ(ParseMemorySize("99999999999999999G"), Bytes{18446744073709551615u});
    for (const char* bad : {"", "M", "-1", " 1M", "1MB", "1 M", "0", "0x10", "1T"})
        EXPECT_EQ(ParseMemorySize(bad), std::nullopt) << bad;
    EXPECT_EQ(ParseMemorySize(nullptr), std::nullopt);
}

TEST(Memory, AHostWithoutLimitsHasWhatItSays)
{
    const PretendedHost host;
    host.Write("/proc/meminfo", "MemTotal:  8000 kB\nMemFree: 10 kB\nMemAvailable:    3000 kB\n");
    EXPECT_EQ(host.Available(), Bytes{3000 * 1024});
}

TEST(Memory, AHostThatTellsNothingGivesNothing)
{
    EXPECT_EQ(PretendedHost().Available(), std::nullopt);
}

TEST(Memory, TheTightestGroupAboveTheProcessBinds)
{
    const PretendedHost host;
    host.Write("/proc/meminfo", "MemAvailable: 900000 kB\n");
    host.Write("/proc/self/cgroup", "0::/outer/inner\n");
    host.Write("/sys/fs/cgroup/outer/inner/memory.max", "max\n");
    host.Write("/sys/fs/cgroup/outer/inner/memory.current", "5000000\n");
    host.Write("/sys/fs/cgroup/outer/memory.max", "100000000\n");
    host.Write("/sys/fs/cgroup/outer/memory.current", "30000000\n");
    EXPECT_EQ(host.Available(), Bytes{70000000});
    // Pages of files that the host drops at need do not count as used.
    host.Write("/sys/fs/cgroup/outer/memory.stat", "anon 1\ninactive_file 20000000\n");
    EXPECT_EQ(host.Available(), Bytes{90000000});
}

TEST(Memory, AGroupPastItsLimitLeavesNothing)
{
    const PretendedHost host;
    host.Write("/proc/meminfo", "MemAvailable: 900000 kB\n");
    host.Write("/proc/self/cgroup", "0::/\n");
    host.Write("/sys/fs/cgroup/memory.max", "1000\n");
    host.Write("/sys/fs/cgroup/memory.current", "2000\n");
    EXPECT_EQ(host.Available(), Bytes{0});
}

TEST(Memory, AnOldGroupCountsAndOneInAContainerIsFoundAtTheMount)
{
    const PretendedHost host;
    host.Write("/proc/meminfo", "MemAvailable: 900000 kB\n");
    host.Write("/proc/self/cgroup", "5:cpu,cpuacct:/x\n4:memory:/box/1234\n0::/x\n");
    host.Write("/sys/fs/cgroup/memory/memory.limit_in_bytes", "50000000\n");
    host.Write("/sys/fs/cgroup/memory/memory.usage_in_bytes", "20000000\n");
    host.Write("/sys/fs/cgroup/memory/memory.stat",
               "inactive_file 1\ntotal_inactive_file 1000000\n");
    EXPECT_EQ(host.Available(), Bytes{31000000});
}

TEST(Memory, AnUnlimitedOldGroupDoesNotBind)
{
    const PretendedHost host;
    host.Write("/proc/meminfo", "MemAvailable: 1000 kB\n");
    host.Write("/proc/self/cgroup", "4:memory:/\n");
    host.Write("/sys/fs/cgroup/memory/memory.limit_in_bytes", "9223372036854771712\n");
    host.Write("/sys/fs/cgroup/memory/memory.usage_in_bytes", "20000000\n");
    EXPECT_EQ(host.Available(), Bytes{1000 * 1024});
}

TEST(Memory, WhatTheProgramHoldsIsTakenOff)
{
    // A big host shows a saturated figure, from which nothing could be seen to fall.
    ChildProcess child("memory", {"TAVRIX_MEMORY=16M"});
    EXPECT_EQ(child.Line(), "16777216");
    EXPECT_EQ(child.Line(), "16777216");
    ChildProcess holder("memory-held", {"TAVRIX_MEMORY=16M"});
    EXPECT_EQ(holder.Line(), "15777216"); // 1,000,000 bytes in a heap
    EXPECT_EQ(holder.Line(), "13777216"); // and 2,000,000 in a global block
    EXPECT_EQ(holder.Line(), "14777216"); // the heap destroyed
    EXPECT_EQ(holder.Line(), "16777216"); // the block freed
    EXPECT_EQ(holder.Line(), "0");        // more held than there is
}

TEST(Memory, AFigureOf32BitsIsReachedAndNeverPassed)
{
    ChildProcess child("memory", {"TAVRIX_MEMORY=8G"});
    EXPECT_EQ(child.Line(), "4294967295");
    EXPECT_EQ(child.Line(), "4294967295");
}

TEST(Memory, WithoutASettingItIsHalfOfWhatTheHostHas)
{
    const std::optional<Bytes> host = HostAvailableBytes("");
    ASSERT_TRUE(host);
    ChildProcess child("memory", {"TAVRIX_MEMORY="});
    const Bytes told = std::stoull(child.Line());
    const Bytes half = std::min<Bytes>(*host / 2, 0xFFFFFFFFu);
    // The host's own figure moves between the two readings.
    EXPECT_GT(told, half / 2);
    EXPECT_LE(told, std::min<Bytes>(half + half / 2, 0xFFFFFFFFu));
}

TEST(Memory, TheFigureOfATestIsShownAsItIs)
{
    const Scope scope;
    SetFreeMemory(655360);
    EXPECT_EQ(Available(), 655360u);
    SetFreeMemory(0);
    EXPECT_EQ(Available(), 0u);
    SetFreeMemory(0x100000001ull);
    EXPECT_EQ(Available(), 0xFFFFFFFFu);
    void* block = HeapAlloc(GetProcessHeap(), 0, 1000);
    SetFreeMemory(5000);
    EXPECT_EQ(Available(), 5000u);
    HeapFree(GetProcessHeap(), 0, block);
}

TEST(Memory, TheRecordSaysItsSize)
{
    MEMORYSTATUS status{};
    status.dwLength = 1;
    GlobalMemoryStatus(&status);
    EXPECT_EQ(status.dwLength, sizeof(MEMORYSTATUS));
    EXPECT_GE(status.dwTotalPhys, status.dwAvailPhys);
    EXPECT_LE(status.dwMemoryLoad, 100u);
}

} // namespace
