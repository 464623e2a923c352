#include "platform/core/WindowList.h"

#include <algorithm>
#include <cstring>

namespace tavrix::platform
{

namespace
{

constexpr std::string_view Mark = "TVL1";

struct Entry {
    uint64_t number;
    uint32_t classLength; // in characters
    uint32_t titleLength;
};

std::u16string_view Cut(const std::u16string& name)
{
    return std::u16string_view(name).substr(0, ListedNameLimit);
}

void Append(std::string& bytes, std::u16string_view name)
{
    bytes.append(reinterpret_cast<const char*>(name.data()), name.size() * sizeof(char16_t));
}

std::u16string Take(std::string_view& bytes, size_t length)
{
    std::u16string name(length, u'\0');
    std::memcpy(name.data(), bytes.data(), length * sizeof(char16_t));
    bytes.remove_prefix(length * sizeof(char16_t));
    return name;
}

} // namespace

std::string PackWindowList(const std::vector<ListedWindow>& windows)
{
    std::string bytes(Mark);
    for (size_t i = 0; i < std::min(windows.size(), ListedWindowLimit); ++i) {
        const std::u16string_view className = Cut(windows[i].className);
        const std::u16string_view title = Cut(windows[i].title);
        const Entry entry = {windows[i].number, static_cast<uint32_t>(className.size()),
                             static_cast<uint32_t>(title.size())};
        bytes.append(reinterpret_cast<const char*>(&entry), sizeof entry);
        Append(bytes, className);
        Append(bytes, title);
    }
    return bytes;
}

std::vector<ListedWindow> UnpackWindowList(std::string_view bytes)
{
    std::vector<ListedWindow> windows;
    if (!bytes.starts_with(Mark))
        return windows;
    bytes.remove_prefix(Mark.size());
    while (bytes.size() >= sizeof(Entry) && windows.size() < ListedWindowLimit) {
        Entry entry;
        std::memcpy(&entry, bytes.data(), sizeof entry);
        bytes.remove_prefix(sizeof entry);
        if (entry.classLength > ListedNameLimit || entry.titleLength > ListedNameLimit ||
            (entry.classLength + entry.titleLength) * sizeof(char16_t) > bytes.size())
            break;
        ListedWindow window;
        window.number = entry.number;
        window.className = Take(bytes, entry.classLength);
        window.title = Take(bytes, entry.titleLength);
        windows.push_back(std::move(window));
    }
    return windows;
}

} // namespace tavrix::platform
