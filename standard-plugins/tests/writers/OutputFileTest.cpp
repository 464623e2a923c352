// What OutputFile does when earlier bytes are put right.

#include "standard-plugins/common/device/OutputFile.h"
#include "platform/testing/Faults.h"
#include "standard-plugins/tests/support/Writing.h"

#include <gtest/gtest.h>

using namespace plugintest;
using tavrix::platform::FileOperation;

namespace
{

class OutputFileOverwriting : public testing::Test
{
protected:
    ~OutputFileOverwriting() override
    {
        CloseOutput(&output);
        tavrix::testing::Reset();
    }
    void Open() { ASSERT_TRUE(OpenOutput(&output, DevicePath(folder / "a").c_str(), nullptr)); }
    /// `count` bytes that tell their place, kept in `expected` too.
    void Append(size_t count)
    {
        std::string bytes;
        for (size_t i = 0; i < count; ++i)
            bytes += static_cast<char>((expected.size() + i) % 251);
        ASSERT_TRUE(WriteOutput(&output, bytes.data(), count));
        expected += bytes;
    }
    bool Overwrite(size_t offset, const std::string& bytes)
    {
        if (!OverwriteOutput(&output, offset, bytes.data(), bytes.size()))
            return false;
        expected.replace(offset, bytes.size(), bytes);
        return true;
    }

    tavrix::testing::Scope scope;
    std::filesystem::path folder = tavrix::testing::FreshFolder();
    OutputFile output = {};
    std::string expected;
};

} // namespace

TEST_F(OutputFileOverwriting, BytesInTheBufferInTheFileAndAcrossBothArePutRight)
{
    Open();
    Append(300);
    EXPECT_TRUE(Overwrite(0, "head")) << "all in the buffer";
    EXPECT_TRUE(Overwrite(296, "tail"));
    Append(200000);
    EXPECT_TRUE(Overwrite(0, "HEAD")) << "in the file";
    EXPECT_TRUE(Overwrite(65530, "from one buffer to the next"));
    for (size_t offset = 196000; offset < 197000; offset += 7)
        EXPECT_TRUE(Overwrite(offset, "|")); // the last buffer begins among these
    EXPECT_TRUE(Overwrite(100, std::string(200100, 'z'))) << "from the file into the buffer";
    EXPECT_EQ(output.position, expected.size());
    Append(70000);
    EXPECT_TRUE(Overwrite(expected.size(), "")) << "nothing at the end";
    ASSERT_TRUE(FinishOutput(&output));
    CloseOutput(&output);
    EXPECT_TRUE(FileBytes(folder / "a") == expected);
}

TEST_F(OutputFileOverwriting, BytesThatAreNotThereYetAreRefused)
{
    for (const auto& [offset, count] :
         {std::pair<uint64_t, size_t>{10, 1}, {9, 2}, {0, 11}, {~uint64_t{0}, 2}}) {
        Open();
        Append(10);
        const std::string bytes(count, 'x');
        EXPECT_FALSE(OverwriteOutput(&output, offset, bytes.data(), count));
        EXPECT_EQ(output.problem, WriteProblem::Arguments);
        EXPECT_FALSE(FinishOutput(&output)) << "the first failure stays";
        CloseOutput(&output);
        expected.clear();
    }
    EXPECT_EQ(NamesIn(folder), "");
}

TEST_F(OutputFileOverwriting, StreamRefuses)
{
    PluginStreamRecord record = {};
    record.size = sizeof record;
    record.write = [](void*, const void*, uint32_t*) -> int32_t { return 1; };
    ASSERT_TRUE(OpenOutput(&output, nullptr, &record));
    ASSERT_TRUE(WriteOutput(&output, "abc", 3));
    EXPECT_FALSE(OverwriteOutput(&output, 0, "x", 1));
    EXPECT_EQ(output.problem, WriteProblem::Stream);
    EXPECT_FALSE(FinishOutput(&output));
}

TEST_F(OutputFileOverwriting, FailureOfTheDiskIsNotedAndTheOldFileStays)
{
    WriteBytes(folder / "a", "the old file");
    Open();
    Append(100000);
    tavrix::testing::SetFileFault([](FileOperation operation, const WCHAR*, DWORD*) {
        return operation == FileOperation::Write;
    });
    EXPECT_FALSE(OverwriteOutput(&output, 5, "x", 1));
    EXPECT_EQ(output.problem, WriteProblem::DiskFull);
    tavrix::testing::Reset();
    EXPECT_FALSE(FinishOutput(&output));
    CloseOutput(&output);
    EXPECT_EQ(FileBytes(folder / "a"), "the old file");
    EXPECT_EQ(NamesIn(folder), "a");
}
