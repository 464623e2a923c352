// What tests bend in the platform. Host paths and folders for tests stand beside the file layer.

#include "platform/testing/Testing.h"

#include <utility>

namespace tavrix::testing
{

namespace
{

/// Changes the record under its lock and wakes the places that look at it.
template <class Change>
void Bend(Change change)
{
    platform::TestHooks& hooks = platform::Hooks();
    const std::lock_guard<std::mutex> guard(hooks.lock);
    change(hooks);
    hooks.active = true;
}

void AppendUtf8(std::string& out, char32_t character)
{
    const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
    if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0 | character >> 6);
        put(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        put(0xE0 | character >> 12);
        put(0x80 | (character >> 6 & 0x3F));
        put(0x80 | (character & 0x3F));
    } else {
        put(0xF0 | character >> 18);
        put(0x80 | (character >> 12 & 0x3F));
        put(0x80 | (character >> 6 & 0x3F));
        put(0x80 | (character & 0x3F));
    }
}

} // namespace

void Reset()
{
    platform::TestHooks& hooks = platform::Hooks();
    const std::lock_guard<std::mutex> guard(hooks.lock);
    hooks.active = false;
    hooks.freeBytes.reset();
    hooks.language.reset();
    hooks.randomNumbers.clear();
    hooks.randomNext = 0;
    hooks.systemTime.reset();
    hooks.tickCount.reset();
    hooks.fileFault = nullptr;
    hooks.allocationFault = nullptr;
    hooks.threadFault = nullptr;
    hooks.socketFault = nullptr;
    hooks.diskSpace.reset();
    hooks.modalStarted = nullptr;
    hooks.idleTimerResets = 0;
    hooks.beeps = 0;
}

void SetFreeMemory(unsigned long long bytes)
{
    Bend([bytes](platform::TestHooks& hooks) { hooks.freeBytes = bytes; });
}

void SetLanguage(LANGID language)
{
    Bend([language](platform::TestHooks& hooks) { hooks.language = language; });
}

void SetRandom(std::vector<LONG> numbers)
{
    Bend([&numbers](platform::TestHooks& hooks) {
        hooks.randomNumbers = std::move(numbers);
        hooks.randomNext = 0;
    });
}

void SetSystemTime(const SYSTEMTIME& time)
{
    Bend([&time](platform::TestHooks& hooks) { hooks.systemTime = time; });
}

void SetTickCount(DWORD milliseconds)
{
    Bend([milliseconds](platform::TestHooks& hooks) { hooks.tickCount = milliseconds; });
}

void SetFileFault(
    std::function<bool(platform::FileOperation, const WCHAR* path, DWORD* shortBy)> fault)
{
    Bend([&fault](platform::TestHooks& hooks) { hooks.fileFault = std::move(fault); });
}

void SetAllocationFault(std::function<bool(SIZE_T size)> fault)
{
    Bend([&fault](platform::TestHooks& hooks) { hooks.allocationFault = std::move(fault); });
}

void SetThreadFault(std::function<bool()> fault)
{
    Bend([&fault](platform::TestHooks& hooks) { hooks.threadFault = std::move(fault); });
}

void SetSocketFault(std::function<bool(platform::SocketOperation, int* length)> fault)
{
    Bend([&fault](platform::TestHooks& hooks) { hooks.socketFault = std::move(fault); });
}

void SetDiskSpace(unsigned long long bytes)
{
    Bend([bytes](platform::TestHooks& hooks) { hooks.diskSpace = bytes; });
}

// By hand and not through the platform's converters, whose tests compare with these.
std::u16string Wide(const std::string& utf8)
{
    std::u16string text;
    for (size_t at = 0; at < utf8.size();) {
        const auto byte = static_cast<unsigned char>(utf8[at++]);
        const int trails = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : byte >= 0xC0 ? 1 : 0;
        char32_t character = trails == 0 ? byte : byte & (0x3Fu >> trails);
        for (int trail = 0; trail < trails && at < utf8.size(); ++trail)
            character = character << 6 | (static_cast<unsigned char>(utf8[at++]) & 0x3Fu);
        if (character >= 0x10000) {
            text.push_back(static_cast<char16_t>(0xD7C0 + (character >> 10)));
            text.push_back(static_cast<char16_t>(0xDC00 + (character & 0x3FF)));
        } else {
            text.push_back(static_cast<char16_t>(character));
        }
    }
    return text;
}

std::string Utf8(const WCHAR* text)
{
    std::string out;
    if (text == nullptr)
        return out;
    while (*text != 0) {
        char32_t character = *text++;
        if (character >= 0xD800 && character < 0xDC00 && *text >= 0xDC00 && *text < 0xE000)
            character = 0x10000 + ((character - 0xD800) << 10) + (*text++ - 0xDC00u);
        AppendUtf8(out, character);
    }
    return out;
}

} // namespace tavrix::testing
