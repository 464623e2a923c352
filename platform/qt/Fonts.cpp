#include "platform/qt/Fonts.h"

#include "platform/core/Gdi.h"
#include "platform/qt/DialogFont.h"
#include "platform/qt/FontFamilies.h"

#include <QFontMetrics>
#include <QStringList>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

// The toolkit's measures of a font overflow at twice that.
constexpr int LargestPixels = 8192;

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

QFont Looking(QFont font, const LOGFONTW& record)
{
    const QString face = FamilyOfFace(QString::fromUtf16(record.lfFaceName));
    if (!face.isEmpty())
        font.setFamilies(QStringList(face) + font.families());
    if (record.lfWeight > 0)
        font.setWeight(static_cast<QFont::Weight>(std::clamp<int>(record.lfWeight, 1, 1000)));
    font.setItalic(record.lfItalic != 0);
    font.setUnderline(record.lfUnderline != 0);
    font.setStrikeOut(record.lfStrikeOut != 0);
    SetHeight(font, record.lfHeight);
    return font;
}

QFont PlainOutlines()
{
    QFont font = DialogFont();
    font.setStyleStrategy(
        static_cast<QFont::StyleStrategy>(QFont::NoAntialias | QFont::ForceOutline));
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setKerning(false);
    return font;
}

} // namespace

QFont FontOf(HFONT handle)
{
    LOGFONTW record;
    return FontRecord(handle, &record) ? Looking(DialogFont(), record) : DialogFont();
}

QFont OutlineFontOf(HFONT handle)
{
    LOGFONTW record;
    return FontRecord(handle, &record) ? OutlineFontOf(record) : PlainOutlines();
}

QFont OutlineFontOf(const LOGFONTW& record)
{
    return Looking(PlainOutlines(), record);
}

} // namespace tavrix::platform
