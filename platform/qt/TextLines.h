// A text cut into lines by the widths of its signs in one font. Work is done line by line, so that
// a caller who stops at the edge of a picture does not pay for the rest of a long text. Widths are
// in pixels and have fractions. User-interface thread, after the toolkit is up.
#pragma once

#include <QFont>
#include <QFontMetricsF>
#include <QString>

#include <functional>
#include <string_view>
#include <unordered_map>

namespace tavrix::platform
{

/// The widths of signs in a font.
class TextRuler
{
public:
    explicit TextRuler(const QFont& font);

    /// Where a text ends that begins at `x` of its line. It need not be exact once it is beyond
    /// `limit`.
    double End(std::u16string_view text, double x, double limit) const;
    double Width(std::u16string_view text) const;

    /// What a part looks like: the signs below the space, for which the toolkit has boxes, as
    /// spaces. Not beyond the life of the part.
    static QString Shown(std::u16string_view part);

    /// Draws by the piece: gives `take` each part of a line that is drawn in one go, with the
    /// places where it begins and ends, until it answers false. A tab is between two parts.
    using Take = std::function<bool(std::u16string_view part, double begin, double end)>;
    void ForEachPart(std::u16string_view line, double x, const Take& take) const;

private:
    double Advance(std::u16string_view part) const;

    QFontMetricsF metrics;
    double tab;
    mutable std::unordered_map<char16_t, double> known; // of single signs
};

class TextLines
{
public:
    enum class Breaking {
        Never,   // the ends of lines in the text are not looked at
        AtEnds,  // at CR, LF and CR LF
        AtWords, // also where the line has no more room
    };
    /// `width` is the room for a line. All arguments must outlive the object.
    TextLines(std::u16string_view text, const TextRuler& ruler, Breaking breaking, double width);

    /// The next line without the spaces that hang at its end; false behind the last one. A text
    /// without any sign has no line; one that ends with the end of a line has an empty one there.
    bool Next(std::u16string_view* line);

private:
    void FindParagraph();
    std::u16string_view Fitting();

    std::u16string_view paragraph; // what no line has been made of, up to the next end of a line
    std::u16string_view rest;      // from there on
    const TextRuler& ruler;
    Breaking breaking;
    double width;
    bool more; // a line is to come
};

} // namespace tavrix::platform
