// How far a finger reaches, and which of several rectangles it means when it meets none of them. A
// finger covers what it points at, and the controls of dialogs are smaller than a finger on most
// screens. Pixels; no state. Safe from any thread.
#pragma once

#include <windows.h>

#include <QPoint>
#include <QRect>

#include <optional>
#include <vector>

namespace tavrix::platform
{

/// The reach on a screen of that many physical dots per inch: 7 mm, though 16 pixels at least and
/// 40 at most. A screen that does not know its size (0, infinite) gives the least.
CE_API int FingerReach(double dotsPerInch);

/// The index of the rectangle nearest to `point`, no farther away than `reach`; of equally near
/// ones the first. Empty rectangles are none.
CE_API std::optional<size_t> NearestRectangle(const std::vector<QRect>& rectangles, QPoint point,
                                              int reach);

/// The point of a rectangle nearest to `point`, inside a frame as controls have it. The rectangle
/// is not empty.
CE_API QPoint NearestPoint(const QRect& rectangle, QPoint point);

/// Whether `point` lies in the rectangle or at most `reach` away from it.
CE_API bool IsWithinReach(const QRect& rectangle, QPoint point, int reach);

} // namespace tavrix::platform
