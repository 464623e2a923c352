#include "tests/endurance/SavedPictures.h"

#include "platform/testing/core/TestHome.h"
#include "tests/endurance/Surroundings.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

namespace endurance
{

namespace
{

namespace fs = std::filesystem;
using tavrix::testing::TestHome;

std::string OutputOf(const std::string& command, int* status)
{
    std::string text;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    char part[512];
    while (pipe != nullptr && fgets(part, sizeof part, pipe) != nullptr)
        text += part;
    *status = pipe != nullptr ? pclose(pipe) : -1;
    return text;
}

/// What the other program says of a picture; empty when it can read all of it.
std::string FaultOf(const fs::path& picture)
{
    const std::string quoted = "'" + picture.string() + "'";
    const std::string target = "'" + TestHome() + "/tmp/read-back.ppm'";
    int status = -1;
    const std::string text =
        picture.extension() == ".jxl"
            ? OutputOf("djxl " + quoted + " " + target, &status)
            : OutputOf("convert -regard-warnings " + quoted + " " + target, &status);
    return status == 0 ? ""
                       : picture.filename().string() + ", " +
                             std::to_string(fs::file_size(picture)) + " bytes: " + text;
}

} // namespace

void SavedPictures::Check()
{
    for (const auto& entry : fs::recursive_directory_iterator(TestHome())) {
        const std::string name = entry.path().filename();
        if (!entry.is_regular_file() || !Surroundings::IsSaved(name))
            continue;
        const Stamp stamp = {entry.last_write_time().time_since_epoch().count(), entry.file_size()};
        if (std::exchange(seen[entry.path()], stamp) == stamp)
            continue;
        ++count;
        EXPECT_EQ(FaultOf(entry.path()), "");
    }
}

} // namespace endurance
