// Pictures of other programs: under which names they are offered, how much is taken of them and
// what becomes of one. User-interface thread.
#pragma once

#include <QImage>
#include <QStringList>

#include <windows.h>

namespace tavrix::platform
{

/// The types of pictures that can be decoded, by the names under which programs offer them, the
/// best first.
const QStringList& PictureTypes();

/// The most bytes that are fetched or made of them: less than any machine of today lacks, and no
/// more than the device has free.
size_t LargestPicture();

/// A header of 40 bytes for 24 bits, bottom-up.
BITMAPINFOHEADER PictureHeader(int width, int height);

/// The picture behind such a header, on white where it is transparent, in a block that GlobalAlloc
/// made. Null when it is null or there is no memory, with the last error set. Throws
/// std::bad_alloc.
HGLOBAL MakeDib(QImage image);

} // namespace tavrix::platform
