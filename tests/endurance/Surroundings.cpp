#include "tests/endurance/Surroundings.h"

#include "platform/testing/core/TestHome.h"
#include "platform/testing/Testing.h"
#include "tests/support/Program.h"
#include "tests/support/TestPicture.h"

#include <QImage>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "platform/testing/core/TestPaths.h"

namespace endurance
{

namespace
{

namespace fs = std::filesystem;
using namespace tavrix::testing;

constexpr int BrokenInARun = 40;

fs::path PluginFolder()
{
    return fs::path(TestHome()) / "data" / "tavrix" / "PLUGINS";
}

/// In an order that does not hang on the host's.
std::vector<fs::path> FilesBelow(const fs::path& folder)
{
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

void WritePicture(int width, int height, const std::string& name, const char* format)
{
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, 0xFF000000u | TestColor(x, y));
    if (!image.save(QString::fromStdString(InRoot(name)), format))
        std::abort();
}

void WriteSettingsOf(Dice& dice)
{
    std::u16string lines = u"[Tavrix]\r\n";
    if (dice.Chance(70))
        lines += u"EnableUndo=1\r\n";
    if (dice.Chance(30))
        lines += u"ShowToolbox=0\r\nShowColorbox=0\r\n";
    if (dice.Chance(30))
        lines += u"DitherMode=1\r\n";
    if (dice.Chance(30))
        lines += u"ScreenMode=1\r\n";
    if (dice.Chance(30))
        lines += u"WindowAdjusted=1\r\n";
    WriteSettings(lines);
}

} // namespace

std::string InRoot(const std::string& name)
{
    return HostPath(TEXT("\\")) + "/" + name;
}

std::vector<std::string> PagingFiles()
{
    std::vector<std::string> names;
    const std::string folder = HostPath(TEXT("\\Temp"));
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(folder, ignored))
        names.push_back(entry.path().filename());
    return names;
}

Surroundings::Surroundings(Dice& dice)
{
    PutPlugins();
    PutPictures(dice);
    WriteSettingsOf(dice);
}

void Surroundings::PutPlugins()
{
    for (const fs::path& file : FilesBelow(tavrix::testing::InBuild("/bin/PLUGINS"))) {
        // Its printers are the machine's own.
        if (file.filename() == "CUPS.dll")
            continue;
        libraries.push_back({file.parent_path().filename(), file.filename()});
    }
    for (const char* shell : {"quick.dll", "waiting.dll"})
        fs::remove(PluginFolder() / "INPUT" / shell);
    Restore();
}

void Surroundings::Restore()
{
    for (const Library& library : libraries) {
        const fs::path source =
            fs::path(tavrix::testing::InBuild("/bin/PLUGINS")) / library.kind / library.name;
        const fs::path target = PluginFolder() / library.kind / library.name;
        std::error_code ignored;
        fs::create_directories(target.parent_path());
        if (fs::is_symlink(target, ignored))
            continue;
        fs::remove(target, ignored);
        fs::create_symlink(source, target);
    }
}

void Surroundings::PutPictures(Dice& dice)
{
    for (const auto& [name, format] :
         {std::pair{"a.png", "PNG"}, {"b.jpg", "JPEG"}, {"c.bmp", "BMP"}, {"d.ppm", "PPM"}}) {
        WritePicture(dice.Between(1, 90), dice.Between(1, 90), name, format);
        good.push_back(name);
    }
    WritePicture(dice.Between(600, 900), dice.Between(500, 700), "large.png", "PNG");
    good.push_back("large.png");
    WritePicture(dice.Between(2, 5000), 1, "wide.png", "PNG");
    good.push_back("wide.png");
    std::vector<fs::path> inputs = FilesBelow(tavrix::testing::InSource("/tests/inputs"));
    std::erase_if(inputs, [](const fs::path& path) {
        return path.extension() == ".cpp" || path.extension() == ".h" ||
               path.extension() == ".md" || !path.has_extension();
    });
    for (int i = 0; i < BrokenInARun; ++i) {
        const fs::path& input = dice.AnyOf(inputs);
        const std::string name = "x" + std::to_string(i) + input.extension().string();
        fs::copy_file(input, InRoot(name), fs::copy_options::overwrite_existing);
        broken.push_back(name);
    }
}

std::string Surroundings::AnyName(Dice& dice) const
{
    const int kind = dice.Below(100);
    if (kind < 60)
        return dice.AnyOf(good);
    if (kind < 85)
        return dice.AnyOf(broken);
    if (kind < 92)
        return NameToSave(dice);
    return dice.Pick<std::string>({"missing.png", "", " ", "no-extension", "nowhere\\a.png", "..",
                                   "*", "a.png\\", std::string(300, 'n') + ".png", "\\", "a.xyz",
                                   "My Documents", "Computer\\etc\\passwd"});
}

std::string Surroundings::NameToSave(Dice& dice)
{
    static const std::vector<std::string> extensions = {"png", "jpg",  "bmp", "ppm", "gif",
                                                        "tif", "webp", "jxl", "png", "jpg"};
    return "saved" + std::to_string(dice.Below(3)) + "." + dice.AnyOf(extensions);
}

bool Surroundings::IsSaved(const std::string& name)
{
    return name.starts_with("saved");
}

std::string Surroundings::Spoil(const Library& library, Dice& dice)
{
    const fs::path target = PluginFolder() / library.kind / library.name;
    std::error_code ignored;
    const fs::path source =
        fs::path(tavrix::testing::InBuild("/bin/PLUGINS")) / library.kind / library.name;
    fs::remove(target, ignored);
    const std::string what = library.kind + "/" + library.name;
    switch (dice.Below(3)) {
    case 0:
        return what + " is gone";
    case 1:
        std::ofstream(target) << "no library\n";
        return what + " is text";
    default:
        fs::copy_file(source, target);
        fs::resize_file(target,
                        fs::file_size(target) * static_cast<unsigned>(dice.Below(100)) / 100);
        return what + " is cut short";
    }
}

std::string Surroundings::Change(Dice& dice)
{
    if (dice.Chance(30)) {
        Restore();
        return "all plugins are sound";
    }
    return Spoil(dice.AnyOf(libraries), dice);
}

} // namespace endurance
