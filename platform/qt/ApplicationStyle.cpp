#include "platform/qt/ApplicationStyle.h"

#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QPolygonF>

namespace tavrix::platform
{
namespace
{

/// Two angles that point to what is not shown.
QIcon MoreEntries()
{
    constexpr int Side = 16;
    QPixmap picture(Side, Side);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::black, 1.5));
    for (const double left : {3.5, 8.5})
        painter.drawPolyline(QPolygonF({{left, 4.0}, {left + 4, 8.0}, {left, 12.0}}));
    return {picture};
}

} // namespace

ApplicationStyle::ApplicationStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

QIcon ApplicationStyle::standardIcon(StandardPixmap which, const QStyleOption* option,
                                     const QWidget* widget) const
{
    return which == SP_ToolBarHorizontalExtensionButton
               ? MoreEntries()
               : QProxyStyle::standardIcon(which, option, widget);
}

} // namespace tavrix::platform
