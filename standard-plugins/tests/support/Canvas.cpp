#include "standard-plugins/tests/support/Canvas.h"

#include <algorithm>
#include <cstring>

namespace plugintest
{

namespace
{

Canvas* Of(TavrixImageHandle image)
{
    return reinterpret_cast<Canvas*>(image);
}

bool CountsDown(int& left)
{
    return left >= 0 && left-- == 0;
}

} // namespace

// Slots that a reader has no use for stay null: a call of one ends the test at once.
Canvas::Canvas() : table()
{
    table.size = sizeof table;
    table.RasterAlloc = [](TavrixImageHandle image, uint32_t w, uint32_t h, uint32_t d) -> int32_t {
        return Of(image)->Alloc(w, h, d);
    };
    table.RasterFree = [](TavrixImageHandle image) -> int32_t {
        Canvas* self = Of(image);
        ++self->frees;
        self->lent.clear();
        self->lines.clear();
        self->written.clear();
        self->width = self->height = self->depth = self->stride = 0;
        return 1;
    };
    table.RasterInsertLines = [](TavrixImageHandle image, int32_t line,
                                 uint32_t* count) -> int32_t {
        return Of(image)->Insert(line, count);
    };
    table.RasterLockLines = [](TavrixImageHandle image, int32_t line, void** out,
                               uint32_t* count) -> int32_t {
        return Of(image)->Lock(line, out, count);
    };
    table.RasterUnlockLines = [](TavrixImageHandle image, int32_t line, uint32_t count) -> int32_t {
        return Of(image)->Unlock(line, count);
    };
}

Canvas::~Canvas() = default;

int32_t Canvas::Alloc(uint32_t newWidth, uint32_t newHeight, uint32_t newDepth)
{
    ++allocations;
    stride = (3 * (newWidth + 1)) & ~3u;
    if (static_cast<uint64_t>(stride) * newHeight > mostBytes) {
        askedTooMuch = true;
        return -2;
    }
    width = newWidth;
    height = newHeight;
    depth = newDepth;
    lent.clear();
    lines.assign(forgets ? 0 : height, std::string(stride, '\0'));
    written.assign(height, false);
    return 1;
}

int32_t Canvas::Insert(int32_t line, uint32_t* count)
{
    ++insertions;
    if (depth == 0)
        return -3;
    if (static_cast<uint32_t>(line) > height)
        return -1;
    // The host counts the new lines first and does not take that back: such a picture is spoiled.
    height += *count;
    if (CountsDown(failInsertAfter))
        return -2;
    if (static_cast<uint64_t>(stride) * height > mostBytes) {
        askedTooMuch = true;
        return -2;
    }
    if (!forgets)
        lines.insert(lines.begin() + line, *count, std::string(stride, '\0'));
    written.insert(written.begin() + line, *count, false);
    // Lines that are lent move with the others.
    std::map<uint32_t, std::unique_ptr<char[]>> moved;
    for (auto& [place, block] : lent)
        moved[place < static_cast<uint32_t>(line) ? place : place + *count] = std::move(block);
    lent = std::move(moved);
    return 1;
}

int32_t Canvas::Lock(int32_t line, void** out, uint32_t* count)
{
    ++locks;
    peak.Look();
    if (depth == 0)
        return -3;
    const auto first =
        line < 0 ? static_cast<uint32_t>(line) + height : static_cast<uint32_t>(line);
    if (first >= height)
        return -1;
    if (CountsDown(failLockAfter)) {
        *count = 0;
        return -101;
    }
    if (*count > height - first)
        *count = height - first;
    for (uint32_t i = 0; i < *count; ++i) {
        if (lost.count(first + i) > 0) {
            *count = i;
            return 0;
        }
        if (keepsUnstored && lent.count(first + i) > 0) {
            out[i] = lent[first + i].get();
            continue;
        }
        TakeBack(first + i); // a line that stayed locked is the same line
        auto& block = lent[first + i];
        block = std::make_unique<char[]>(stride);
        if (!forgets)
            std::memcpy(block.get(), lines[first + i].data(), stride);
        out[i] = block.get();
    }
    if (lent.size() > mostLentAtOnce)
        mostLentAtOnce = lent.size();
    return 1;
}

void Canvas::TakeBack(uint32_t line)
{
    const auto found = lent.find(line);
    if (found == lent.end())
        return;
    if (!forgets)
        std::memcpy(lines[line].data(), found->second.get(), stride);
    written[line] = true;
    lent.erase(found);
}

int32_t Canvas::Unlock(int32_t line, uint32_t count)
{
    const auto first =
        line < 0 ? static_cast<uint32_t>(line) + height : static_cast<uint32_t>(line);
    if (first >= height)
        return -1;
    if (first + count >= height)
        count = height - first - count;
    if (keepsUnstored && count == 1) {
        written[first] = true;
        return 0;
    }
    for (uint32_t i = 0; i < count; ++i)
        TakeBack(first + i);
    if (!CountsDown(failUnlockAfter))
        return 1;
    for (uint32_t i = 0; i < std::max(count, 1u); ++i)
        lost.insert(first + i);
    return 0;
}

void Canvas::UnlockAll()
{
    while (!lent.empty())
        TakeBack(lent.begin()->first);
}

Pixel Canvas::At(uint32_t x, uint32_t y) const
{
    const auto* at = reinterpret_cast<const uint8_t*>(lines.at(y).data()) + size_t{3} * x;
    return {at[2], at[1], at[0]};
}

bool Canvas::WasWritten(uint32_t y) const
{
    return y < written.size() && written[y];
}

} // namespace plugintest
