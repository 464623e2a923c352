#include "standard-plugins/tests/support/Changing.h"

#include "platform/testing/Faults.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace plugintest
{

Pixels PixelsOf(Raster* image)
{
    RasterInfo info = {};
    info.size = sizeof info;
    EXPECT_EQ(image->GetInfo(&info), 1);
    EXPECT_EQ(info.depth, 24u);
    Pixels pixels{info.width, info.height, {}};
    for (u32 y = 0; y < info.height; ++y) {
        u8* line = nullptr;
        EXPECT_EQ(image->LockLines(static_cast<i32>(y), &line, nullptr), 1);
        for (u32 x = 0; line && x < info.width; ++x)
            for (u32 channel = 0; channel < 3; ++channel)
                pixels.bytes.push_back(line[size_t{3} * x + 2 - channel]);
        image->ReleaseLines(static_cast<i32>(y), 1, 0);
    }
    image->UnlockAll();
    return pixels;
}

Pixels PixelsOf(u32 width, u32 height, const Samples& samples)
{
    const std::string rgb = Rgb(width, height, samples);
    return {width, height, {rgb.begin(), rgb.end()}};
}

double LargestError(const Pixels& got, const std::vector<double>& exact)
{
    if (got.bytes.size() != exact.size())
        return 1e9;
    double largest = 0;
    for (size_t i = 0; i < exact.size(); ++i)
        largest = std::max(largest, std::abs(got.bytes[i] - std::clamp(exact[i], 0.0, 255.0)));
    return largest;
}

size_t LineFiles()
{
    size_t count = 0;
    std::error_code error;
    for (const auto& entry :
         std::filesystem::directory_iterator(tavrix::testing::HostPath(TEXT("\\Temp\\")), error))
        count += entry.path().extension() == ".tmp";
    return count;
}

void FailLineFilesFrom(int attempt, bool onward)
{
    const auto left = std::make_shared<int>(attempt);
    tavrix::testing::SetFileFault(
        [left, onward](tavrix::platform::FileOperation operation, const WCHAR* path, DWORD*) {
            if (operation != tavrix::platform::FileOperation::Write ||
                !std::u16string(path).starts_with(u"\\Temp\\"))
                return false;
            --*left;
            return onward ? *left < 0 : *left == -1;
        });
}

} // namespace plugintest
