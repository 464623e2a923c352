// Reading a picture from the bytes of a file. They are anybody's and may claim anything.
#pragma once

#include <QByteArray>
#include <QImage>

namespace tavrix::platform
{

/// No picture takes more than this once it is read.
constexpr int LargestMegabytes = 512;

/// Whether a picture of that size would take more.
bool IsTooLarge(const QSize& size);

/// The picture, of any kind that the toolkit knows; null when there is none or when it claims to be
/// too large, which is found out before room is made for it. Throws std::bad_alloc.
QImage ReadPicture(const QByteArray& bytes);

} // namespace tavrix::platform
