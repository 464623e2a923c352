#include "platform/qt/DialogWidget.h"

#include "platform/qt/DialogFont.h"
#include "platform/qt/Window.h"

#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

constexpr int BorderWidth = 2;
constexpr int CaptionPadding = 3;
constexpr int KeptVisible = 24; // of a dragged caption, so that it can be dragged back

const QColor CaptionColor(0x2F, 0x4F, 0x8F);

bool HasCaption(DWORD style)
{
    return (style & WS_CAPTION) == WS_CAPTION;
}
// A popup without any of these is its client area alone.
bool HasBorder(DWORD style)
{
    constexpr DWORD framed = WS_CAPTION | DS_MODALFRAME; // WS_CAPTION is border and dialog frame
    return (style & WS_CHILD) == 0 && ((style & WS_POPUP) == 0 || (style & framed) != 0);
}

int CaptionHeight()
{
    return QFontMetrics(DialogFont()).height() + 2 * CaptionPadding;
}

} // namespace

QMargins DialogFrame(DWORD style)
{
    const int border = HasBorder(style) ? BorderWidth : 0;
    const int top = HasCaption(style) ? CaptionHeight() : 0;
    return {border, border + top, border, border};
}

CaptionStrip::CaptionStrip(HWND window, bool closeButton, QWidget* parent)
    : QWidget(parent), dialog(window), hasCloseButton(closeButton)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFont(DialogFont());
}

void CaptionStrip::SetTitle(const QString& text)
{
    title = text;
    update();
}

QRect CaptionStrip::CloseButton() const
{
    if (!hasCloseButton)
        return {};
    const int side = height() - 4;
    return {width() - side - 2, 2, side, side};
}

void CaptionStrip::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), CaptionColor);
    QRect text = rect().adjusted(2 * CaptionPadding, 0, -2 * CaptionPadding, 0);
    const QRect button = CloseButton();
    if (!button.isEmpty()) {
        text.setRight(button.left() - CaptionPadding);
        painter.fillRect(button, palette().window());
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(Qt::black, 1.6));
        const QRectF cross = QRectF(button).adjusted(4, 4, -4, -4);
        painter.drawLine(cross.topLeft(), cross.bottomRight());
        painter.drawLine(cross.topRight(), cross.bottomLeft());
    }
    painter.setPen(Qt::white);
    painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(title, Qt::ElideRight, text.width()));
}

void CaptionStrip::mousePressEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() != Qt::LeftButton)
        return;
    closing = CloseButton().contains(event->position().toPoint());
    dragging = !closing;
    grip = parentWidget()->mapFromGlobal(event->globalPosition().toPoint());
}

void CaptionStrip::mouseMoveEvent(QMouseEvent* event)
{
    event->accept();
    if (!dragging)
        return;
    const QWidget* screen = ScreenWidget();
    const QPoint pointer = screen->mapFromGlobal(event->globalPosition().toPoint());
    QPoint place = pointer - grip;
    place.setX(std::clamp(place.x(), KeptVisible - parentWidget()->width(),
                          screen->width() - KeptVisible));
    place.setY(std::clamp(place.y(), 0, std::max(0, screen->height() - KeptVisible)));
    SetWindowPos(dialog, nullptr, place.x(), place.y(), 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void CaptionStrip::mouseReleaseEvent(QMouseEvent* event)
{
    event->accept();
    if (event->button() != Qt::LeftButton)
        return;
    dragging = false;
    if (closing && CloseButton().contains(event->position().toPoint()))
        PostMessageW(dialog, WM_CLOSE, 0, 0);
    closing = false;
}

void CaptionStrip::mouseDoubleClickEvent(QMouseEvent* event)
{
    mousePressEvent(event);
}

DialogWidget::DialogWidget(Window& window, QWidget* parent)
    : QWidget(parent), style(window.style), client(new QWidget(this))
{
    setFont(DialogFont());
    setAttribute(Qt::WA_OpaquePaintEvent);
    client->setAutoFillBackground(true);
    if (HasCaption(style)) {
        caption = new CaptionStrip(window.handle, (style & WS_SYSMENU) != 0, this);
        caption->SetTitle(DisplayText(window.text));
    }
    window.client = client;
}

void DialogWidget::SetTitle(const QString& text)
{
    if (caption != nullptr)
        caption->SetTitle(text);
}

void DialogWidget::LayOut()
{
    const QMargins frame = DialogFrame(style);
    client->setGeometry(rect().marginsRemoved(frame));
    if (caption != nullptr)
        caption->setGeometry(frame.left(), frame.bottom(), width() - frame.left() - frame.right(),
                             frame.top() - frame.bottom());
}

void DialogWidget::resizeEvent(QResizeEvent*)
{
    LayOut();
}

void DialogWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    if (!HasBorder(style))
        return;
    const QColor face = palette().window().color();
    const QColor light = Qt::white;
    const QColor shade = face.darker(160);
    const QColor dark = face.darker(250);
    const int right = width() - 1;
    const int bottom = height() - 1;
    painter.setPen(shade);
    painter.drawRect(0, 0, right, bottom);
    painter.setPen(dark);
    painter.drawLine(right, 0, right, bottom);
    painter.drawLine(0, bottom, right, bottom);
    painter.setPen(light);
    painter.drawLine(1, 1, right - 1, 1);
    painter.drawLine(1, 1, 1, bottom - 1);
    painter.setPen(shade);
    painter.drawLine(right - 1, 1, right - 1, bottom - 1);
    painter.drawLine(1, bottom - 1, right - 1, bottom - 1);
}

} // namespace tavrix::platform
