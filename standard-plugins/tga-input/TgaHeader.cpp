#include "standard-plugins/tga-input/TgaHeader.h"

#include "standard-plugins/common/PluginResult.h"

namespace
{

constexpr uint32_t headerBytes = 18;

bool FindKind(TgaHeader* header, uint32_t type)
{
    header->runLength = (type & 8) != 0;
    switch (type & ~8u) {
    case 1:
        header->kind = TgaKind::Mapped;
        return true;
    case 2:
        header->kind = TgaKind::Color;
        return true;
    case 3:
        header->kind = TgaKind::Grey;
        return true;
    default:
        return false;
    }
}

bool IsColorDepth(uint32_t bits)
{
    return bits == 15 || bits == 16 || bits == 24 || bits == 32;
}

bool IsMapRight(const TgaHeader& header, uint32_t mapType)
{
    if (mapType == 0)
        return header.kind != TgaKind::Mapped && header.mapEntries == 0;
    return mapType == 1 && header.mapEntries > 0 && IsColorDepth(header.mapBits);
}

// Which bits of which values are alpha, by the count of attribute bits that the file tells.
bool AreAttributesRight(TgaHeader* header, uint32_t attributes)
{
    const bool mapped = header->kind == TgaKind::Mapped;
    const uint32_t bits = mapped ? header->mapBits : header->bits;
    const bool grey = header->kind == TgaKind::Grey;
    const uint32_t alphaBits = grey ? (bits == 16 ? 8 : 0) : bits == 16 ? 1 : bits == 32 ? 8 : 0;
    header->hasAlpha = alphaBits != 0 && attributes != 0;
    if (grey && bits == 16)
        return attributes == 8;
    return mapped || alphaBits == 0 || attributes == 0 || attributes == alphaBits;
}

bool AreBitsRight(const TgaHeader& header)
{
    switch (header.kind) {
    case TgaKind::Mapped:
        return header.bits == 8 || header.bits == 15 || header.bits == 16;
    case TgaKind::Color:
        return IsColorDepth(header.bits);
    case TgaKind::Grey:
        return header.bits == 8 || header.bits == 16;
    }
    return false;
}

bool Parse(const uint8_t* bytes, TgaHeader* header)
{
    header->idBytes = bytes[0];
    header->mapFirst = Little16(bytes + 3);
    header->mapEntries = Little16(bytes + 5);
    header->mapBits = bytes[7];
    header->width = Little16(bytes + 12);
    header->height = Little16(bytes + 14);
    header->bits = bytes[16];
    const uint32_t descriptor = bytes[17];
    header->fromTheRight = (descriptor & 0x10) != 0;
    header->fromTheTop = (descriptor & 0x20) != 0;
    return FindKind(header, bytes[2]) && IsMapRight(*header, bytes[1]) && AreBitsRight(*header) &&
           (descriptor & 0xc0) == 0 && AreAttributesRight(header, descriptor & 15) &&
           IsPictureSize(header->width, header->height);
}

} // namespace

bool ReadTgaHeader(RowReading* rows, TgaHeader* header)
{
    uint8_t bytes[headerBytes];
    *header = {};
    if (!ReadBytes(rows, bytes, sizeof bytes))
        return false;
    return Parse(bytes, header) || FailReading(rows, PluginFailed);
}
