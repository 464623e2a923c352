#include "platform/qt/ClipboardData.h"

#include <new>

namespace tavrix::platform
{
namespace
{

// No more than these: some programs take the first that they know, and not every one is kept.
const QString& Png()
{
    static const QString name = QStringLiteral("image/png");
    return name;
}

const QString& Bmp()
{
    static const QString name = QStringLiteral("image/bmp");
    return name;
}

} // namespace

QStringList ClipboardData::formats() const
{
    const auto picture = item.lock();
    return picture != nullptr && picture->IsPicture() ? QStringList{Png(), Bmp()} : QStringList();
}

QVariant ClipboardData::retrieveData(const QString& type, QMetaType) const
{
    const auto picture = item.lock();
    if (picture == nullptr)
        return {};
    // The toolkit asks from its event loop, where nobody would catch it.
    try {
        if (type == Bmp())
            return picture->BmpFile();
        if (type == Png())
            return picture->PngFile();
    } catch (const std::bad_alloc&) {
    }
    return {};
}

} // namespace tavrix::platform
