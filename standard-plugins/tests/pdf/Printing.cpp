#include "standard-plugins/tests/pdf/Printing.h"

#include "foundation/MemoryGauge.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/wait.h>

#include "platform/testing/core/TestPaths.h"

namespace pdftest
{

Told& CurrentTold()
{
    static Told told;
    return told;
}

PluginCallbacks Callbacks()
{
    return {
        [](u32 done, u32 total) -> i32 {
            Told& told = CurrentTold();
            told.progress.emplace_back(done, total);
            return told.progress.size() > told.refusedFrom ? -1 : 1;
        },
        [](const TavrixChar* text, const TavrixChar* caption, u32 flags) -> i32 {
            CurrentTold().messages.push_back({text, caption, flags});
            return 0;
        },
        [](Variant* item) -> i32 {
            Told& told = CurrentTold();
            if (told.refusesStoring)
                return -1;
            if (item->type == VariantWide)
                told.texts[item->name] = reinterpret_cast<const TavrixChar*>(item->value);
            else
                told.numbers[item->name] = item->value;
            return 3;
        },
        [](Variant* item) -> i32 {
            Told& told = CurrentTold();
            if (item->type == VariantWide && told.texts.contains(item->name)) {
                item->value = reinterpret_cast<uintptr_t>(told.texts[item->name].c_str());
                return 1;
            }
            if (item->type == VariantUnsigned && told.numbers.contains(item->name)) {
                item->value = told.numbers[item->name];
                return 1;
            }
            return -10;
        },
    };
}

uint8_t Noise(u32 x, u32 y, u32 channel)
{
    u32 value = x * 0x9E3779B1u + y * 0x85EBCA77u + channel * 0xC2B2AE3Du;
    value ^= value >> 15;
    value *= 0x2C1B3C6Du;
    value ^= value >> 12;
    return static_cast<uint8_t>(value >> 8);
}

void Fill(Raster* image, u32 width, u32 height, u32 depth, const Colours& colours)
{
    ASSERT_EQ(image->Create(width, height, depth, TEXT("\\Temp\\"), TEXT("\\Temp\\")), 1);
    RasterInfo info = {};
    info.size = sizeof info;
    ASSERT_EQ(image->GetInfo(&info), 1);
    for (u32 y = 0; y < height; ++y) {
        u8* line = nullptr;
        ASSERT_EQ(image->LockLines(static_cast<i32>(y), &line, nullptr), 1);
        std::fill_n(line, info.stride, u8{0xA5});
        for (u32 x = 0; x < width; ++x)
            if (depth == 8)
                line[x] = colours(x, y, 0);
            else
                for (u32 channel = 0; channel < 3 && depth >= 24; ++channel)
                    line[x * (depth / 8) + 2 - channel] = colours(x, y, channel);
        image->ReleaseLines(static_cast<i32>(y), 1, 0);
    }
    image->UnlockAll();
}

Ran Shell(const std::string& command)
{
    Ran ran;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    std::array<char, 4096> part;
    for (size_t count = 0; pipe && (count = fread(part.data(), 1, part.size(), pipe)) > 0;)
        ran.output.append(part.data(), count);
    const int status = pipe ? pclose(pipe) : -1;
    ran.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return ran;
}

std::string Quoted(const std::string& path)
{
    return "'" + path + "'";
}

std::string FileBytes(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::string& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

std::u16string DevicePath(const std::string& hostPath)
{
    std::string text = "\\Computer" + hostPath;
    std::replace(text.begin(), text.end(), '/', '\\');
    return tavrix::testing::Wide(text);
}

std::vector<std::string> NamesIn(const std::string& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

void ExpectSound(const std::string& pdf)
{
    const Ran ran = Shell("qpdf --check " + Quoted(pdf));
    EXPECT_EQ(ran.status, 0) << ran.output;
    EXPECT_EQ(ran.output.find("WARNING"), std::string::npos) << ran.output;
    EXPECT_NE(ran.output.find("PDF Version: 1.4"), std::string::npos) << ran.output;
}

std::string Difference(const std::string& pdf, u32 width, u32 height, const Colours& colours)
{
    const std::string work = tavrix::testing::FreshFolder();
    std::string expected = "P6 " + std::to_string(width) + " " + std::to_string(height) + " 255\n";
    for (u32 y = 0; y < height; ++y)
        for (u32 x = 0; x < width; ++x)
            for (u32 channel = 0; channel < 3; ++channel)
                expected += static_cast<char>(colours(x, y, channel));
    WriteFile(work + "/expected.ppm", expected);
    const Ran taken = Shell("pdfimages -png " + Quoted(pdf) + " " + Quoted(work + "/got"));
    const std::vector<std::string> both = {"expected.ppm", "got-000.png"};
    if (taken.status != 0 || NamesIn(work) != both)
        return "pdfimages: " + taken.output + " and " + std::to_string(NamesIn(work).size() - 1) +
               " pictures";
    const Ran compared = Shell("compare -metric AE " + Quoted(work + "/expected.ppm") + " " +
                               Quoted(work + "/got-000.png") + " null:");
    std::filesystem::remove_all(work);
    return compared.output == "0" && compared.status == 0 ? "" : compared.output;
}

std::string InfoOf(const std::string& pdf, const std::string& title)
{
    const std::string all = Shell("pdfinfo -isodates " + Quoted(pdf)).output;
    const size_t at = ("\n" + all).find("\n" + title + ":");
    if (at == std::string::npos)
        return "(none)";
    size_t begin = at + title.size() + 1;
    begin = all.find_first_not_of(' ', begin);
    return all.substr(begin, all.find('\n', begin) - begin);
}

PrintTest::PrintTest(const std::string& name) : library(name + ".dll")
{
    CurrentTold() = {};
    tavrix::testing::SetFreeMemory(1u << 30);
    MemoryGauge::Sample();
    Load();
}

PrintTest::~PrintTest()
{
    plugin.Unload();
    EXPECT_EQ(FileBytes("/proc/self/maps").find("/PRINT/" + library), std::string::npos)
        << "still in the process after its unload";
    tavrix::testing::Reset();
    MemoryGauge::Sample();
    std::filesystem::remove_all(folder);
}

void PrintTest::Load(u32 language)
{
    const i32 count =
        plugin.ScanIn(DevicePath(tavrix::testing::InBuild("/bin/PLUGINS")).c_str(), ForgetPaths);
    u32 index = 0;
    while (static_cast<i32>(index) < count &&
           !tavrix::testing::Utf8(plugin.Path(index)).ends_with("\\" + library))
        ++index;
    ASSERT_LT(static_cast<i32>(index), count) << library << " is not there";
    ASSERT_EQ(plugin.LoadByIndex(index, language), 1);
}

i32 PrintTest::Print(Raster* image, const WCHAR* title)
{
    const i32 result = plugin.Print(image, nullptr, 0, 0, 0, 0, title, Callbacks());
    image->UnlockAll();
    return result;
}

i32 PrintTest::Print(u32 width, u32 height, const Colours& colours, const WCHAR* title)
{
    Raster image;
    Fill(&image, width, height, 24, colours);
    return Print(&image, title);
}

void PrintTest::SetFile(const std::string& name)
{
    CurrentTold().texts[u"PdfPrintFile"] = DevicePath(Path(name));
}

} // namespace pdftest
