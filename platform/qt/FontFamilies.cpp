#include "platform/qt/FontFamilies.h"

#include "platform/core/MessageQueue.h"
#include "platform/qt/DialogFont.h"
#include "platform/qt/Fonts.h"
#include "platform/qt/Toolkit.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetrics>
#include <QList>
#include <QStringList>

#include <algorithm>

namespace tavrix::platform
{
namespace
{

constexpr qsizetype LongestFace = LF_FACESIZE - 1;

constexpr BYTE FixedPitch = 1;
constexpr BYTE VariablePitch = 2;
// In metrics the lowest bit says the reverse of its name in the public headers.
constexpr BYTE MetricOfVariablePitch = 1;
constexpr BYTE MetricOfOutlines = 2 | 4;
constexpr WCHAR FirstSign = u' ';
constexpr WCHAR LastSign = 0xFFFC;

bool Same(const QString& one, const QString& other)
{
    return one.compare(other, Qt::CaseInsensitive) == 0;
}

QString WithoutMaker(const QString& family)
{
    const qsizetype bracket = family.lastIndexOf(QLatin1String(" ["));
    return bracket > 0 && family.endsWith(QLatin1Char(']')) ? family.left(bracket) : family;
}

/// As much of a name as a record holds, without half a pair at its end.
QString Cut(const QString& name)
{
    QString cut = name.left(LongestFace);
    if (!cut.isEmpty() && cut.back().isHighSurrogate())
        cut.chop(1);
    return cut;
}

struct Description {
    LOGFONTW record{};
    TEXTMETRICW metric{};
};

Description Describe(const FontFamily& family)
{
    Description description;
    LOGFONTW& record = description.record;
    const QString face = Cut(family.name);
    std::copy_n(face.utf16(), face.size(), record.lfFaceName);
    record.lfWeight = FW_NORMAL;
    record.lfCharSet = family.japanese ? SHIFTJIS_CHARSET : DEFAULT_CHARSET;
    record.lfHeight = -DialogFont().pixelSize();
    const QFont font = OutlineFontOf(record);
    const QFontMetrics metrics(font);
    const bool fixed = QFontInfo(font).fixedPitch();
    record.lfHeight = metrics.height();
    record.lfWidth = metrics.averageCharWidth();
    record.lfPitchAndFamily = fixed ? FixedPitch : VariablePitch;

    TEXTMETRICW& metric = description.metric;
    metric.tmHeight = metrics.height();
    metric.tmAscent = metrics.ascent();
    metric.tmDescent = metrics.height() - metrics.ascent();
    metric.tmInternalLeading = std::max(0, metrics.height() - font.pixelSize());
    metric.tmExternalLeading = std::max(0, metrics.leading());
    metric.tmAveCharWidth = metrics.averageCharWidth();
    metric.tmMaxCharWidth = metrics.maxWidth();
    metric.tmWeight = FW_NORMAL;
    metric.tmDigitizedAspectX = 96;
    metric.tmDigitizedAspectY = 96;
    metric.tmFirstChar = FirstSign;
    metric.tmLastChar = LastSign;
    metric.tmDefaultChar = FirstSign;
    metric.tmBreakChar = FirstSign;
    metric.tmPitchAndFamily = static_cast<BYTE>((fixed ? 0 : MetricOfVariablePitch) |
                                                (family.scalable ? MetricOfOutlines : 0));
    metric.tmCharSet = record.lfCharSet;
    return description;
}

} // namespace

std::vector<FontFamily> FontFamilies()
{
    std::vector<FontFamily> families;
    for (const QString& listed : QFontDatabase::families()) {
        const QString name = WithoutMaker(listed);
        if (name.isEmpty() || QFontDatabase::isPrivateFamily(listed) ||
            !QFontDatabase::hasFamily(listed))
            continue;
        families.push_back(
            {name, QFontDatabase::isSmoothlyScalable(listed),
             QFontDatabase::writingSystems(listed).contains(QFontDatabase::Japanese)});
    }
    std::stable_sort(families.begin(), families.end(),
                     [](const FontFamily& one, const FontFamily& other) {
                         return one.name.compare(other.name, Qt::CaseInsensitive) < 0;
                     });
    // Names that differ behind the 31st character alone could not be told apart in a record.
    const auto end = std::unique(families.begin(), families.end(),
                                 [](const FontFamily& one, const FontFamily& other) {
                                     return Same(Cut(one.name), Cut(other.name));
                                 });
    families.erase(end, families.end());
    return families;
}

QString FamilyOfFace(const QString& face)
{
    if (face.isEmpty() || QFontDatabase::hasFamily(face))
        return face;
    if (face.size() < LongestFace - 1)
        return {};
    for (const FontFamily& family : FontFamilies())
        if (family.name.size() > LongestFace && Same(Cut(family.name), face))
            return family.name;
    return {};
}

int EnumerateFamilies(const WCHAR* family, FONTENUMPROCW take, LPARAM parameter)
{
    if (!IsUiThread())
        return 0;
    EnsureToolkit();
    const QString wanted = family != nullptr ? QString::fromUtf16(family) : QString();
    int answer = 1;
    for (const FontFamily& found : FontFamilies()) {
        if (family != nullptr && !Same(found.name, wanted) && !Same(Cut(found.name), wanted))
            continue;
        const Description description = Describe(found);
        answer = take(&description.record, &description.metric,
                      found.scalable ? TRUETYPE_FONTTYPE : RASTER_FONTTYPE, parameter);
        if (answer == 0)
            break;
    }
    return answer;
}

} // namespace tavrix::platform
