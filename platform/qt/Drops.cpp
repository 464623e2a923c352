#include "platform/qt/Drops.h"

#include "platform/core/HostPaths.h"
#include "platform/core/MessageQueue.h"
#include "platform/qt/Window.h"

#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QSysInfo>
#include <QUrl>
#include <QWidget>

#include <string>
#include <vector>

namespace tavrix::platform
{
namespace
{

using Paths = std::vector<std::u16string>;

// Some programs name the machine in the addresses of its files.
bool IsHere(const QString& host)
{
    return host.isEmpty() || host.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 ||
           host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
}

/// The device path of a file; empty for what cannot be opened by one.
std::u16string DevicePathOfUrl(const QUrl& url)
{
    if (!url.isLocalFile() || !IsHere(url.host()))
        return {};
    const QString path = url.path(QUrl::FullyDecoded);
    std::u16string device;
    if (!QFileInfo(path).isFile() ||
        DevicePathOf(path.toStdString(), &device) != HostPathResult::Done)
        return {};
    return device;
}

/// The device paths of all files of a drop; none if one of them has none, so that nothing is left
/// out unseen.
Paths PathsOf(const QMimeData* data)
{
    Paths paths;
    if (data == nullptr)
        return paths;
    for (const QUrl& url : data->urls()) {
        paths.push_back(DevicePathOfUrl(url));
        if (paths.back().empty())
            return {};
    }
    return paths;
}

bool MainWindowTakesInput()
{
    const Window* window = MainWindow();
    return window != nullptr && TakesInput(*window);
}

void SendPath(const std::u16string& path)
{
    const Window* window = MainWindow();
    if (window == nullptr)
        return;
    std::u16string text = path;
    COPYDATASTRUCT record = {};
    record.dwData = 1;
    record.cbData = static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR));
    record.lpData = text.data();
    CallWindow(window->handle, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&record));
}

class DropFilter : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject*, QEvent* event) override
    {
        switch (event->type()) {
        case QEvent::DragEnter: {
            const auto& drag = static_cast<const QDropEvent&>(*event);
            // Asked once: looking at files may be slow, and a drag moves all the time.
            isWelcome = !PathsOf(drag.mimeData()).empty();
            Answer(static_cast<QDropEvent&>(*event));
            return true;
        }
        case QEvent::DragMove:
            Answer(static_cast<QDropEvent&>(*event));
            return true;
        case QEvent::Drop: {
            auto& drop = static_cast<QDropEvent&>(*event);
            Paths paths = PathsOf(drop.mimeData());
            isWelcome = !paths.empty();
            if (!Answer(drop))
                return true;
            CallSoon([files = std::move(paths)]() -> LRESULT {
                for (const std::u16string& path : files)
                    SendPath(path);
                return 0;
            });
            return true;
        }
        default:
            return false;
        }
    }

private:
    // Never a move: the other side would delete the file.
    bool Answer(QDropEvent& event) const
    {
        const bool copies = (event.possibleActions() & Qt::CopyAction) != 0;
        const bool links = (event.possibleActions() & Qt::LinkAction) != 0;
        const bool takes = isWelcome && (copies || links) && MainWindowTakesInput();
        event.setDropAction(!takes ? Qt::IgnoreAction : copies ? Qt::CopyAction : Qt::LinkAction);
        event.setAccepted(takes);
        return takes;
    }

    bool isWelcome = false;
};

} // namespace

void TakeDrops(QWidget* widget)
{
    widget->setAcceptDrops(true);
    widget->installEventFilter(new DropFilter(widget));
}

} // namespace tavrix::platform
