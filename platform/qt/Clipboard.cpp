// The clipboard. What the rest of the desktop offers is kept and asked anew only when it tells of a
// change, and never in a way that waits for the program that owns it: one that hangs would hold up
// every question for seconds.
#include "platform/core/ErrorCodes.h"
#include "platform/qt/ClipboardOffer.h"
#include "platform/qt/Toolkit.h"
#include "platform/qt/Window.h"

#include <windows.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QImageReader>
#include <QMimeData>

#include <algorithm>
#include <optional>

namespace tavrix::platform
{
namespace
{

constexpr DWORD ClipboardNotOpen = 1418;
constexpr DWORD InvalidWindowHandle = 1400;
// For the first answer only; later ones come when they come.
constexpr int FirstPatience = 100;

struct ClipboardState {
    bool watched = false;
    bool offersPicture = false; // where the owner need not be asked
    ClipboardOffer* foreign = nullptr;
    std::optional<HWND> opener; // null is an opener too
};

ClipboardState& State()
{
    static ClipboardState state;
    return state;
}

/// The types of pictures that can be decoded, by the names under which programs offer them.
const QStringList& PictureTypes()
{
    static const QStringList types = [] {
        QStringList names;
        for (const QByteArray& name : QImageReader::supportedMimeTypes())
            names.append(QString::fromLatin1(name));
        // The toolkit's own, and other names of what it reads.
        for (const char* name : {"application/x-qt-image", "image/bmp", "image/x-bmp",
                                 "image/x-MS-bmp", "image/x-win-bitmap"})
            if (!names.contains(QLatin1String(name)))
                names.append(QLatin1String(name));
        return names;
    }();
    return types;
}

bool OwnerMustBeAsked()
{
    return State().foreign != nullptr && !QGuiApplication::clipboard()->ownsClipboard();
}

void TakeOffer()
{
    if (OwnerMustBeAsked()) {
        State().foreign->Ask();
        return;
    }
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    const QStringList offered = data != nullptr ? data->formats() : QStringList();
    State().offersPicture = std::any_of(offered.begin(), offered.end(), [](const QString& type) {
        return PictureTypes().contains(type);
    });
}

void Watch()
{
    if (State().watched)
        return;
    EnsureToolkit();
    State().watched = true;
    if (QGuiApplication::platformName() == QLatin1String("xcb"))
        State().foreign = new ClipboardOffer(PictureTypes());
    QObject::connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, TakeOffer);
    TakeOffer();
    if (OwnerMustBeAsked())
        State().foreign->Await(FirstPatience);
}

/// Who has it open. A window that is gone has left it.
std::optional<HWND> Opener()
{
    std::optional<HWND>& opener = State().opener;
    if (opener && *opener != nullptr && !IsWindow(*opener))
        opener.reset();
    return opener;
}

} // namespace
} // namespace tavrix::platform

using namespace tavrix::platform;

BOOL WINAPI IsClipboardFormatAvailable(UINT format)
{
    if (format != CF_DIB && format != CF_BITMAP)
        return FALSE;
    Watch();
    return (OwnerMustBeAsked() ? State().foreign->IsThere() : State().offersPicture) ? TRUE : FALSE;
}

BOOL WINAPI OpenClipboard(HWND owner)
{
    if (owner != nullptr && !IsWindow(owner))
        return FailWith(InvalidWindowHandle);
    if (const std::optional<HWND> opener = Opener(); opener && *opener != owner)
        return FailWith(ERROR_ACCESS_DENIED);
    State().opener = owner;
    return TRUE;
}

BOOL WINAPI CloseClipboard()
{
    if (!Opener())
        return FailWith(ClipboardNotOpen);
    State().opener.reset();
    return TRUE;
}

BOOL WINAPI EmptyClipboard()
{
    if (!Opener())
        return FailWith(ClipboardNotOpen);
    EnsureToolkit();
    QGuiApplication::clipboard()->clear();
    return TRUE;
}
