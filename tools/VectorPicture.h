// Pictures drawn in paths, the source of the program's icon in every size: an SVG file of one
// square, filled paths of the commands M, L, H, V, C and Z in plain colours, comments and a title.
// What else that format knows is a fault of the source.
#pragma once

#include "tools/LetterPicture.h"

#include <string>
#include <utility>
#include <vector>

struct Point {
    double x = 0, y = 0;
};

struct Path {
    Color color;
    /// Drawn by desktops that colour icons like their text, and not part of the picture itself.
    bool symbolic = false;
    /// As it stands in the source, in one line.
    std::string data;
    /// Closed outlines, curves as short lines.
    std::vector<std::vector<Point>> outlines;
};

struct VectorPicture {
    /// Of the square that the paths are drawn on; 0 when the source was none.
    double side = 0;
    std::vector<Path> paths;
};

VectorPicture ReadVectorPicture(const std::string& svg);

/// The picture without symbolic paths as a square of `size` pixels, what paths cover in part
/// weighed by how much that is; level and upright edges are moved to where pixels meet. A path
/// covers what its outlines wind around (the rule "nonzero").
Block DrawVectorPicture(const VectorPicture& picture, unsigned size);

/// The paths of one sort as an SVG file of its own.
std::string WriteVectorPicture(const VectorPicture& picture, bool symbolic, unsigned size);
