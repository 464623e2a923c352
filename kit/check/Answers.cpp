#include "kit/check/Answers.h"

#include "kit/check/Text.h"

#include <algorithm>
#include <vector>

namespace plugincheck
{

namespace
{

constexpr TavrixChar Untouched = 0xFDD0; // no character, in any language
constexpr size_t RoomBehind = 4096;

} // namespace

std::u16string Answer::Text() const
{
    // What was left as it was is no text either.
    return buffer.substr(0, buffer.find_first_of(std::u16string({u'\0', Untouched})));
}

std::string Answer::Utf8Text() const
{
    return Utf8(Text());
}

Answer Ask(PluginUnderCheck* plugin, u32 index, u32 capacity)
{
    std::vector<TavrixChar> room(capacity + RoomBehind, Untouched);
    Answer answer;
    answer.result = plugin->Ask(index, room.data(), capacity);
    const auto end = room.begin() + capacity;
    answer.isTerminated = std::find(room.begin(), end, u'\0') != end;
    answer.isOverrun =
        std::any_of(end, room.end(), [](TavrixChar unit) { return unit != Untouched; });
    answer.buffer.assign(room.begin(), end);
    return answer;
}

} // namespace plugincheck
