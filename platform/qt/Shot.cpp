#include "platform/qt/Shot.h"

#include "platform/qt/Window.h"

#include <QImage>
#include <QPixmap>
#include <QString>
#include <QWidget>

#include <cstdio>
#include <cstdlib>

namespace tavrix::platform
{

void TakeShot()
{
    static bool taken = false;
    const char* path = std::getenv("TAVRIX_SHOT");
    if (taken || path == nullptr || *path == 0)
        return;
    taken = true;
    const QImage picture = ScreenWidget()->grab().toImage().convertToFormat(QImage::Format_RGB888);
    if (!picture.save(QString::fromLocal8Bit(path), "PNG"))
        std::fprintf(stderr, "tavrix: cannot write the picture of the screen to %s\n", path);
    if (const Window* window = MainWindow())
        PostMessageW(window->handle, WM_CLOSE, 0, 0);
}

} // namespace tavrix::platform
