// What a person would see, as pixels.
#include "platform/testing/WindowTesting.h"

#include "platform/qt/Window.h"

#include <QImage>
#include <QPixmap>
#include <QString>
#include <QWidget>

namespace tavrix::testing
{
namespace
{

Picture PixelsOf(QWidget* widget)
{
    Picture picture;
    if (widget == nullptr)
        return picture;
    const QImage image = widget->grab().toImage().convertToFormat(QImage::Format_RGB32);
    picture.width = image.width();
    picture.height = image.height();
    for (int y = 0; y < image.height(); ++y) {
        const auto* row = reinterpret_cast<const uint32_t*>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            picture.pixels.push_back(row[x] & 0xFFFFFF);
    }
    return picture;
}

} // namespace

Picture ScreenPixels()
{
    return PixelsOf(platform::ScreenWidget());
}

Picture WindowPixels(HWND window)
{
    const platform::Window* record = platform::FindWindowRecord(window);
    return PixelsOf(record != nullptr ? record->widget : nullptr);
}

bool SaveScreen(const std::string& hostPath)
{
    return platform::ScreenWidget()->grab().toImage().save(QString::fromStdString(hostPath), "PNG");
}

} // namespace tavrix::testing
