// A settings file of any bytes: loaded, saved and loaded again, against the format written out a
// second time. So that small inputs reach the bounds of lines and names, a unit 0xE000 + n of the
// input stands for n letters; beyond some 20,000 units of text it is an ordinary one.
#include "fuzz/Entry.h"
#include "platform/core/HostPaths.h"
#include "settings/SettingsFile.h"
#include "settings/tests/SettingsModel.h"
#include "settings/tests/SettingsText.h"

#include <fstream>
#include <iterator>

namespace
{

std::u16string Expanded(const std::u16string& units)
{
    std::u16string text;
    for (const char16_t unit : units) {
        if (unit >= 0xE000 && unit < 0xF000 && text.size() < 20000)
            text.append(unit - 0xE000u, u'x');
        else
            text.push_back(unit);
    }
    return text;
}

std::string HostPath(const char* name)
{
    return std::getenv("TMPDIR") + std::string("/") + name;
}

std::u16string DevicePath(const char* name)
{
    std::u16string path;
    using namespace tavrix::platform;
    Require(DevicePathOf(HostPath(name), &path) == HostPathResult::Done, "the folder is reachable");
    return path;
}

void Write(const char* name, const std::string& bytes)
{
    std::ofstream(HostPath(name), std::ios::binary) << bytes;
}

std::string Read(const char* name)
{
    std::ifstream file(HostPath(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Every key of the model whose section is plain is in the store, with its value.
void RequireValues(SettingsFile& store, const SettingsModel& model)
{
    for (const auto& [composed, value] : model.keys) {
        const size_t behind = composed.find(u"::");
        if (behind == composed.npos)
            continue;
        const std::u16string section = composed.substr(0, behind);
        const WCHAR* text = nullptr;
        const i32 got = store.GetText(section.c_str(), composed.c_str() + behind + 2, &text);
        const bool hasSection =
            std::any_of(model.sections.begin(), model.sections.end(),
                        [&](const auto& each) { return each.first == section; });
        const i32 expected = !hasSection ? -1 : value ? 1 : -100;
        Require(got == expected && (got < 1 || *value == text), "a value");
    }
}

/// Where no key lacks a value and no section's text stands inside a name of another, a save keeps
/// all.
bool IsKeptWhole(const SettingsModel& model)
{
    for (const auto& [composed, value] : model.keys) {
        if (!value || composed.size() >= 2047)
            return false;
        size_t holders = 0;
        for (const auto& [section, count] : model.sections)
            holders += composed.find(section + u"::") != composed.npos ? 1 : 0;
        if (holders != 1)
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const std::u16string path = DevicePath("s.ini");
    static const std::u16string savedPath = DevicePath("saved.ini");
    Input input{data, size};
    std::u16string text = Expanded(input.Units());
    // The odd last byte of the file, which is no character.
    Write("s.ini", Utf16Bytes(text) + input.Bytes(input.left));
    if (!text.empty() && text[0] == 0xFEFF)
        text.erase(0, 1);
    // Zeros end what is behind them on their line; the second reading has no such rule.
    const bool isComparable = text.find(u'\0') == text.npos;

    SettingsModel model;
    const bool loads = model.Load(text);
    SettingsFile store;
    const i32 result = store.Load(path.c_str());
    Require(!isComparable || result == (loads ? 1 : -1), "the result of a load");
    if (result < 1) {
        Require(store.Save(savedPath.c_str()) == -1, "what did not load is not saved");
        return 0;
    }
    if (isComparable)
        RequireValues(store, model);

    Require(store.Save(savedPath.c_str()) == 1, "a save");
    const std::string saved = Read("saved.ini");
    Require(!isComparable || saved == FileOf(model.Saved()), "the saved text");
    SettingsFile second;
    const i32 again = second.Load(savedPath.c_str());
    SettingsModel secondModel;
    if (isComparable) {
        Require(again == (secondModel.Load(model.Saved()) ? 1 : -1), "the second load");
        if (again == 1)
            RequireValues(second, secondModel);
        if (IsKeptWhole(model)) {
            Require(again == 1, "what a save keeps whole loads");
            RequireValues(second, model);
        }
    }
    (void)second.Close(0);
    Require(store.Close(0) == 1 && Read("saved.ini") == saved, "a close without a save");
    return 0;
}
