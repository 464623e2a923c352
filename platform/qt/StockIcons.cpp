#include "platform/qt/StockIcons.h"

#include <QPainter>
#include <QPainterPath>

namespace tavrix::platform
{
namespace
{

// All shapes are laid out on a square of 32 units.
constexpr qreal Units = 32.0;

void DrawDisc(QPainter& painter, const QColor& color)
{
    painter.setPen(QPen(color.darker(150), 1.0));
    painter.setBrush(color);
    painter.drawEllipse(QRectF(2, 2, 28, 28));
}

/// A letter as a path, so that it does not depend on the fonts of the host more than it must.
void DrawSign(QPainter& painter, const QString& sign, const QColor& color, qreal centerY)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(22);
    font.setBold(true);
    QPainterPath path;
    path.addText(0, 0, font, sign);
    const QRectF box = path.boundingRect();
    path.translate(16 - box.center().x(), centerY - box.center().y());
    painter.fillPath(path, color);
}

void DrawHand(QPainter& painter)
{
    DrawDisc(painter, QColor(0xD0, 0x20, 0x20));
    painter.setPen(QPen(Qt::white, 4.0, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(11, 11), QPointF(21, 21));
    painter.drawLine(QPointF(21, 11), QPointF(11, 21));
}

void DrawTriangle(QPainter& painter)
{
    const QColor yellow(0xFF, 0xD0, 0x20);
    painter.setPen(QPen(QColor(0x60, 0x48, 0x00), 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(yellow);
    painter.drawPolygon(QPolygonF({{16, 2}, {30, 29}, {2, 29}}));
    painter.setPen(QPen(Qt::black, 3.5, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(16, 12), QPointF(16, 19));
    painter.drawPoint(QPointF(16, 25));
}

void DrawApplication(QPainter& painter)
{
    painter.setPen(QPen(QColor(0x40, 0x40, 0x60), 1.5));
    painter.setBrush(Qt::white);
    painter.drawRect(QRectF(3, 5, 26, 22));
    painter.fillRect(QRectF(3, 5, 26, 6), QColor(0x30, 0x50, 0xA0));
}

} // namespace

QPixmap DrawStockIcon(StockIcon icon, int side)
{
    QPixmap pixmap(side, side);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(side / Units, side / Units);
    switch (icon) {
    case StockIcon::Hand:
        DrawHand(painter);
        break;
    case StockIcon::Question:
        DrawDisc(painter, QColor(0x20, 0x60, 0xC0));
        DrawSign(painter, QStringLiteral("?"), Qt::white, 16);
        break;
    case StockIcon::Exclamation:
        DrawTriangle(painter);
        break;
    case StockIcon::Asterisk:
        DrawDisc(painter, QColor(0x20, 0x60, 0xC0));
        DrawSign(painter, QStringLiteral("i"), Qt::white, 16);
        break;
    case StockIcon::Application:
        DrawApplication(painter);
        break;
    }
    return pixmap;
}

} // namespace tavrix::platform
