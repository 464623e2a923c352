// Draws pictures made of paths into pixels, and writes them as paths again.

#include "tools/VectorPicture.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace
{

/// Rows that a row of pixels is looked at in; along a row coverage is exact.
constexpr unsigned RowsOfAPixel = 32;

/// To the edge of a pixel, of two that are equally near the one nearer to the picture's middle, so
/// that both sides of a frame get the same width.
double ToPixelEdge(double place, double middle)
{
    const double away = std::ceil(std::abs(place - middle) - 0.5);
    return place < middle ? middle - away : middle + away;
}

/// Whether a level (or, the other way round, an upright) edge of some length leads to a neighbour.
bool IsEdge(double along, double neighbourAlong, double across, double neighbourAcross)
{
    return along != neighbourAlong && across == neighbourAcross;
}

/// The outline in pixels, its level and upright edges moved to where pixels meet.
std::vector<Point> InPixels(const std::vector<Point>& outline, double pixelsAUnit, double middle)
{
    std::vector<Point> fitted;
    for (size_t i = 0; i < outline.size(); ++i) {
        const Point& at = outline[i];
        Point pixel{at.x * pixelsAUnit, at.y * pixelsAUnit};
        for (const Point& next : {outline[(i + outline.size() - 1) % outline.size()],
                                  outline[(i + 1) % outline.size()]}) {
            if (IsEdge(at.y, next.y, at.x, next.x))
                pixel.x = ToPixelEdge(at.x * pixelsAUnit, middle);
            if (IsEdge(at.x, next.x, at.y, next.y))
                pixel.y = ToPixelEdge(at.y * pixelsAUnit, middle);
        }
        fitted.push_back(pixel);
    }
    return fitted;
}

struct Crossing {
    double x = 0;
    int direction = 0;
};

std::vector<Crossing> CrossingsAt(const Path& path, double y)
{
    std::vector<Crossing> crossings;
    for (const std::vector<Point>& outline : path.outlines) {
        for (size_t i = 0; i < outline.size(); ++i) {
            const Point& a = outline[i];
            const Point& b = outline[(i + 1) % outline.size()];
            if ((a.y <= y) != (b.y <= y))
                crossings.push_back(
                    {a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y), a.y < b.y ? 1 : -1});
        }
    }
    std::sort(crossings.begin(), crossings.end(),
              [](const Crossing& a, const Crossing& b) { return a.x < b.x; });
    return crossings;
}

/// Adds to each pixel the part of it that lies between two places of its row.
void AddSpan(double from, double to, std::vector<double>* row)
{
    const double size = static_cast<double>(row->size());
    from = std::clamp(from, 0.0, size);
    to = std::clamp(to, 0.0, size);
    for (double x = std::floor(from); x < to; ++x)
        (*row)[static_cast<size_t>(x)] += std::min(to, x + 1) - std::max(from, x);
}

/// How much of each pixel of a row a path in pixels covers, from 0 to 1.
std::vector<double> Coverage(const Path& path, unsigned y, unsigned size)
{
    std::vector<double> row(size);
    for (unsigned part = 0; part < RowsOfAPixel; ++part) {
        const double line = y + (part + 0.5) / RowsOfAPixel;
        int winding = 0;
        double from = 0;
        for (const Crossing& crossing : CrossingsAt(path, line)) {
            if (winding == 0)
                from = crossing.x;
            winding += crossing.direction;
            if (winding == 0)
                AddSpan(from, crossing.x, &row);
        }
    }
    for (double& cover : row)
        cover /= RowsOfAPixel;
    return row;
}

struct Layered {
    double red = 0, green = 0, blue = 0, alpha = 0; // colours weighed by alpha, all from 0 to 1
};

void LayOver(const Color& color, double cover, Layered* pixel)
{
    pixel->red += (color.red / 255.0 - pixel->red) * cover;
    pixel->green += (color.green / 255.0 - pixel->green) * cover;
    pixel->blue += (color.blue / 255.0 - pixel->blue) * cover;
    pixel->alpha += (1 - pixel->alpha) * cover;
}

Color Plain(const Layered& pixel)
{
    if (pixel.alpha * 255 < 0.5)
        return {};
    const auto level = [&](double value) {
        return static_cast<uint8_t>(std::lround(std::clamp(value / pixel.alpha, 0.0, 1.0) * 255));
    };
    return {level(pixel.red), level(pixel.green), level(pixel.blue),
            static_cast<uint8_t>(std::lround(std::min(pixel.alpha, 1.0) * 255))};
}

} // namespace

Block DrawVectorPicture(const VectorPicture& picture, unsigned size)
{
    Block block;
    block.width = block.height = size;
    std::vector<Path> paths;
    for (Path path : picture.paths) {
        for (std::vector<Point>& outline : path.outlines)
            outline = InPixels(outline, size / picture.side, size / 2.0);
        if (!path.symbolic)
            paths.push_back(std::move(path));
    }
    for (unsigned y = 0; y < size; ++y) {
        std::vector<Layered> row(size);
        for (const Path& path : paths) {
            const std::vector<double> cover = Coverage(path, y, size);
            for (unsigned x = 0; x < size; ++x)
                LayOver(path.color, cover[x], &row[x]);
        }
        for (const Layered& pixel : row)
            block.pixels.push_back(Plain(pixel));
    }
    return block;
}

std::string WriteVectorPicture(const VectorPicture& picture, bool symbolic, unsigned size)
{
    char line[160];
    std::snprintf(line, sizeof line,
                  "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%u\" height=\"%u\""
                  " viewBox=\"0 0 %g %g\">\n",
                  size, size, picture.side, picture.side);
    std::string svg = line;
    for (const Path& path : picture.paths) {
        if (path.symbolic != symbolic)
            continue;
        std::snprintf(line, sizeof line, "  <path fill=\"#%02x%02x%02x\" d=\"", path.color.red,
                      path.color.green, path.color.blue);
        svg += line + path.data + "\"/>\n";
    }
    return svg + "</svg>\n";
}
