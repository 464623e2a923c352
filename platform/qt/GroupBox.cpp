#include "platform/qt/GroupBox.h"

#include <QPainter>

namespace tavrix::platform
{
namespace
{

constexpr int TitleIndent = 8;
constexpr int TitleGap = 2;

} // namespace

GroupBox::GroupBox(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    lower();
}

void GroupBox::SetTitle(const QString& text)
{
    title = text;
    update();
}

/// The frame's upper edge runs through the middle of the title, where templates expect it.
void GroupBox::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QFontMetrics metrics = painter.fontMetrics();
    const int top = metrics.height() / 2;
    const QRect frame(0, top, width() - 2, height() - top - 2);
    QRect text = metrics.boundingRect(rect(), Qt::TextShowMnemonic | Qt::TextSingleLine, title);
    text.moveTo(TitleIndent, 0);
    if (!title.isEmpty())
        painter.setClipRegion(QRegion(rect()) - text.adjusted(-TitleGap, 0, TitleGap, 0));
    painter.setPen(palette().color(QPalette::Light));
    painter.drawRect(frame.translated(1, 1));
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(frame);
    painter.setClipping(false);
    painter.setPen(
        palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    painter.drawText(text, Qt::TextShowMnemonic | Qt::TextSingleLine, title);
}

} // namespace tavrix::platform
