#include "platform/qt/TextLines.h"

#include "platform/qt/TextBreaks.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tavrix::platform
{
namespace
{

constexpr double Endless = std::numeric_limits<double>::infinity();
constexpr int WidthsOfATab = 8;
// Longer lines are drawn in several goes, so that those beyond the picture cost nothing.
constexpr size_t LongestPart = 256;
// A width that was rounded to the unit of the fonts' own reckoning still holds its text.
constexpr double Tolerance = 1.0 / 64;

size_t PartEnd(std::u16string_view line, size_t at)
{
    size_t end = at;
    while (end < line.size() && end - at < LongestPart && line[end] != u'\t')
        end = SignEnd(line, end);
    return end;
}

} // namespace

TextRuler::TextRuler(const QFont& font)
    : metrics(font), tab(std::max(1.0, metrics.averageCharWidth() * WidthsOfATab))
{
}

QString TextRuler::Shown(std::u16string_view part)
{
    QString text = QString::fromRawData(reinterpret_cast<const QChar*>(part.data()),
                                        static_cast<qsizetype>(part.size()));
    for (size_t i = 0; i < part.size(); ++i)
        if (part[i] < u' ')
            text[static_cast<qsizetype>(i)] = QLatin1Char(' ');
    return text;
}

double TextRuler::Advance(std::u16string_view part) const
{
    // Japanese is measured sign by sign, and few signs make a long text.
    if (part.size() == 1) {
        const auto found = known.find(part[0]);
        if (found != known.end())
            return found->second;
    }
    const double width = metrics.horizontalAdvance(Shown(part));
    if (part.size() == 1)
        known.emplace(part[0], width);
    return width;
}

void TextRuler::ForEachPart(std::u16string_view line, double x, const Take& take) const
{
    size_t at = 0;
    while (at < line.size()) {
        if (line[at] == u'\t') {
            x = (std::floor(x / tab) + 1) * tab;
            ++at;
            continue;
        }
        const size_t end = PartEnd(line, at);
        const std::u16string_view part = line.substr(at, end - at);
        const double behind = x + Advance(part);
        if (!take(part, x, behind))
            return;
        x = behind;
        at = end;
    }
    take({}, x, x);
}

double TextRuler::End(std::u16string_view text, double x, double limit) const
{
    double end = x;
    ForEachPart(text, x, [&](std::u16string_view, double, double behind) {
        end = behind;
        return end <= limit;
    });
    return end;
}

double TextRuler::Width(std::u16string_view text) const
{
    return End(text, 0, Endless);
}

TextLines::TextLines(std::u16string_view text, const TextRuler& measure, Breaking where,
                     double room)
    : rest(text), ruler(measure), breaking(where), width(room), more(!text.empty())
{
    if (breaking != Breaking::Never)
        FindParagraph();
    else
        paragraph = rest;
}

void TextLines::FindParagraph()
{
    const size_t end = rest.find_first_of(u"\r\n");
    paragraph = rest.substr(0, end);
    rest.remove_prefix(paragraph.size());
}

std::u16string_view TextLines::Fitting()
{
    const double limit = width + Tolerance;
    double x = 0;
    size_t at = 0;
    size_t shown = 0;
    while (at < paragraph.size()) {
        const Stretch stretch = NextStretch(paragraph, at);
        const double behind = ruler.End(paragraph.substr(at, stretch.shown - at), x, limit);
        if (at > 0 && stretch.shown > at && behind > limit)
            break;
        x = ruler.End(paragraph.substr(stretch.shown, stretch.end - stretch.shown), behind,
                      Endless);
        shown = stretch.shown;
        at = stretch.end;
    }
    const std::u16string_view line = paragraph.substr(0, shown);
    paragraph.remove_prefix(at);
    return line;
}

bool TextLines::Next(std::u16string_view* line)
{
    if (!more)
        return false;
    if (breaking == Breaking::AtWords) {
        *line = Fitting();
        if (!paragraph.empty())
            return true;
    } else {
        *line = paragraph;
    }
    more = breaking != Breaking::Never && !rest.empty();
    if (more) {
        rest.remove_prefix(rest.starts_with(u"\r\n") ? 2 : 1);
        FindParagraph();
    }
    return true;
}

} // namespace tavrix::platform
