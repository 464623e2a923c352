#include "platform/qt/Icons.h"

#include "platform/qt/IconResource.h"
#include "platform/qt/StockIcons.h"
#include "platform/qt/Window.h"

#include <QBuffer>
#include <QImageReader>

#include <algorithm>
#include <cstdint>
#include <unordered_map>

namespace tavrix::platform
{
namespace
{

constexpr int DefaultSide = 32;
constexpr UINT_PTR FirstHandle = 0x2000; // far from the stock numbers' handles below
constexpr UINT_PTR StockHandles = 0x1000;

struct LoadedIcon {
    std::vector<BYTE> file; // decoded when the picture is first wanted: most never are
    QIcon icon;
    QSize size;
};

std::unordered_map<UINT_PTR, LoadedIcon>& Table()
{
    // Never freed: pictures must not outlive the toolkit, which is gone before static objects are.
    static auto* table = new std::unordered_map<UINT_PTR, LoadedIcon>;
    return *table;
}

HICON AddIcon(LoadedIcon icon)
{
    static UINT_PTR last = FirstHandle;
    last += 4;
    Table()[last] = std::move(icon);
    return reinterpret_cast<HICON>(last);
}

bool IsStock(UINT_PTR number)
{
    return number >= static_cast<UINT_PTR>(StockIcon::Application) &&
           number <= static_cast<UINT_PTR>(StockIcon::Asterisk);
}

std::vector<BYTE> ResourceBytes(HINSTANCE instance, LPCWSTR name, LPCWSTR type)
{
    const HRSRC resource = FindResourceW(instance, name, type);
    if (resource == nullptr)
        return {};
    const auto* bytes = static_cast<const BYTE*>(LockResource(LoadResource(instance, resource)));
    if (bytes == nullptr)
        return {};
    return {bytes, bytes + SizeofResource(instance, resource)};
}

/// The icon file behind a group resource; empty when there is no such group.
std::vector<BYTE> IconFile(HINSTANCE instance, LPCWSTR name)
{
    const std::vector<BYTE> group = ResourceBytes(instance, name, RT_GROUP_ICON);
    const auto pictures = ParseIconGroup(group.data(), group.size());
    if (!pictures)
        return {};
    return BuildIconFile(*pictures, [instance](WORD id) {
        return ResourceBytes(instance, MAKEINTRESOURCEW(id), RT_ICON);
    });
}

QIcon Decode(const std::vector<BYTE>& file)
{
    QIcon icon;
    QByteArray bytes(reinterpret_cast<const char*>(file.data()),
                     static_cast<qsizetype>(file.size()));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, "ico");
    const int count = reader.imageCount();
    for (int i = 0; i < count; ++i) {
        reader.jumpToImage(i);
        const QImage image = reader.read();
        if (!image.isNull())
            icon.addPixmap(QPixmap::fromImage(image));
    }
    return icon;
}

HICON LoadIconOfSize(HINSTANCE instance, LPCWSTR name, int width, int height)
{
    if (instance == nullptr && IS_INTRESOURCE(name) && IsStock(reinterpret_cast<UINT_PTR>(name)))
        return StockIconHandle(static_cast<StockIcon>(reinterpret_cast<UINT_PTR>(name)));
    LoadedIcon loaded;
    loaded.file = IconFile(instance, name);
    if (loaded.file.empty()) {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
        return nullptr;
    }
    loaded.size = QSize(width > 0 ? width : DefaultSide, height > 0 ? height : DefaultSide);
    return AddIcon(std::move(loaded));
}

} // namespace

QIcon IconOf(HICON icon)
{
    const auto number = reinterpret_cast<UINT_PTR>(icon);
    const auto found = Table().find(number);
    if (found == Table().end())
        return {};
    LoadedIcon& loaded = found->second;
    if (loaded.icon.isNull() && !loaded.file.empty()) {
        ScreenWidget(); // pictures need the toolkit
        loaded.icon = Decode(loaded.file);
        loaded.file.clear();
    }
    return loaded.icon;
}

QSize IconSize(HICON icon)
{
    const auto found = Table().find(reinterpret_cast<UINT_PTR>(icon));
    return found == Table().end() ? QSize() : found->second.size;
}

HICON StockIconHandle(StockIcon icon)
{
    const UINT_PTR number =
        StockHandles +
        (static_cast<UINT_PTR>(icon) - static_cast<UINT_PTR>(StockIcon::Application)) * 4;
    LoadedIcon& stock = Table()[number];
    if (stock.icon.isNull()) {
        ScreenWidget();
        stock.size = QSize(DefaultSide, DefaultSide);
        for (const int side : {16, DefaultSide, 64})
            stock.icon.addPixmap(DrawStockIcon(icon, side));
    }
    return reinterpret_cast<HICON>(number);
}

} // namespace tavrix::platform

using namespace tavrix::platform;

HICON WINAPI LoadIconW(HINSTANCE instance, LPCWSTR name)
{
    return LoadIconOfSize(instance, name, DefaultSide, DefaultSide);
}

HANDLE WINAPI LoadImageW(HINSTANCE instance, LPCWSTR name, UINT kind, int width, int height, UINT)
{
    if (kind == IMAGE_ICON)
        return LoadIconOfSize(instance, name, width, height);
    if (kind == IMAGE_CURSOR)
        return LoadCursorW(instance, name);
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
}

BOOL WINAPI DestroyIcon(HICON icon)
{
    const auto number = reinterpret_cast<UINT_PTR>(icon);
    if (number <= FirstHandle) // a stock icon belongs to the device
        return Table().count(number) != 0 ? TRUE : FALSE;
    if (Table().erase(number) != 0)
        return TRUE;
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
}

HCURSOR WINAPI LoadCursorW(HINSTANCE instance, LPCWSTR name)
{
    // The device has no pointer to draw; a program only wants something to put into its class.
    if (instance == nullptr && IS_INTRESOURCE(name) && name != nullptr)
        return reinterpret_cast<HCURSOR>(const_cast<LPWSTR>(name));
    SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
    return nullptr;
}
