#include "platform/qt/ComboWidget.h"

#include "platform/qt/ControlInput.h"
#include "platform/qt/DialogFont.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionComboBox>
#include <QWheelEvent>

namespace tavrix::platform
{
namespace
{

constexpr int HeightPadding = 4; // above and below the text, frame and all
constexpr int TextPadding = 3;

QStyleOptionComboBox OptionOf(const QWidget& widget, bool editable, bool dropped)
{
    QStyleOptionComboBox option;
    option.initFrom(&widget);
    option.editable = editable;
    option.subControls = QStyle::SC_All;
    option.state.setFlag(QStyle::State_On, dropped);
    option.state.setFlag(QStyle::State_Sunken, dropped);
    // The style marks the focus only if a key brought it.
    option.state.setFlag(QStyle::State_KeyboardFocusChange, widget.hasFocus());
    return option;
}

} // namespace

ComboWidget::ComboWidget(HWND window, bool hasEdit, QWidget* parent)
    : QWidget(parent), handle(window), editable(hasEdit)
{
    setFont(DialogFont());
    setFocusPolicy(Qt::StrongFocus);
    setContextMenuPolicy(Qt::PreventContextMenu);
    FitHeight();
}

void ComboWidget::FitHeight()
{
    setFixedHeight(fontMetrics().height() + 2 * HeightPadding);
}

void ComboWidget::SetText(const QString& shown)
{
    text = shown;
    update();
}

void ComboWidget::SetDropped(bool on)
{
    dropped = on;
    update();
}

QRect ComboWidget::FieldPlace() const
{
    const QStyleOptionComboBox option = OptionOf(*this, editable, dropped);
    return style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField,
                                   this);
}

void ComboWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QStyleOptionComboBox option = OptionOf(*this, editable, dropped);
    style()->drawComplexControl(QStyle::CC_ComboBox, &option, &painter, this);
    if (editable)
        return;
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    painter.setPen(palette().color(group, QPalette::ButtonText));
    const QRect inside = FieldPlace().adjusted(TextPadding, 0, -TextPadding, 0);
    painter.drawText(inside, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(text, Qt::ElideRight, inside.width()));
}

void ComboWidget::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        FitHeight();
    update();
}

void ComboWidget::focusInEvent(QFocusEvent*)
{
    update();
}

void ComboWidget::focusOutEvent(QFocusEvent*)
{
    update();
}

void ComboWidget::mousePressEvent(QMouseEvent* event)
{
    SendPointer(handle, *event);
}

void ComboWidget::mouseReleaseEvent(QMouseEvent* event)
{
    SendPointer(handle, *event);
}

void ComboWidget::mouseMoveEvent(QMouseEvent* event)
{
    SendPointer(handle, *event);
}

void ComboWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    // To this class the second press of a double click is a press like any other.
    QMouseEvent press(QEvent::MouseButtonPress, event->position(), event->globalPosition(),
                      event->button(), event->buttons(), event->modifiers());
    SendPointer(handle, press);
    event->accept();
}

void ComboWidget::wheelEvent(QWheelEvent* event)
{
    event->accept();
    turned += event->angleDelta().y();
    const int notches = turned / QWheelEvent::DefaultDeltasPerStep;
    turned %= QWheelEvent::DefaultDeltasPerStep;
    if (notches != 0)
        ComboWheel(handle, notches);
}

void ComboWidget::keyPressEvent(QKeyEvent* event)
{
    // What the edit field leaves has been offered to the combo box there.
    if (editable)
        event->ignore();
    else
        SendKey(handle, *event);
}

void ComboWidget::keyReleaseEvent(QKeyEvent* event)
{
    keyPressEvent(event);
}

} // namespace tavrix::platform
