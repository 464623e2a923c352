// How windows come and go.
#include "platform/core/MessageQueue.h"
#include "platform/core/WindowRegistry.h"
#include "platform/qt/Backing.h"
#include "platform/qt/Input.h"
#include "platform/qt/Screen.h"
#include "platform/qt/Toolkit.h"
#include "platform/qt/UiThread.h"
#include "platform/qt/WindowRecords.h"

#include <QWidget>

namespace tavrix::platform
{
namespace
{

constexpr DWORD CannotFindClass = 1407;
constexpr DWORD InvalidWindowHandle = 1400;

struct Request {
    DWORD extendedStyle;
    LPCWSTR className;
    LPCWSTR title;
    DWORD style;
    int x, y, width, height;
    HWND parent;
    HMENU menu;
    HINSTANCE instance;
    LPVOID parameter;
};

// Default places: a window of the program's own classes fills the screen, anything else has no size
// until somebody gives it one.
QRect PlaceOf(const Request& request, const Window& window)
{
    const QPoint at = request.x == CW_USEDEFAULT ? QPoint(0, 0) : QPoint(request.x, request.y);
    QRect place(at, QSize(0, 0));
    const bool fills = !window.isChild && window.windowClass->makeWidget == nullptr;
    if (request.width != CW_USEDEFAULT)
        place.setSize(QSize(request.width, request.height));
    else if (fills)
        place.setSize(ScreenSize() - QSize(at.x(), at.y()));
    place.setSize(place.size().expandedTo(QSize(0, 0)));
    return place;
}

void MakeWidget(Window& window, const QRect& place)
{
    QWidget* parent = window.isChild ? ClientWidget(*window.parent) : ScreenWidget();
    const MakeWidgetFunction make = window.windowClass->makeWidget;
    window.widget = make != nullptr ? make(window, parent) : MakeBackingWidget(window, parent);
    LinkWidget(window);
    // A dialog that the screen cannot hold lies beside it, in a host window of its own.
    const QSize screen = ScreenSize();
    const bool tooLarge = place.width() > screen.width() || place.height() > screen.height();
    if (make != nullptr && !window.isChild && tooLarge)
        window.widget->setParent(ScreenWidget(), Qt::Dialog);
    window.widget->setGeometry(place);
    window.widget->hide(); // else it would appear with its parent
    if (window.isChild && (window.style & WS_DISABLED) != 0)
        window.widget->setEnabled(false);
    AttachPainting(window);
    AttachInput(window);
}

HWND Create(const Request& request)
{
    EnsureToolkit();
    const WindowClass* windowClass = FindWindowClassByNameOrAtom(request.className);
    if (windowClass == nullptr) {
        SetLastError(CannotFindClass);
        return nullptr;
    }
    Window* parent = FindWindowRecord(request.parent);
    const bool isChild = (request.style & WS_CHILD) != 0;
    if ((request.parent != nullptr || isChild) && parent == nullptr) {
        SetLastError(InvalidWindowHandle);
        return nullptr;
    }

    auto record = std::make_unique<Window>();
    record->windowClass = windowClass;
    record->procedure = windowClass->procedure;
    record->isChild = isChild;
    record->parent = parent != nullptr && !isChild ? &TopLevelOf(*parent) : parent;
    record->id = isChild ? reinterpret_cast<UINT_PTR>(request.menu) : 0;
    record->instance = request.instance;
    record->style = request.style & ~WS_VISIBLE;
    record->extendedStyle = request.extendedStyle;
    if (request.title != nullptr && !IS_INTRESOURCE(request.title))
        record->text = request.title;
    Window* window = AddWindow(std::move(record));
    if (window == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    const QRect place = PlaceOf(request, *window);
    MakeWidget(*window, place);
    // Other processes may look for the program's own windows; nobody looks for its dialogs there.
    if (!isChild && windowClass->makeWidget == nullptr)
        PublishWindow(window->handle, windowClass->name, window->text);

    CREATESTRUCTW creation{};
    creation.lpCreateParams = request.parameter;
    creation.hInstance = request.instance;
    creation.hMenu = request.menu;
    creation.hwndParent = request.parent;
    creation.cx = place.width();
    creation.cy = place.height();
    creation.x = place.x();
    creation.y = place.y();
    creation.style = static_cast<LONG>(request.style);
    creation.lpszName = request.title;
    creation.lpszClass = request.className;
    creation.dwExStyle = request.extendedStyle;
    const HWND handle = window->handle;
    const LRESULT answer = CallWindow(handle, WM_CREATE, 0, reinterpret_cast<LPARAM>(&creation));
    if (answer == -1) {
        DestroyWindow(handle);
        return nullptr;
    }
    window = FindWindowRecord(handle); // its own WM_CREATE may have destroyed it
    if (window == nullptr)
        return nullptr;
    TellPlace(*window, true, true);
    if ((request.style & WS_VISIBLE) != 0)
        ShowWindow(handle, SW_SHOW);
    return IsWindow(handle) ? handle : nullptr;
}

// The windows that go with this one: its children, and those that it owns.
std::vector<HWND> Dependents(const Window& window)
{
    std::vector<HWND> dependents;
    for (const Window* other : AllWindows())
        if (other->parent == &window)
            dependents.push_back(other->handle);
    return dependents;
}

void Destroy(Window& window)
{
    const HWND handle = window.handle;
    window.destroying = true;
    EndModal(window);
    if (GetCapture() == handle)
        ReleaseCapture();
    window.style &= ~WS_VISIBLE;
    PassFocusOn(window);
    window.widget->hide();
    CallWindow(handle, WM_DESTROY, 0, 0);
    for (const HWND dependent : Dependents(window))
        DestroyWindow(dependent);
    CallWindow(handle, WM_NCDESTROY, 0, 0);
    DetachPainting(window);
    RemoveWindow(window);
}

} // namespace
} // namespace tavrix::platform

using namespace tavrix::platform;

HWND WINAPI CreateWindowExW(DWORD extendedStyle, LPCWSTR className, LPCWSTR title, DWORD style,
                            int x, int y, int width, int height, HWND parent, HMENU menu,
                            HINSTANCE instance, LPVOID parameter)
{
    const Request request{extendedStyle, className, title,  style, x,        y,
                          width,         height,    parent, menu,  instance, parameter};
    HWND window = nullptr;
    CallOnUiThread([&]() -> LRESULT {
        window = Create(request);
        return 0;
    });
    return window;
}

BOOL WINAPI DestroyWindow(HWND handle)
{
    Window* window = FindWindowRecord(handle);
    if (window == nullptr || !IsUiThread() || window->destroying) {
        SetLastError(InvalidWindowHandle);
        return FALSE;
    }
    Destroy(*window);
    return TRUE;
}
