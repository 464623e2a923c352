// The clipboard. What the rest of the desktop offers is kept and asked anew only when it tells of a
// change: a program that hangs would hold up every question for seconds.
#include "platform/qt/Toolkit.h"
#include "platform/qt/UiThread.h"
#include "platform/qt/Window.h"

#include <windows.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace tavrix::platform
{
namespace
{

struct ClipboardState {
    bool watched = false;
    bool offersPicture = false;
    bool open = false;
};

ClipboardState& State()
{
    static ClipboardState state;
    return state;
}

void TakeOffer()
{
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    State().offersPicture = data != nullptr && data->hasImage();
}

void Watch()
{
    if (State().watched)
        return;
    EnsureToolkit();
    State().watched = true;
    QObject::connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, TakeOffer);
    TakeOffer();
}

} // namespace
} // namespace tavrix::platform

using namespace tavrix::platform;

BOOL WINAPI IsClipboardFormatAvailable(UINT format)
{
    if (format != CF_DIB && format != CF_BITMAP)
        return FALSE;
    Watch();
    return State().offersPicture ? TRUE : FALSE;
}

BOOL WINAPI OpenClipboard(HWND)
{
    if (State().open)
        return FALSE;
    Watch();
    State().open = true;
    return TRUE;
}

BOOL WINAPI CloseClipboard()
{
    const bool open = State().open;
    State().open = false;
    return open ? TRUE : FALSE;
}

BOOL WINAPI EmptyClipboard()
{
    if (!State().open)
        return FALSE;
    QGuiApplication::clipboard()->clear();
    return TRUE;
}
