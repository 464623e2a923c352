#include "platform/qt/IconResource.h"

#include "platform/qt/ByteReader.h"

#include <utility>

namespace tavrix::platform
{
namespace
{

constexpr WORD TypeIcon = 1;
constexpr size_t FileHeaderSize = 6;
constexpr size_t FileEntrySize = 16;

void PutWord(std::vector<BYTE>& bytes, WORD value)
{
    bytes.push_back(static_cast<BYTE>(value & 0xFF));
    bytes.push_back(static_cast<BYTE>(value >> 8));
}

void PutDoubleWord(std::vector<BYTE>& bytes, size_t value)
{
    PutWord(bytes, static_cast<WORD>(value & 0xFFFF));
    PutWord(bytes, static_cast<WORD>(value >> 16));
}

} // namespace

std::optional<std::vector<IconPicture>> ParseIconGroup(const void* bytes, size_t size)
{
    if (bytes == nullptr)
        return std::nullopt;
    ByteReader reader(bytes, size);
    reader.Word();
    if (reader.Word() != TypeIcon)
        return std::nullopt;
    const WORD count = reader.Word();
    std::vector<IconPicture> pictures;
    for (WORD i = 0; i < count && !reader.Failed(); ++i) {
        IconPicture picture;
        const BYTE width = reader.Byte();
        const BYTE height = reader.Byte();
        picture.width = width == 0 ? 256 : width; // 256 does not fit its byte
        picture.height = height == 0 ? 256 : height;
        picture.colors = reader.Byte();
        reader.Byte();
        picture.planes = reader.Word();
        picture.bitsPerPixel = reader.Word();
        picture.length = reader.DoubleWord();
        picture.id = reader.Word();
        pictures.push_back(picture);
    }
    if (reader.Failed() || pictures.empty())
        return std::nullopt;
    return pictures;
}

std::vector<BYTE> BuildIconFile(const std::vector<IconPicture>& pictures,
                                const std::function<std::vector<BYTE>(WORD id)>& find)
{
    std::vector<std::pair<IconPicture, std::vector<BYTE>>> found;
    for (const IconPicture& picture : pictures) {
        std::vector<BYTE> bytes = find(picture.id);
        if (!bytes.empty())
            found.emplace_back(picture, std::move(bytes));
    }
    std::vector<BYTE> file;
    if (found.empty())
        return file;
    PutWord(file, 0);
    PutWord(file, TypeIcon);
    PutWord(file, static_cast<WORD>(found.size()));
    size_t offset = FileHeaderSize + FileEntrySize * found.size();
    for (const auto& [picture, bytes] : found) {
        file.push_back(static_cast<BYTE>(picture.width & 0xFF));
        file.push_back(static_cast<BYTE>(picture.height & 0xFF));
        file.push_back(picture.colors);
        file.push_back(0);
        PutWord(file, picture.planes);
        PutWord(file, picture.bitsPerPixel);
        PutDoubleWord(file, bytes.size());
        PutDoubleWord(file, offset);
        offset += bytes.size();
    }
    for (const auto& [picture, bytes] : found)
        file.insert(file.end(), bytes.begin(), bytes.end());
    return file;
}

} // namespace tavrix::platform
