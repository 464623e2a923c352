#include "standard-plugins/tests/simple-formats/SimpleMaking.h"

namespace plugintest
{

std::string Le16(uint32_t number)
{
    return {static_cast<char>(number), static_cast<char>(number >> 8)};
}

std::string Le32(uint32_t number)
{
    return Le16(number) + Le16(number >> 16);
}

std::string Bytes(std::initializer_list<int> bytes)
{
    std::string text;
    for (const int byte : bytes)
        text += static_cast<char>(byte);
    return text;
}

std::string MakeDib(const BmpForm& form)
{
    std::string header = Le32(form.headerSize);
    if (form.headerSize == 12) {
        header += Le16(form.width) + Le16(static_cast<uint32_t>(form.height));
        header += Le16(form.planes) + Le16(form.bits);
        return header + form.palette + form.gap + form.pixels;
    }
    header += Le32(form.width) + Le32(static_cast<uint32_t>(form.height));
    header += Le16(form.planes) + Le16(form.bits) + Le32(form.compression);
    header += Le32(static_cast<uint32_t>(form.pixels.size())) + Le32(2835) + Le32(2835);
    header += Le32(form.entries) + Le32(0);
    std::string masks;
    for (const uint32_t mask : form.masks)
        masks += Le32(mask);
    if (form.headerSize >= 52) {
        header += masks;
        masks.clear();
    }
    header.resize(form.headerSize, '\0');
    return header + masks + form.palette + form.gap + form.pixels;
}

std::string MakeBmp(const BmpForm& form)
{
    const std::string dib = MakeDib(form);
    const size_t offset = 14 + dib.size() - form.pixels.size();
    return "BM" + Le32(static_cast<uint32_t>(14 + dib.size())) + Le32(0) +
           Le32(static_cast<uint32_t>(form.offset < 0 ? static_cast<int64_t>(offset)
                                                      : form.offset)) +
           dib;
}

std::string FilledRows(uint32_t rows, uint32_t rowBytes, uint32_t filledTo, uint32_t seed)
{
    std::string all;
    uint32_t state = seed * 2654435761u + 1;
    for (uint32_t y = 0; y < rows; ++y) {
        for (uint32_t i = 0; i < rowBytes; ++i) {
            state = state * 1664525u + 1013904223u;
            all += static_cast<char>(state >> 24);
        }
        all.append(filledTo - rowBytes, '\x5a');
    }
    return all;
}

std::string MakeTga(const TgaForm& form)
{
    return Bytes({static_cast<int>(form.id.size()), static_cast<int>(form.mapType),
                  static_cast<int>(form.type)}) +
           Le16(form.mapFirst) + Le16(form.mapEntries) + Bytes({static_cast<int>(form.mapBits)}) +
           Le16(0) + Le16(0) + Le16(form.width) + Le16(form.height) +
           Bytes({static_cast<int>(form.bits), static_cast<int>(form.descriptor)}) + form.id +
           form.map + form.pixels;
}

std::string MakePcx(const PcxForm& form)
{
    std::string header = Bytes({10, static_cast<int>(form.version), static_cast<int>(form.encoding),
                                static_cast<int>(form.bits)}) +
                         Le16(0) + Le16(0) + Le16(form.width - 1) + Le16(form.height - 1) +
                         Le16(300) + Le16(300);
    std::string palette = form.palette;
    palette.resize(48, '\0');
    header += palette + Bytes({0, static_cast<int>(form.planes)}) + Le16(form.planeBytes) +
              Le16(form.paletteInfo);
    header.resize(128, '\0');
    return header + form.data;
}

std::string PcxRuns(const std::string& bytes)
{
    std::string codes;
    for (size_t at = 0; at < bytes.size();) {
        size_t run = 1;
        while (run < 63 && at + run < bytes.size() && bytes[at + run] == bytes[at])
            ++run;
        const auto byte = static_cast<uint8_t>(bytes[at]);
        if (run > 1 || byte >= 0xc0)
            codes += static_cast<char>(0xc0 + run);
        codes += static_cast<char>(byte);
        at += run;
    }
    return codes;
}

std::string PcxPalette(uint32_t seed)
{
    return "\x0c" + FilledRows(256, 3, 3, seed);
}

std::string MakeIco(const std::vector<IcoEntry>& entries, uint32_t kind)
{
    std::string directory = Le16(0) + Le16(kind) + Le16(static_cast<uint32_t>(entries.size()));
    std::string data;
    const size_t first = 6 + 16 * entries.size();
    for (const IcoEntry& entry : entries) {
        const auto value = [](int64_t given, size_t real) {
            return Le32(static_cast<uint32_t>(given < 0 ? static_cast<int64_t>(real) : given));
        };
        directory += Bytes({static_cast<int>(entry.width), static_cast<int>(entry.height), 0, 0}) +
                     Le16(1) + Le16(entry.bits) + value(entry.bytes, entry.data.size()) +
                     value(entry.offset, first + data.size());
        data += entry.data;
    }
    return directory + data;
}

} // namespace plugintest
