// Files of the simple formats put together byte by byte, for the forms that no program writes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace plugintest
{

std::string Le16(uint32_t number);
std::string Le32(uint32_t number);
/// Bytes by their numbers.
std::string Bytes(std::initializer_list<int> bytes);

struct BmpForm {
    uint32_t width = 1;
    /// As in the file: negative is top-down.
    int64_t height = 1;
    uint32_t bits = 24;
    /// 12, 16 to 64, 108 or 124.
    uint32_t headerSize = 40;
    uint32_t compression = 0;
    uint32_t entries = 0;
    uint32_t planes = 1;
    /// Inside headers of 52 bytes and more, behind shorter ones.
    std::vector<uint32_t> masks = {};
    /// Entries as they lie in the file.
    std::string palette = {};
    std::string gap = {};
    /// In the file's header; the true one when negative.
    int64_t offset = -1;
    std::string pixels = {};
};
std::string MakeBmp(const BmpForm& form);
/// The part behind the file's header.
std::string MakeDib(const BmpForm& form);
/// Rows of `rowBytes` from `byte`(row, column) in the order of the file.
std::string FilledRows(uint32_t rows, uint32_t rowBytes, uint32_t filledTo, uint32_t seed = 1);

struct TgaForm {
    uint32_t type = 2;
    uint32_t width = 1;
    uint32_t height = 1;
    uint32_t bits = 24;
    uint32_t descriptor = 0x20;
    std::string id = {};
    uint32_t mapType = 0;
    uint32_t mapFirst = 0;
    uint32_t mapEntries = 0;
    uint32_t mapBits = 0;
    std::string map = {};
    std::string pixels = {};
};
std::string MakeTga(const TgaForm& form);

struct PcxForm {
    uint32_t width = 1;
    uint32_t height = 1;
    uint32_t version = 5;
    uint32_t encoding = 1;
    uint32_t bits = 8;
    uint32_t planes = 3;
    uint32_t planeBytes = 2;
    uint32_t paletteInfo = 1;
    /// 16 entries of red, green, blue; filled up with zeros.
    std::string palette = {};
    /// What follows the header, as in the file.
    std::string data = {};
};
std::string MakePcx(const PcxForm& form);
/// Run-length codes of at most 63 bytes for all of it, across any ends.
std::string PcxRuns(const std::string& bytes);
/// The mark and 256 colours.
std::string PcxPalette(uint32_t seed = 1);

struct IcoEntry {
    uint32_t width = 0;
    uint32_t height = 0;
    uint32_t bits = 0;
    std::string data = {};
    /// In the directory; the true ones when negative.
    int64_t bytes = -1;
    int64_t offset = -1;
};
/// `kind` 1 is an icon, 2 a cursor. The data follow in the order of the entries.
std::string MakeIco(const std::vector<IcoEntry>& entries, uint32_t kind = 1);

} // namespace plugintest
