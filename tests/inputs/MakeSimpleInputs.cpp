// Makes the files of bmp, pnm, tga, pcx and ico: a few sound ones and many that are broken in one
// way each, named by what is wrong with them. Run: make-simple-inputs FOLDER (tests/inputs).

#include "standard-plugins/tests/simple-formats/SimpleMaking.h"
#include "standard-plugins/tests/support/PngMaking.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <utility>

using namespace plugintest;

namespace
{

using Files = std::vector<std::pair<std::string, std::string>>;

std::string Html()
{
    return "<!DOCTYPE html><html><head><title>404 Not Found</title></head><body></body></html>\n";
}

std::string Gzip()
{
    return Bytes({0x1f, 0x8b, 8, 0, 0, 0, 0, 0, 0, 3, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0});
}

std::string Png(uint32_t side)
{
    return MakePng({.width = side, .height = side}, [](uint32_t x, uint32_t y, int channel) {
        return (x * 31 + y * 17 + static_cast<uint32_t>(channel) * 70) & 255;
    });
}

/// What is no file of any format that is asked for here.
Files WrongFiles(const std::string& magic)
{
    return {{"empty", ""},           {"one-byte", magic.substr(0, 1)},
            {"mark-alone", magic},   {"really-an-error-page", Html()},
            {"really-gzip", Gzip()}, {"really-a-png", Png(9)}};
}

void Keep(const std::filesystem::path& folder, const std::string& extension, const Files& files)
{
    std::filesystem::create_directories(folder);
    for (const auto& [name, bytes] : files) {
        std::ofstream out(folder / (name + extension), std::ios::binary);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        if (!out)
            std::fprintf(stderr, "cannot write %s\n", name.c_str());
    }
}

BmpForm PaletteBitmap()
{
    return {.width = 10,
            .height = 8,
            .bits = 8,
            .entries = 16,
            .palette = FilledRows(16, 3, 4),
            .pixels = std::string(12 * 8, '\7')};
}

BmpForm TrueColorBitmap()
{
    return {.width = 10, .height = 8, .pixels = FilledRows(8, 32, 32)};
}

BmpForm RunBitmap(const std::string& codes)
{
    BmpForm form = PaletteBitmap();
    form.compression = 1;
    form.pixels = codes;
    return form;
}

template <typename Form, typename Change>
Form With(Form form, Change&& change)
{
    change(form);
    return form;
}

Files BitmapFiles()
{
    std::string rows;
    for (int y = 0; y < 8; ++y)
        rows += Bytes({10, y + 1, 0, 0});
    Files files = {
        {"good-24-bits", MakeBmp(TrueColorBitmap())},
        {"good-24-bits-from-the-top",
         MakeBmp(With(TrueColorBitmap(), [](BmpForm& f) { f.height = -8; }))},
        {"good-8-bits", MakeBmp(PaletteBitmap())},
        {"good-core-header-1-bit", MakeBmp({.width = 10,
                                            .height = 8,
                                            .bits = 1,
                                            .headerSize = 12,
                                            .palette = Bytes({0, 0, 0, 255, 255, 255}),
                                            .pixels = FilledRows(8, 4, 4)})},
        {"good-run-lengths", MakeBmp(RunBitmap(rows + Bytes({0, 1})))},
        {"good-masks-of-10-bits-and-alpha",
         MakeBmp({.width = 10,
                  .height = 8,
                  .bits = 32,
                  .headerSize = 124,
                  .compression = 3,
                  .masks = {0x3ff00000, 0xffc00, 0x3ff, 0xc0000000},
                  .pixels = FilledRows(8, 40, 40)})},
        {"good-claims-no-length", MakeBmp(TrueColorBitmap()).replace(2, 4, Le32(0))},
        {"good-profile-behind-the-pixels", MakeBmp(TrueColorBitmap()) + std::string(500, 'p')},
    };
    const auto broken = [&](const char* name, auto&& change) {
        files.emplace_back(name, MakeBmp(With(TrueColorBitmap(), change)));
    };
    broken("height-minus-2147483648", [](BmpForm& f) { f.height = -2147483648ll; });
    broken("width-0", [](BmpForm& f) { f.width = 0; });
    broken("height-0", [](BmpForm& f) { f.height = 0; });
    broken("width-65536", [](BmpForm& f) { f.width = 65536; });
    broken("height-65536", [](BmpForm& f) { f.height = 65536; });
    broken("size-65535x65535-little-data", [](BmpForm& f) { f.width = f.height = 65535; });
    broken("size-65535x65535-some-rows-of-1-bit", [](BmpForm& f) {
        f.width = f.height = 65535;
        f.bits = 1;
        f.palette = Bytes({0, 0, 0, 0, 255, 255, 255, 0});
        f.pixels = std::string(8192 * 2, '\0');
    });
    broken("bits-0", [](BmpForm& f) { f.bits = 0; });
    broken("bits-17", [](BmpForm& f) { f.bits = 17; });
    broken("planes-0", [](BmpForm& f) { f.planes = 0; });
    broken("header-of-13-bytes", [](BmpForm& f) { f.headerSize = 13; });
    broken("header-of-4294967295-bytes", [](BmpForm& f) { f.headerSize = 40; });
    files.back().second.replace(14, 4, "\xff\xff\xff\xff");
    broken("embedded-jpeg", [](BmpForm& f) { f.compression = 4, f.bits = 0; });
    broken("embedded-png", [](BmpForm& f) { f.compression = 5, f.bits = 0; });
    broken("compression-7", [](BmpForm& f) { f.compression = 7; });
    broken("pixels-beyond-the-end", [](BmpForm& f) { f.offset = 100000; });
    broken("pixels-in-the-header", [](BmpForm& f) { f.offset = 20; });
    broken("masks-with-gaps", [](BmpForm& f) {
        f.bits = 32;
        f.compression = 3;
        f.masks = {0xff00ff, 0xff00, 0xff};
        f.pixels = FilledRows(8, 40, 40);
    });
    broken("last-row-missing", [](BmpForm& f) { f.pixels.resize(7 * 32); });
    broken("last-byte-missing", [](BmpForm& f) { f.pixels.resize(8 * 32 - 1); });
    files.emplace_back("palette-of-4294967295",
                       MakeBmp(With(PaletteBitmap(), [](BmpForm& f) { f.entries = 0xffffffffu; })));
    files.emplace_back("index-beyond-the-palette",
                       MakeBmp(With(PaletteBitmap(), [](BmpForm& f) { f.pixels[40] = 16; })));
    files.emplace_back("runs-move-over-the-edge",
                       MakeBmp(RunBitmap(rows.substr(0, 12) + Bytes({0, 2, 11, 0}) + rows)));
    files.emplace_back("runs-move-over-the-top",
                       MakeBmp(RunBitmap(rows.substr(0, 12) + Bytes({0, 2, 0, 5}) + rows)));
    files.emplace_back("runs-beyond-a-row",
                       MakeBmp(RunBitmap(Bytes({255, 3}) + rows + Bytes({0, 1}))));
    files.emplace_back("runs-without-an-end", MakeBmp(RunBitmap(rows)));
    files.emplace_back("runs-break-off", MakeBmp(RunBitmap(rows.substr(0, 18))));
    files.emplace_back("runs-of-24-bits-in-a-header-of-40",
                       MakeBmp(With(TrueColorBitmap(), [](BmpForm& f) { f.compression = 4; })));
    for (auto& file : WrongFiles("BM"))
        files.push_back(file);
    return files;
}

Files AnymapFiles()
{
    const std::string grey = FilledRows(6, 9, 9);
    Files files = {
        {"good-raw-grey", "P5 9 6 255\n" + grey},
        {"good-plain-colour", "P3\n# text\n2 2\n7\n0 1 2 3 4 5 6 7 0 1 2 3"},
        {"good-raw-bits", "P4\n9 6\n" + FilledRows(6, 2, 2)},
        {"good-grey-with-alpha-of-16-bits",
         "P7\nWIDTH 9\nHEIGHT 6\nDEPTH 2\nMAXVAL 65535\nTUPLTYPE GRAYSCALE_ALPHA\nENDHDR\n" +
             FilledRows(6, 36, 36)},
        {"good-second-picture-behind", "P5 9 6 255\n" + grey + "P5 1 1 255\nx"},
        {"width-4294967296", "P5 4294967296 6 255\n" + grey},
        {"width-99999999999999999999", "P5 99999999999999999999 6 255\n" + grey},
        {"width-65536", "P5 65536 1 255\n" + grey},
        {"width-0", "P5 0 6 255\n" + grey},
        {"height-0", "P5 9 0 255\n" + grey},
        {"width-negative", "P5 -9 6 255\n" + grey},
        {"maxval-missing", "P5 9 6\n" + grey},
        {"maxval-0", "P5 9 6 0\n" + std::string(54, '\0')},
        {"maxval-65536", "P5 9 6 65536\n" + grey + grey},
        {"sample-beyond-maxval",
         "P5 9 6 100\n" + std::string(40, '\x20') + std::string(14, '\x65')},
        {"plain-sample-beyond-maxval", "P2 2 2 9\n1 2 3 10"},
        {"plain-sample-of-70000", "P2 2 2 65535\n1 2 3 70000"},
        {"plain-letters", "P2 2 2 9\n1 2 x 4"},
        {"plain-bit-2", "P1 2 2\n0 1 2 0"},
        {"size-65535x65535-little-data", "P6 65535 65535 255\n" + grey},
        {"size-65535x65535-some-rows-of-bits", "P4 65535 65535\n" + std::string(8192 * 2, '\0')},
        {"comment-without-an-end", "P5 9 #" + std::string(3000, 'c')},
        {"type-unknown",
         "P7\nWIDTH 9\nHEIGHT 6\nDEPTH 1\nMAXVAL 255\nTUPLTYPE CMYK\nENDHDR\n" + grey},
        {"type-and-depth-disagree",
         "P7\nWIDTH 9\nHEIGHT 6\nDEPTH 1\nMAXVAL 255\nTUPLTYPE RGB\nENDHDR\n" + grey},
        {"depth-missing", "P7\nWIDTH 9\nHEIGHT 6\nMAXVAL 255\nENDHDR\n" + grey},
        {"header-without-an-end", "P7\nWIDTH 9\nHEIGHT 6\nDEPTH 1\nMAXVAL 255\n"},
        {"last-byte-missing", "P5 9 6 255\n" + grey.substr(1)},
    };
    for (auto& file : WrongFiles("P6"))
        files.push_back(file);
    return files;
}

Files TargaFiles()
{
    const std::string rows = FilledRows(8, 30, 30);
    std::string runs;
    for (int i = 0; i < 8; ++i)
        runs += Bytes({0x89, i, 2 * i, 3 * i});
    const TgaForm color = {.width = 10, .height = 8, .pixels = rows};
    const TgaForm coded = {.type = 10, .width = 10, .height = 8, .pixels = runs};
    const TgaForm mapped = {.type = 1,
                            .width = 10,
                            .height = 8,
                            .bits = 8,
                            .mapType = 1,
                            .mapEntries = 4,
                            .mapBits = 24,
                            .map = FilledRows(4, 3, 3),
                            .pixels = std::string(80, '\3')};
    Files files = {
        {"good-colour", MakeTga(color)},
        {"good-colour-from-the-bottom-right",
         MakeTga(With(color, [](TgaForm& f) { f.descriptor = 0x10; }))},
        {"good-runs", MakeTga(coded)},
        {"good-map", MakeTga(mapped)},
        {"good-footer-behind",
         MakeTga(color) + std::string(8, '\0') + "TRUEVISION-XFILE." + std::string(1, '\0')},
    };
    const auto broken = [&](const char* name, const TgaForm& form, auto&& change) {
        files.emplace_back(name, MakeTga(With(form, change)));
    };
    broken("map-of-65535-entries-of-1-bit", mapped,
           [](TgaForm& f) { f.mapEntries = 65535, f.mapBits = 1; });
    broken("map-of-65535-entries-missing", mapped, [](TgaForm& f) { f.mapEntries = 65535; });
    broken("map-of-0-entries", mapped, [](TgaForm& f) { f.mapEntries = 0; });
    broken("map-missing", mapped, [](TgaForm& f) { f.mapType = 0; });
    broken("index-beyond-the-map", mapped, [](TgaForm& f) { f.pixels[30] = 4; });
    broken("index-before-the-map", mapped, [](TgaForm& f) { f.mapFirst = 4; });
    broken("type-0", color, [](TgaForm& f) { f.type = 0; });
    broken("type-32", color, [](TgaForm& f) { f.type = 32; });
    broken("bits-17", color, [](TgaForm& f) { f.bits = 17; });
    broken("interleaved", color, [](TgaForm& f) { f.descriptor |= 0x40; });
    broken("width-0", color, [](TgaForm& f) { f.width = 0; });
    broken("height-0", color, [](TgaForm& f) { f.height = 0; });
    broken("size-65535x65535-little-data", color, [](TgaForm& f) { f.width = f.height = 65535; });
    broken("size-65535x65535-some-rows", color, [](TgaForm& f) {
        f.type = 11;
        f.bits = 8;
        f.descriptor = 0;
        f.width = f.height = 65535;
        f.pixels.clear();
        for (int i = 0; i < 2 * 512; ++i)
            f.pixels += Bytes({0xff, 7});
    });
    broken("runs-past-the-end", coded, [](TgaForm& f) { f.pixels[28] = '\xff'; });
    broken("runs-break-off", coded, [](TgaForm& f) { f.pixels.resize(30); });
    broken("last-byte-missing", color, [](TgaForm& f) { f.pixels.resize(239); });
    for (auto& file : WrongFiles(Bytes({0, 0, 2})))
        files.push_back(file);
    return files;
}

Files PcxFiles()
{
    const std::string rows = FilledRows(8, 36, 36);
    const PcxForm color = {.width = 10, .height = 8, .planeBytes = 12, .data = PcxRuns(rows)};
    const PcxForm mapped = {.width = 10,
                            .height = 8,
                            .planes = 1,
                            .planeBytes = 12,
                            .data = PcxRuns(rows.substr(0, 96)) + PcxPalette()};
    Files files = {
        {"good-colour", MakePcx(color)},
        {"good-256-colours", MakePcx(mapped)},
        {"good-16-colours-in-planes", MakePcx({.width = 10,
                                               .height = 8,
                                               .bits = 1,
                                               .planes = 4,
                                               .planeBytes = 9,
                                               .palette = FilledRows(16, 3, 3),
                                               .data = PcxRuns(rows)})},
        {"good-not-coded",
         MakePcx(With(color, [&](PcxForm& f) { f.encoding = 0, f.data = rows; }))},
    };
    const auto broken = [&](const char* name, const PcxForm& form, auto&& change) {
        files.emplace_back(name, MakePcx(With(form, change)));
    };
    broken("version-1", color, [](PcxForm& f) { f.version = 1; });
    broken("version-6", color, [](PcxForm& f) { f.version = 6; });
    broken("encoding-2", color, [](PcxForm& f) { f.encoding = 2; });
    broken("bits-3", color, [](PcxForm& f) { f.bits = 3; });
    broken("planes-0", color, [](PcxForm& f) { f.planes = 0; });
    broken("planes-255", color, [](PcxForm& f) { f.planes = 255; });
    broken("planes-shorter-than-a-row", color, [](PcxForm& f) { f.planeBytes = 9; });
    broken("planes-of-0-bytes", color, [](PcxForm& f) { f.planeBytes = 0; });
    broken("right-before-left", color, [](PcxForm&) {});
    files.back().second.replace(4, 2, Le16(20));
    broken("size-65536x8", color, [](PcxForm& f) { f.width = 65536, f.planeBytes = 65535; });
    broken("size-65535x65535-little-data", color,
           [](PcxForm& f) { f.width = f.height = 65535, f.planeBytes = 65535; });
    broken("size-65535x65535-some-rows", color, [](PcxForm& f) {
        f.width = f.height = 65535;
        f.bits = f.planes = 1;
        f.planeBytes = 8192;
        f.data = PcxRuns(std::string(2 * 8192, '\0'));
    });
    broken("palette-missing", mapped, [&](PcxForm& f) { f.data = PcxRuns(rows.substr(0, 96)); });
    broken("palette-broken-off", mapped, [](PcxForm& f) { f.data.resize(f.data.size() - 1); });
    broken("palette-and-no-pixels", mapped, [](PcxForm& f) { f.data = PcxPalette(); });
    broken("runs-past-the-end", color, [&](PcxForm& f) {
        f.data = PcxRuns(rows.substr(0, 287)) + Bytes({0xff, 0});
    });
    broken("runs-break-off", color, [&](PcxForm& f) { f.data = PcxRuns(rows.substr(0, 100)); });
    for (auto& file : WrongFiles(Bytes({10, 5, 1})))
        files.push_back(file);
    return files;
}

Files IconFiles()
{
    BmpForm form = {.width = 16,
                    .height = 32,
                    .bits = 8,
                    .entries = 16,
                    .palette = FilledRows(16, 3, 4),
                    .pixels = std::string(256, '\5') + FilledRows(16, 2, 4)};
    const std::string bitmap = MakeDib(form);
    const IcoEntry entry = {16, 16, 8, bitmap};
    const auto changed = [&](auto&& change) {
        return MakeIco({{16, 16, 8, MakeDib(With(form, change))}});
    };
    std::vector<IcoEntry> many(255, IcoEntry{16, 16, 8, "", 0, 6 + 16 * 255});
    many[254] = {16, 16, 8, bitmap, -1, 6 + 16 * 255};
    many[0].bytes = static_cast<int64_t>(bitmap.size());
    Files files = {
        {"good-bitmap", MakeIco({entry})},
        {"good-cursor", MakeIco({entry}, 2)},
        {"good-png", MakeIco({{16, 16, 32, Png(16)}})},
        {"good-bitmap-and-larger-png", MakeIco({entry, {0, 0, 32, Png(40)}})},
        {"good-255-entries-of-one-picture", MakeIco(many)},
        {"good-sizes-disagree", MakeIco({{99, 3, 1, bitmap}})},
        {"entry-beyond-the-end", MakeIco({{16, 16, 8, bitmap, -1, 1000000}})},
        {"entry-in-the-directory", MakeIco({{16, 16, 8, bitmap, -1, 6}})},
        {"entry-at-4294967295", MakeIco({{16, 16, 8, bitmap, 0xffffffff, 0xffffffff}})},
        {"entry-of-4294967295-bytes", MakeIco({{16, 16, 8, bitmap, 0xffffffff}})},
        {"one-of-two-entries-beyond-the-end", MakeIco({entry, {32, 32, 8, "", 100, 1000000}})},
        {"no-entries", MakeIco({})},
        {"directory-broken-off", MakeIco(many).substr(0, 1000)},
        {"height-odd", changed([](BmpForm& f) { f.height = 31; })},
        {"height-0", changed([](BmpForm& f) { f.height = 0; })},
        {"bits-17", changed([](BmpForm& f) { f.bits = 17; })},
        {"run-lengths", changed([](BmpForm& f) { f.compression = 1; })},
        {"size-65535x65535-little-data", changed([](BmpForm& f) {
             f.width = 65535;
             f.height = 131070;
         })},
        {"mask-missing", changed([](BmpForm& f) { f.pixels.resize(256); })},
        {"mask-broken-off", changed([](BmpForm& f) { f.pixels.resize(256 + 33); })},
        {"pixels-broken-off", changed([](BmpForm& f) { f.pixels.resize(100); })},
        {"png-65536-wide",
         MakeIco({{0, 0, 32, PngSignature() + PngHeader(65536, 1, 8, 2) + Png(9).substr(33)}})},
        {"png-data-spoiled", MakeIco({{0, 0, 32, Png(16).replace(60, 4, "oops")}})},
        {"png-broken-off", MakeIco({{0, 0, 32, Png(16).substr(0, 60)}})},
    };
    for (auto& file : WrongFiles(Bytes({0, 0, 1, 0, 1, 0})))
        files.push_back(file);
    return files;
}

} // namespace

int main(int count, char** arguments)
{
    if (count != 2) {
        std::fprintf(stderr, "usage: make-simple-inputs FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder = arguments[1];
    Keep(folder / "bmp", ".bmp", BitmapFiles());
    Keep(folder / "pnm", ".pnm", AnymapFiles());
    Keep(folder / "tga", ".tga", TargaFiles());
    Keep(folder / "pcx", ".pcx", PcxFiles());
    Keep(folder / "ico", ".ico", IconFiles());
    return 0;
}
