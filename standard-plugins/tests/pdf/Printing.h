// What the tests of whole prints share: the library in the program's host, its settings and its
// user, pictures by a formula, and the programs that look at what came of it.
#pragma once

#include "image/Raster.h"
#include "platform/testing/Testing.h"
#include "plugin/PrintPlugin.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace pdftest
{

struct Message {
    std::u16string text;
    std::u16string caption;
    u32 flags;
};

/// What the plugin told and was answered.
struct Told {
    std::map<std::u16string, uintptr_t> numbers;
    std::map<std::u16string, std::u16string> texts;
    std::vector<std::pair<u32, u32>> progress;
    std::vector<Message> messages;
    /// The first report that is answered with a refusal.
    size_t refusedFrom = ~size_t{0};
    bool refusesStoring = false;
};

Told& CurrentTold();
PluginCallbacks Callbacks();

/// The bytes of a pixel: red, green, blue.
using Colours = std::function<uint8_t(u32 x, u32 y, u32 channel)>;
/// Noise that no packer makes smaller.
uint8_t Noise(u32 x, u32 y, u32 channel);
/// A picture whose pixels have these colours; its padding and fourth bytes are spoiled. At 8 bits
/// the value is that of channel 0.
void Fill(Raster* image, u32 width, u32 height, u32 depth, const Colours& colours);

/// What a command wrote and how it ended.
struct Ran {
    std::string output;
    int status;
};
Ran Shell(const std::string& command);
std::string Quoted(const std::string& path);
std::string FileBytes(const std::string& path);
void WriteFile(const std::string& path, const std::string& bytes);
std::u16string DevicePath(const std::string& hostPath);
/// The names in a folder, in order.
std::vector<std::string> NamesIn(const std::string& folder);

/// Sound to the letter, by another program's judgement.
void ExpectSound(const std::string& pdf);
/// How the file's only picture differs from the formula; empty when no pixel does.
std::string Difference(const std::string& pdf, u32 width, u32 height, const Colours& colours);
/// A line of pdfinfo behind its title, such as InfoOf(file, "Title").
std::string InfoOf(const std::string& pdf, const std::string& title);

/// A fresh folder, a fresh host and a plugin that was never configured.
class PrintTest : public testing::Test
{
protected:
    /// `name` is the library's, without its extension.
    explicit PrintTest(const std::string& name = "PDF");
    ~PrintTest() override;

    /// The plugin, loaded anew in a language (0 or 17).
    void Load(u32 language = 0);
    i32 Print(Raster* image, const WCHAR* title = nullptr);
    /// Prints a picture of a formula.
    i32 Print(u32 width, u32 height, const Colours& colours, const WCHAR* title = nullptr);
    /// Chooses the file, by its name in the folder.
    void SetFile(const std::string& name);
    std::string Path(const std::string& name) const { return folder + "/" + name; }

    tavrix::testing::Scope scope;
    const std::string library;
    PrintPlugin plugin;
    std::string folder = tavrix::testing::FreshFolder();
};

} // namespace pdftest
