#include "platform/qt/Fonts.h"

#include "platform/core/Gdi.h"
#include "platform/qt/DialogFont.h"

#include <QFontDatabase>
#include <QFontMetrics>
#include <QStringList>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

constexpr int LargestPixels = 4096;

/// The largest size of which a line is not higher than the cell.
int PixelsOfCell(QFont font, int cell)
{
    int fits = 1;
    int tooLarge = cell + 1;
    while (tooLarge - fits > 1) {
        const int middle = (fits + tooLarge) / 2;
        font.setPixelSize(middle);
        (QFontMetrics(font).height() <= cell ? fits : tooLarge) = middle;
    }
    return fits;
}

/// A height above 0 is the cell's, one below it the signs' own.
void SetHeight(QFont& font, LONG height)
{
    if (height == 0)
        return;
    const int pixels = std::clamp<int>(height, -LargestPixels, LargestPixels);
    font.setPixelSize(pixels < 0 ? -pixels : PixelsOfCell(font, pixels));
}

} // namespace

QFont FontOf(HFONT handle)
{
    QFont font = DialogFont();
    LOGFONTW record;
    if (!FontRecord(handle, &record))
        return font;
    const QString face = QString::fromUtf16(record.lfFaceName);
    if (!face.isEmpty() && QFontDatabase::hasFamily(face))
        font.setFamilies(QStringList(face) + font.families());
    if (record.lfWeight > 0)
        font.setWeight(static_cast<QFont::Weight>(std::clamp<int>(record.lfWeight, 1, 1000)));
    font.setItalic(record.lfItalic != 0);
    font.setUnderline(record.lfUnderline != 0);
    font.setStrikeOut(record.lfStrikeOut != 0);
    SetHeight(font, record.lfHeight);
    return font;
}

} // namespace tavrix::platform
