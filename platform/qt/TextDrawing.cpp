// The text is drawn into a mask of one bit a pixel that covers the rows of the picture where text
// is, and from there given to the picture, whatever its depth and the order of its rows.
#include "platform/core/Gdi.h"
#include "platform/core/MessageQueue.h"
#include "platform/core/TestHooks.h"
#include "platform/qt/FontFamilies.h"
#include "platform/qt/Fonts.h"
#include "platform/qt/TextLines.h"
#include "platform/qt/Toolkit.h"

#include <QFontMetrics>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

namespace tavrix::platform
{
namespace
{

/// The format's word and what follows from it.
struct Layout {
    QFont font;
    TextRuler ruler;
    int height; // of a line
    int ascent;
    RECT room;
    UINT format;

    Layout(const DeviceContext& context, const RECT& rectangle, UINT how)
        : font(OutlineFontOf(static_cast<HFONT>(context.font))), ruler(font),
          height(std::max(1, QFontMetrics(font).height())), ascent(QFontMetrics(font).ascent()),
          room(rectangle), format(how)
    {
    }

    double Width() const { return static_cast<double>(room.right) - room.left; }
    TextLines Lines(std::u16string_view text) const
    {
        using Breaking = TextLines::Breaking;
        const Breaking breaking = (format & DT_SINGLELINE) != 0  ? Breaking::Never
                                  : (format & DT_WORDBREAK) != 0 ? Breaking::AtWords
                                                                 : Breaking::AtEnds;
        return TextLines(text, ruler, breaking, Width());
    }
    double Left(std::u16string_view line) const
    {
        if ((format & (DT_CENTER | DT_RIGHT)) == 0)
            return room.left;
        const double over = Width() - ruler.Width(line);
        return room.left + std::floor((format & DT_CENTER) != 0 ? over / 2 : over);
    }
};

LONG Saturated(double value)
{
    return static_cast<LONG>(
        std::clamp(value, static_cast<double>(INT32_MIN), static_cast<double>(INT32_MAX)));
}

int Measure(const Layout& layout, std::u16string_view text, RECT* rectangle)
{
    double widest = 0;
    double height = 0;
    TextLines lines = layout.Lines(text);
    for (std::u16string_view line; lines.Next(&line); height += layout.height)
        widest = std::max(widest, layout.ruler.Width(line));
    rectangle->right = Saturated(rectangle->left + std::ceil(widest));
    rectangle->bottom = Saturated(rectangle->top + height);
    return Saturated(height);
}

struct PlacedLine {
    std::u16string_view text;
    int top;
};

/// The lines that can be seen within `area`, and how high all up to its lower edge are.
std::vector<PlacedLine> Place(const Layout& layout, std::u16string_view text, const RECT& area,
                              int* height)
{
    std::vector<PlacedLine> placed;
    int64_t top = layout.room.top;
    TextLines lines = layout.Lines(text);
    std::u16string_view line;
    do {
        if (!lines.Next(&line))
            break;
        // A sign may reach over its line by as much again.
        if (top + 2 * int64_t{layout.height} > area.top && top < area.bottom)
            placed.push_back({line, static_cast<int>(top)});
        top += layout.height;
    } while (top < area.bottom);
    *height = static_cast<int>(std::min<int64_t>(top - layout.room.top, INT32_MAX));
    return placed;
}

struct Freeing {
    void operator()(uint8_t* memory) const { std::free(memory); }
};

struct Mask {
    int top = 0;
    int rows = 0;
    ptrdiff_t stride = 0;
    std::unique_ptr<uint8_t, Freeing> bits;

    Mask(int width, int first, int end)
        : top(first), rows(end - first), stride((ptrdiff_t{width} + 31) / 32 * 4)
    {
        const size_t size = static_cast<size_t>(stride) * static_cast<size_t>(rows);
        if (IsAllocationFaulty(size))
            return;
        const HostAllocation own;
        bits.reset(static_cast<uint8_t*>(std::calloc(1, size)));
    }
};

void DrawLines(const Layout& layout, const std::vector<PlacedLine>& lines, const RECT& area,
               const Mask& mask, int width)
{
    QImage image(mask.bits.get(), width, mask.rows, mask.stride, QImage::Format_Mono);
    // The painter takes the nearest colour: white sets bits, and black would leave them.
    image.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    QPainter painter(&image);
    painter.setLayoutDirection(Qt::LeftToRight);
    painter.setFont(layout.font);
    painter.setPen(Qt::white);
    painter.setClipRect(
        QRect(area.left, area.top - mask.top, area.right - area.left, area.bottom - area.top));
    for (const PlacedLine& line : lines) {
        const double left = layout.Left(line.text);
        const double base = line.top + layout.ascent - mask.top;
        layout.ruler.ForEachPart(
            line.text, 0, [&](std::u16string_view part, double begin, double end) {
                if (left + begin - layout.height > area.right)
                    return false;
                if (!part.empty() && left + end + layout.height > area.left)
                    painter.drawText(QPointF(left + begin, base), TextRuler::Shown(part));
                return true;
            });
    }
}

int DrawInto(const DeviceContext& context, const Layout& layout, std::u16string_view text)
{
    Surface surface;
    std::shared_ptr<GdiObject> keep;
    if (!ContextSurface(context, true, &surface, &keep))
        return 0;
    RECT area{0, 0, surface.width, surface.height};
    if ((layout.format & DT_NOCLIP) == 0) {
        area.left = std::max(area.left, layout.room.left);
        area.top = std::max(area.top, layout.room.top);
        area.right = std::min(area.right, layout.room.right);
        area.bottom = std::min(area.bottom, layout.room.bottom);
    }
    int height = 0;
    const std::vector<PlacedLine> lines = Place(layout, text, area, &height);
    if (lines.empty() || area.left >= area.right)
        return height;
    const int first =
        static_cast<int>(std::max<int64_t>(area.top, int64_t{lines.front().top} - layout.height));
    const int end = static_cast<int>(
        std::min<int64_t>(area.bottom, int64_t{lines.back().top} + 2 * int64_t{layout.height}));
    if (first >= end)
        return height;
    const Mask mask(surface.width, first, end);
    if (mask.bits == nullptr)
        return 0;
    DrawLines(layout, lines, area, mask, surface.width);
    PaintMask(surface, mask.top, mask.rows, mask.bits.get(), mask.stride, context.textColor);
    ContextDrawn(context, {area.left, first, area.right, end});
    return height;
}

int Draw(const DeviceContext& context, const WCHAR* characters, int count, RECT* rectangle,
         UINT format)
{
    if (!IsUiThread())
        return 0;
    try {
        EnsureToolkit();
        const std::u16string_view text =
            count < 0 ? std::u16string_view(characters)
                      : std::u16string_view(characters, static_cast<size_t>(count));
        const Layout layout(context, *rectangle, format);
        return (format & DT_CALCRECT) != 0 ? Measure(layout, text, rectangle)
                                           : DrawInto(context, layout, text);
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

// Where this part is linked in, text is drawn, with or without a window.
[[maybe_unused]] const bool installed = [] {
    SetTextDrawing({Draw, EnumerateFamilies});
    return true;
}();

} // namespace
} // namespace tavrix::platform
