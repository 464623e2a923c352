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

bool ShotIsWanted()
{
    const char* path = std::getenv("TAVRIX_SHOT");
    return path != nullptr && *path != 0;
}

void TakeShot()
{
    static bool taken = false;
    if (taken || !ShotIsWanted())
        return;
    taken = true;
    const char* path = std::getenv("TAVRIX_SHOT");
    const QImage picture = ScreenWidget()->grab().toImage().convertToFormat(QImage::Format_RGB888);
    if (!picture.save(QString::fromLocal8Bit(path), "PNG"))
        std::fprintf(stderr, "tavrix: cannot write the picture of the screen to %s\n", path);
    if (const Window* window = MainWindow())
        PostMessageW(window->handle, WM_CLOSE, 0, 0);
}

} // namespace tavrix::platform
