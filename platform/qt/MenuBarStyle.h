// How the bar's own entries look: plain texts as high as the command bar, so that the whole strip
// answers the pointer. The popups keep the toolkit's look. User-interface thread.
#pragma once

#include <QProxyStyle>

namespace tavrix::platform
{

class MenuBarStyle : public QProxyStyle
{
public:
    explicit MenuBarStyle(int height) : itemHeight(height) {}

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;

private:
    int itemHeight;
};

} // namespace tavrix::platform
