#include "platform/qt/MenuBarStyle.h"

#include <QPainter>
#include <QStyleOptionMenuItem>

namespace tavrix::platform
{

QSize MenuBarStyle::sizeFromContents(ContentsType type, const QStyleOption* option,
                                     const QSize& size, const QWidget* widget) const
{
    QSize wanted = QProxyStyle::sizeFromContents(type, option, size, widget);
    if (type == CT_MenuBarItem)
        wanted.setHeight(itemHeight);
    return wanted;
}

int MenuBarStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                              const QWidget* widget) const
{
    if (metric == PM_MenuBarVMargin || metric == PM_MenuBarPanelWidth)
        return 0;
    return QProxyStyle::pixelMetric(metric, option, widget);
}

void MenuBarStyle::drawControl(ControlElement element, const QStyleOption* option,
                               QPainter* painter, const QWidget* widget) const
{
    if (element == CE_MenuBarEmptyArea) {
        painter->fillRect(option->rect, option->palette.window());
        return;
    }
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element != CE_MenuBarItem || item == nullptr) {
        QProxyStyle::drawControl(element, option, painter, widget);
        return;
    }
    const bool enabled = (item->state & State_Enabled) != 0;
    const bool chosen = enabled && (item->state & State_Selected) != 0;
    painter->fillRect(item->rect, chosen ? item->palette.highlight() : item->palette.window());
    drawItemText(painter, item->rect, Qt::AlignCenter | Qt::TextShowMnemonic | Qt::TextSingleLine,
                 item->palette, enabled, item->text,
                 chosen ? QPalette::HighlightedText : QPalette::ButtonText);
}

} // namespace tavrix::platform
