// Reads pictures drawn in paths.

#include "tools/VectorPicture.h"

#include <cctype>
#include <cstdlib>

namespace
{

constexpr int PiecesOfACurve = 64;

/// The value of an attribute of a tag; empty where it has none.
std::string Attribute(const std::string& tag, const std::string& name)
{
    const size_t at = tag.find(" " + name + "=\"");
    if (at == tag.npos)
        return {};
    const size_t from = at + name.size() + 3;
    const size_t end = tag.find('"', from);
    return end == tag.npos ? std::string() : tag.substr(from, end - from);
}

std::string InOneLine(const std::string& text)
{
    std::string line;
    for (char letter : text) {
        const bool blank = std::isspace(static_cast<unsigned char>(letter)) != 0;
        if (!blank)
            line += letter;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    return line;
}

bool ReadFill(const std::string& text, Color* color)
{
    if (text.size() != 7 || text[0] != '#')
        return false;
    char* end = nullptr;
    const unsigned long value = std::strtoul(text.c_str() + 1, &end, 16);
    *color = {static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 8 & 255U),
              static_cast<uint8_t>(value & 255U), 255};
    return *end == 0;
}

/// Path data, taken apart from its beginning.
class PathReader
{
public:
    explicit PathReader(const std::string& data) : next(data.c_str()) {}

    bool Read(std::vector<std::vector<Point>>* outlines)
    {
        for (char command = Command(); command != 0; command = Command()) {
            if (command == 'M' ? !Begin(outlines) : outlines->empty() || !Draw(command, outlines))
                return false;
        }
        return !outlines->empty() && !failed;
    }

private:
    char Command()
    {
        while (*next == ' ')
            ++next;
        return *next == 0 ? '\0' : *next++;
    }

    double Number()
    {
        char* end = nullptr;
        const double value = std::strtod(next, &end);
        failed = failed || end == next;
        next = end;
        return value;
    }

    bool Begin(std::vector<std::vector<Point>>* outlines)
    {
        at.x = Number();
        at.y = Number();
        outlines->push_back({at});
        return !failed;
    }

    bool Draw(char command, std::vector<std::vector<Point>>* outlines)
    {
        std::vector<Point>& outline = outlines->back();
        switch (command) {
        case 'L':
            at.x = Number();
            at.y = Number();
            break;
        case 'H':
            at.x = Number();
            break;
        case 'V':
            at.y = Number();
            break;
        case 'C':
            Curve(&outline);
            break;
        case 'Z':
            return true; // every outline is closed
        default:
            return false;
        }
        outline.push_back(at);
        return !failed;
    }

    void Curve(std::vector<Point>* outline)
    {
        Point points[4] = {at};
        for (int i = 1; i < 4; ++i) {
            points[i].x = Number();
            points[i].y = Number();
        }
        for (int i = 1; i < PiecesOfACurve; ++i) {
            const double t = static_cast<double>(i) / PiecesOfACurve, s = 1 - t;
            const double weights[] = {s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t};
            Point point;
            for (int k = 0; k < 4; ++k) {
                point.x += weights[k] * points[k].x;
                point.y += weights[k] * points[k].y;
            }
            outline->push_back(point);
        }
        at = points[3];
    }

    const char* next;
    Point at;
    bool failed = false;
};

bool ReadPath(const std::string& tag, std::vector<Path>* paths)
{
    Path path;
    path.data = InOneLine(Attribute(tag, "d"));
    path.symbolic = Attribute(tag, "class") == "symbolic";
    if (!ReadFill(Attribute(tag, "fill"), &path.color) ||
        !PathReader(path.data).Read(&path.outlines))
        return false;
    paths->push_back(std::move(path));
    return true;
}

double ReadSide(const std::string& tag)
{
    const std::string box = Attribute(tag, "viewBox");
    char* end = nullptr;
    const double side = box.rfind("0 0 ", 0) == 0 ? std::strtod(box.c_str() + 4, &end) : 0;
    return end != nullptr && std::strtod(end, &end) == side && *end == 0 ? side : 0;
}

} // namespace

VectorPicture ReadVectorPicture(const std::string& svg)
{
    VectorPicture picture;
    for (size_t at = svg.find('<'); at != svg.npos; at = svg.find('<', at)) {
        const bool comment = svg.compare(at, 4, "<!--") == 0;
        const size_t end = svg.find(comment ? "-->" : ">", at);
        if (end == svg.npos)
            return {};
        const std::string tag = InOneLine(svg.substr(at, end - at));
        at = end;
        if (comment || tag == "<title" || tag == "</title" || tag == "</svg")
            continue;
        if (tag.rfind("<svg ", 0) == 0)
            picture.side = ReadSide(tag);
        else if (tag.rfind("<path ", 0) != 0 || !ReadPath(tag, &picture.paths))
            return {};
    }
    return picture;
}
