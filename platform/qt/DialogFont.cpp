#include "platform/qt/DialogFont.h"

#include "platform/qt/StartAhead.h"
#include "platform/qt/Window.h"

#include <QApplication>
#include <QFontMetrics>
#include <QScreen>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

constexpr int OrdinaryPixels = 12;
constexpr double OrdinaryDensity = 96.0;
// Dialogs are laid out for a screen of this width; a larger font must not push them over the edge.
constexpr double LayoutWidth = 640.0;

QFont MakeFont()
{
    QFont font;
    // The Latin face first; the others give the Japanese signs, proportional ones before fixed.
    font.setFamilies({QStringLiteral("DejaVu Sans"), QStringLiteral("VL PGothic"),
                      QStringLiteral("VL Gothic"), QStringLiteral("IPAPGothic"),
                      QStringLiteral("Noto Sans CJK JP")});
    const QScreen* screen = QGuiApplication::primaryScreen();
    const double density = screen != nullptr ? screen->logicalDotsPerInch() / OrdinaryDensity : 1.0;
    const double room = GetSystemMetrics(SM_CXSCREEN) / LayoutWidth;
    const double factor = std::max(1.0, std::min(density, room));
    font.setPixelSize(static_cast<int>(OrdinaryPixels * factor + 0.5));
    return font;
}

const QFont& TheFont()
{
    static const auto* font = new QFont(MakeFont()); // must not outlive the toolkit as a static
    return *font;
}

int ToPixels(int units, int base, int unitsOfBase)
{
    const int product = units * base;
    return product >= 0 ? (product + unitsOfBase / 2) / unitsOfBase
                        : -((-product + unitsOfBase / 2) / unitsOfBase);
}

} // namespace

void InstallDialogFont()
{
    QApplication::setFont(TheFont());
}

const QFont& DialogFont()
{
    WaitForFonts(); // whoever asks for the font wants its measures next
    return TheFont();
}

QSize DialogBaseUnits()
{
    static const QSize units = [] {
        const QFontMetrics metrics(DialogFont());
        const QString letters =
            QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
        // The mean advance of the letters, rounded to the nearest pixel.
        const int width = (metrics.horizontalAdvance(letters) / 26 + 1) / 2;
        return QSize(width, metrics.height());
    }();
    return units;
}

int HorizontalUnits(int units)
{
    return ToPixels(units, DialogBaseUnits().width(), 4);
}

int VerticalUnits(int units)
{
    return ToPixels(units, DialogBaseUnits().height(), 8);
}

QString DisplayText(const std::u16string& text)
{
    QString display = QString::fromStdU16String(text);
    display.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    display.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return display;
}

QSize TextBlockSize(const QString& text, int widest)
{
    const QFontMetrics metrics(DialogFont());
    return metrics
        .boundingRect(QRect(0, 0, widest, 1 << 20),
                      Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap | Qt::TextExpandTabs, text)
        .size();
}

} // namespace tavrix::platform
