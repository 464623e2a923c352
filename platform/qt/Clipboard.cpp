// The clipboard. What the rest of the desktop offers is kept and asked anew only when it tells of a
// change, and never in a way that waits for the program that owns it: one that hangs would hold up
// every question for seconds. What the program gave stays as it is and becomes a file's bytes only
// when another program asks for them.
#include "platform/core/ErrorCodes.h"
#include "platform/qt/ClipboardData.h"
#include "platform/qt/ClipboardEnd.h"
#include "platform/qt/ClipboardItem.h"
#include "platform/qt/ClipboardOffer.h"
#include "platform/qt/ClipboardPicture.h"
#include "platform/qt/PictureReader.h"
#include "platform/qt/Toolkit.h"
#include "platform/qt/Window.h"

#include <windows.h>

#include <QClipboard>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QMimeData>
#include <QPointer>
#include <QThread>

#include <algorithm>
#include <optional>
#include <vector>

namespace tavrix::platform
{
namespace
{

constexpr DWORD ClipboardNotOpen = 1418;
constexpr DWORD InvalidWindowHandle = 1400;
constexpr DWORD NotFound = 1168;
// For the first answer only; later ones come when they come.
constexpr int FirstPatience = 100;
constexpr int ManagerPatience = 5000;
// For what is pasted, which a person waits for.
constexpr int AnswerPatience = 2000;

using Item = std::shared_ptr<ClipboardItem>;

struct ClipboardState {
    bool watched = false;
    bool offersPicture = false; // where the owner need not be asked
    ClipboardOffer* foreign = nullptr;
    std::optional<HWND> opener; // null is an opener too
    // The program's own content, and by what the toolkit knows it.
    Item dib;
    Item bitmap;
    QPointer<ClipboardData> data;
    // What the program may still be reading: they go when the clipboard is closed.
    Item pasted;
    std::vector<Item> lost;
};

// Never destroyed: the content may go only after the heaps' statics, or not at all.
ClipboardState& State()
{
    static ClipboardState& state = *new ClipboardState;
    return state;
}

Item& OwnItem(UINT format)
{
    return format == CF_DIB ? State().dib : State().bitmap;
}

bool HasOwn()
{
    return State().dib != nullptr || State().bitmap != nullptr;
}

bool IsPictureFormat(UINT format)
{
    return format == CF_DIB || format == CF_BITMAP;
}

bool OwnerMustBeAsked()
{
    return State().foreign != nullptr && !QGuiApplication::clipboard()->ownsClipboard();
}

void LeaveClipboard()
{
    State().opener.reset();
    State().pasted.reset();
    State().lost.clear();
}

/// Who has it open. A window that is gone has left it.
std::optional<HWND> Opener()
{
    const std::optional<HWND> opener = State().opener;
    if (opener && *opener != nullptr && !IsWindow(*opener))
        LeaveClipboard();
    return State().opener;
}

/// Gives up what the program gave once the clipboard holds something else.
void DropWhatIsLost()
{
    ClipboardState& state = State();
    if (!HasOwn() ||
        (state.data != nullptr && QGuiApplication::clipboard()->mimeData() == state.data))
        return;
    for (Item* item : {&state.dib, &state.bitmap}) {
        if (*item != nullptr && Opener())
            state.lost.push_back(*item);
        item->reset();
    }
}

void TakeOffer()
{
    DropWhatIsLost();
    if (OwnerMustBeAsked()) {
        State().foreign->Ask();
        return;
    }
    if (State().foreign != nullptr)
        State().foreign->Forget();
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

/// Offers what the program has given by now to the rest of the desktop. False when the clipboard
/// does not take it.
bool OfferOwn()
{
    ClipboardState& state = State();
    // The block first: its bytes are what the program made.
    const bool dibFirst = state.dib != nullptr && (state.dib->IsPicture() || !state.bitmap);
    auto* data = new ClipboardData(dibFirst ? state.dib : state.bitmap);
    state.data = data;
    QGuiApplication::clipboard()->setMimeData(data);
    return state.data != nullptr && QGuiApplication::clipboard()->mimeData() == data;
}

QImage PictureOf(const QMimeData& data)
{
    const QStringList offered = data.formats();
    for (const QString& type : PictureTypes()) {
        if (!offered.contains(type))
            continue;
        const QByteArray bytes = data.data(type);
        const QImage image = bytes.isEmpty() && data.hasImage()
                                 ? qvariant_cast<QImage>(data.imageData())
                                 : ReadPicture(bytes);
        if (!image.isNull())
            return image;
    }
    return {};
}

/// The owner's picture, waited for within limits. Asked anew what it offers: the last word of a
/// change may still be on its way.
QImage PictureOf(ClipboardOffer& owner)
{
    owner.Ask();
    if (!owner.Await(AnswerPatience))
        return {};
    for (const QString& type : owner.Offered()) {
        QByteArray bytes;
        const ClipboardOffer::Fetched fetched = owner.Fetch(type, LargestPicture(), &bytes);
        if (fetched == ClipboardOffer::Fetched::OutOfTime)
            break;
        if (fetched == ClipboardOffer::Fetched::Refused)
            continue;
        const QImage image = ReadPicture(bytes);
        if (!image.isNull())
            return image;
    }
    return {};
}

/// A picture of another program, or of the toolkit's own; null when there is none that can be read.
QImage ForeignPicture()
{
    if (OwnerMustBeAsked())
        return PictureOf(*State().foreign);
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data != nullptr ? PictureOf(*data) : QImage();
}

HANDLE Give(UINT format, HANDLE handle)
{
    const Item item = ClipboardItem::Take(format, handle);
    if (item == nullptr)
        return nullptr;
    const Item before = std::exchange(OwnItem(format), item);
    State().pasted.reset();
    bool taken = false;
    try {
        taken = OfferOwn();
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    }
    if (taken)
        return handle;
    item->GiveBack();
    OwnItem(format) = before;
    DropWhatIsLost();
    return nullptr;
}

HANDLE Paste()
{
    if (State().pasted == nullptr) {
        const HGLOBAL block = MakeDib(ForeignPicture());
        if (block == nullptr)
            return nullptr;
        State().pasted = ClipboardItem::Keep(SearchBlock(GlobalHeapSlot(), block));
    }
    return State().pasted->Handle();
}

} // namespace

void LeaveClipboardToDesktop()
{
    // The toolkit would do so itself at its end, which never comes. The manager fetches the picture
    // from this process, which therefore has to go on for a while.
    DropWhatIsLost();
    if (!HasOwn() || State().foreign == nullptr || !State().foreign->AskManager())
        return;
    const QDeadlineTimer deadline(ManagerPatience);
    while (!State().foreign->HasManagerAnswered() && !deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        QThread::msleep(1);
    }
}

} // namespace tavrix::platform

using namespace tavrix::platform;

BOOL WINAPI IsClipboardFormatAvailable(UINT format)
{
    if (!IsPictureFormat(format))
        return FALSE;
    Watch();
    DropWhatIsLost();
    if (HasOwn())
        return OwnItem(format) != nullptr ? TRUE : FALSE;
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
    LeaveClipboard();
    return TRUE;
}

BOOL WINAPI EmptyClipboard()
{
    if (!Opener())
        return FailWith(ClipboardNotOpen);
    EnsureToolkit();
    State().dib.reset();
    State().bitmap.reset();
    State().pasted.reset();
    QGuiApplication::clipboard()->clear();
    return TRUE;
}

HANDLE WINAPI SetClipboardData(UINT format, HANDLE data)
{
    if (!Opener()) {
        SetLastError(ClipboardNotOpen);
        return nullptr;
    }
    if (!IsPictureFormat(format)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    Watch();
    DropWhatIsLost();
    return WithoutThrowing<HANDLE>(nullptr, [&] { return Give(format, data); });
}

HANDLE WINAPI GetClipboardData(UINT format)
{
    if (!Opener()) {
        SetLastError(ClipboardNotOpen);
        return nullptr;
    }
    SetLastError(NotFound);
    if (!IsPictureFormat(format))
        return nullptr;
    Watch();
    DropWhatIsLost();
    if (HasOwn())
        return OwnItem(format) != nullptr ? OwnItem(format)->Handle() : nullptr;
    if (format != CF_DIB)
        return nullptr;
    return WithoutThrowing<HANDLE>(nullptr, Paste);
}
