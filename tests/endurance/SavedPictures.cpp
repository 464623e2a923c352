#include "tests/endurance/SavedPictures.h"

#include "platform/testing/core/TestHome.h"
#include "tests/endurance/Surroundings.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
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
    FILE* pipe = popen(("{ " + command + "; } 2>&1").c_str(), "r");
    char part[512];
    while (pipe != nullptr && fgets(part, sizeof part, pipe) != nullptr)
        text += part;
    *status = pipe != nullptr ? pclose(pipe) : -1;
    return text;
}

/// A program of others for each format that reads all of a picture, of whatever size.
struct Reader {
    const char* extension;
    const char* command;
    const char* behind; // the picture's name
};

constexpr Reader readers[] = {{".png", "pngcheck -q", ""},
                              {".jpg", "djpeg -strict -outfile read-back", ""},
                              {".bmp", "bmptopnm", " >read-back"},
                              {".ppm", "pamtopnm", " >read-back"},
                              {".gif", "gif2rgb -1 -o read-back", ""},
                              {".tif", "tiffcp", " read-back"},
                              {".webp", "dwebp -quiet -ppm -o read-back", ""},
                              {".jxl", "djxl --quiet", " read-back.ppm"}};

/// What the other program says of a picture; empty when it can read all of it.
std::string FaultOf(const fs::path& picture)
{
    for (const Reader& reader : readers) {
        if (picture.extension() != reader.extension)
            continue;
        int status = -1;
        const std::string text = OutputOf("cd '" + TestHome() + "/tmp' && " + reader.command +
                                              " '" + picture.string() + "'" + reader.behind,
                                          &status);
        return status == 0 ? ""
                           : picture.filename().string() + ", " +
                                 std::to_string(fs::file_size(picture)) + " bytes: " + text;
    }
    return picture.filename().string() + ": no program reads it";
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
        const std::string fault = FaultOf(entry.path());
        EXPECT_EQ(fault, "");
        if (const char* const folder = std::getenv("TAVRIX_ENDURANCE_KEEP");
            folder != nullptr && !fault.empty())
            fs::copy_file(entry.path(), fs::path(folder) / name,
                          fs::copy_options::overwrite_existing);
    }
}

} // namespace endurance
