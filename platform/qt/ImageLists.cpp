#include "platform/qt/ImageLists.h"

#include "platform/qt/Icons.h"
#include "platform/qt/Toolkit.h"

#include <QIcon>

#include <unordered_map>
#include <vector>

namespace tavrix::platform
{
namespace
{

// Odd, as neither an address nor an icon's handle is.
constexpr UINT_PTR FirstHandle = 0x4001;
constexpr UINT_PTR HandleStep = 4;

struct ImageList {
    QSize size;
    std::vector<QPixmap> pictures;
};

std::unordered_map<UINT_PTR, ImageList>& Table()
{
    // Never freed: pictures must not outlive the toolkit, which is gone before static objects are.
    static auto* table = new std::unordered_map<UINT_PTR, ImageList>;
    return *table;
}

ImageList* FindList(HIMAGELIST list)
{
    const auto found = Table().find(reinterpret_cast<UINT_PTR>(list));
    return found != Table().end() ? &found->second : nullptr;
}

/// The icon's picture that fits best, brought to the list's size; null for a bad icon.
QPixmap PictureOf(HICON handle, QSize size)
{
    const QIcon icon = IconOf(handle);
    if (icon.isNull())
        return {};
    const QPixmap fitting = icon.pixmap(size);
    if (fitting.isNull() || fitting.size() == size)
        return fitting;
    return fitting.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

QPixmap ImageListPicture(HIMAGELIST list, int index)
{
    const ImageList* found = FindList(list);
    if (found == nullptr || index < 0 || static_cast<size_t>(index) >= found->pictures.size())
        return {};
    return found->pictures[static_cast<size_t>(index)];
}

QSize ImageListSize(HIMAGELIST list)
{
    const ImageList* found = FindList(list);
    return found != nullptr ? found->size : QSize();
}

} // namespace tavrix::platform

using namespace tavrix::platform;

HIMAGELIST WINAPI ImageList_Create(int width, int height, UINT, int, int)
{
    if (width <= 0 || height <= 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    static UINT_PTR last = FirstHandle;
    last += HandleStep;
    Table()[last].size = QSize(width, height);
    return reinterpret_cast<HIMAGELIST>(last);
}

BOOL WINAPI ImageList_Destroy(HIMAGELIST list)
{
    if (Table().erase(reinterpret_cast<UINT_PTR>(list)) != 0)
        return TRUE;
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
}

int WINAPI ImageList_GetImageCount(HIMAGELIST list)
{
    const ImageList* found = FindList(list);
    return found != nullptr ? static_cast<int>(found->pictures.size()) : 0;
}

int WINAPI ImageList_ReplaceIcon(HIMAGELIST list, int index, HICON icon)
{
    constexpr int Append = -1;
    ImageList* found = FindList(list);
    if (found == nullptr) {
        SetLastError(ERROR_INVALID_HANDLE);
        return -1;
    }
    EnsureToolkit(); // the toolkit's pictures need it, and a list may be filled before any window
    const int count = static_cast<int>(found->pictures.size());
    const bool known = index == Append || (index >= 0 && index < count);
    QPixmap picture = known ? PictureOf(icon, found->size) : QPixmap();
    if (picture.isNull()) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return -1;
    }
    if (index == Append) {
        found->pictures.push_back(std::move(picture));
        return count;
    }
    found->pictures[static_cast<size_t>(index)] = std::move(picture);
    return index;
}
