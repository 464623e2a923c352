#include "platform/core/Gdi.h"
#include "platform/core/TestHooks.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace tavrix::platform
{
namespace
{

constexpr int64_t LargestSection = 0x7FFFFFFF;

bool IsKnownDepth(int depth)
{
    return depth == 1 || depth == 2 || depth == 4 || depth == 8 || depth == 24 || depth == 32;
}

std::vector<RGBQUAD> ColorsOf(const BITMAPINFO& info)
{
    const BITMAPINFOHEADER& header = info.bmiHeader;
    if (header.biBitCount > 8)
        return {};
    const size_t all = size_t{1} << header.biBitCount;
    const size_t given = header.biClrUsed != 0 ? std::min<size_t>(header.biClrUsed, all) : all;
    // The table follows the header, however long that says it is.
    std::vector<RGBQUAD> colors(all);
    std::memcpy(colors.data(), reinterpret_cast<const uint8_t*>(&info) + header.biSize,
                given * sizeof(RGBQUAD));
    return colors;
}

} // namespace
} // namespace tavrix::platform

using namespace tavrix::platform;

extern "C" {

HBITMAP WINAPI CreateDIBSection(HDC, const BITMAPINFO* info, UINT usage, void** bits,
                                HANDLE section, DWORD)
{
    if (bits != nullptr)
        *bits = nullptr;
    SetLastError(ERROR_INVALID_PARAMETER);
    if (info == nullptr || usage != DIB_RGB_COLORS || section != nullptr)
        return nullptr;
    const BITMAPINFOHEADER& header = info->bmiHeader;
    if (header.biSize < sizeof(BITMAPINFOHEADER) || header.biPlanes != 1 ||
        header.biCompression != BI_RGB || !IsKnownDepth(header.biBitCount) || header.biWidth <= 0 ||
        header.biHeight == 0)
        return nullptr;

    const int64_t width = header.biWidth;
    const int64_t height = std::abs(int64_t{header.biHeight});
    const int64_t stride = (width * header.biBitCount + 31) / 32 * 4;
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    if (stride > LargestSection / height)
        return nullptr;
    const size_t size = static_cast<size_t>(stride * height);
    if (IsAllocationFaulty(size))
        return nullptr;
    try {
        const auto bitmap = std::make_shared<Bitmap>();
        const HostAllocation own;
        bitmap->memory = std::calloc(1, size);
        if (bitmap->memory == nullptr)
            return nullptr;
        bitmap->colors = ColorsOf(*info);
        Surface& surface = bitmap->surface;
        surface.top = static_cast<uint8_t*>(bitmap->memory);
        surface.stride = static_cast<ptrdiff_t>(stride);
        surface.width = static_cast<int>(width);
        surface.height = static_cast<int>(height);
        surface.depth = header.biBitCount;
        surface.colors = bitmap->colors.empty() ? nullptr : bitmap->colors.data();
        surface.bottomUp = header.biHeight > 0;
        if (surface.bottomUp) {
            surface.top += (height - 1) * stride;
            surface.stride = -surface.stride;
        }
        const HGDIOBJ handle = AddGdiObject(bitmap);
        if (handle == nullptr)
            return nullptr;
        if (bits != nullptr)
            *bits = bitmap->memory;
        SetLastError(ERROR_SUCCESS);
        return static_cast<HBITMAP>(handle);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

} // extern "C"
