// A plugin that reads pictures, through its exports: any bytes at all as a file. The stream gives
// them in pieces, the user gives up somewhere in some runs, and the picture is lent line by line,
// so that a write beside it is seen. Built once for each plugin, with its sources.
#include "fuzz/Entry.h"
#include "standard-plugins/tests/support/ByteStream.h"
#include "standard-plugins/tests/support/Canvas.h"

#include <dlfcn.h>

#include <string_view>

using plugintest::ByteStream;
using plugintest::Canvas;

extern "C" {
int32_t GetImageInfo(const TavrixChar* path, PluginStreamRecord* stream, void* info);
int32_t GetImage(const TavrixChar* path, PluginStreamRecord* stream, TavrixImageHandle image,
                 RasterFunctionTable* rasters, PaletteFunctionTable* palettes,
                 TavrixProgressCallback progress, TavrixMessageCallback message,
                 TavrixPutPropertyCallback put, TavrixGetPropertyCallback get);
}

namespace
{

// Pictures that are large enough for everything to happen and small enough for many of them.
constexpr uint64_t mostPictureBytes = 256u << 10;
// What settings that end in "Memory" allow, in megabytes.
constexpr uint32_t mostMegabytes = 8;

int callsLeft;

int32_t OnProgress(uint32_t done, uint32_t total)
{
    Require(total > 0 && done <= total, "progress is part of a whole");
    return callsLeft-- == 0 ? -1 : 1;
}

int32_t OnMessage(const TavrixChar*, const TavrixChar*, uint32_t)
{
    return 0;
}

int32_t OnPut(Variant*)
{
    return -1;
}

int32_t OnGet(Variant* item)
{
    if (!std::u16string_view(item->name).ends_with(u"Memory"))
        return -1;
    item->value = mostMegabytes;
    return 1;
}

// A plugin opens its codec and closes it in every call; here it stays in the process meanwhile.
void HoldCodec()
{
    static const char* const name = std::getenv("TAVRIX_HELD_CODEC");
    static void* const held = name ? dlopen(name, RTLD_NOW | RTLD_LOCAL) : nullptr;
    Require(!name || held, "the codec is installed");
}

void ReadHeader(const std::string& bytes, uint32_t piece)
{
    ByteStream stream(bytes, piece);
    RasterInfo info = {};
    info.size = sizeof info;
    const int32_t result = GetImageInfo(nullptr, &stream.record, &info);
    Require(result <= 1, "the header's result");
    if (result > 0)
        Require(info.width >= 1 && info.width <= 65535 && info.height >= 1 && info.height <= 65535,
                "a size that pictures can have");
    Require(stream.seeks == 0 && stream.sizesAsked == 0, "headers are read forward");
}

void ReadPicture(const std::string& bytes, uint32_t piece)
{
    ByteStream stream(bytes, piece);
    Canvas canvas;
    canvas.mostBytes = mostPictureBytes;
    const int32_t result = GetImage(nullptr, &stream.record, canvas.Handle(), canvas.Table(),
                                    nullptr, OnProgress, OnMessage, OnPut, OnGet);
    canvas.UnlockAll();
    Require(result <= 1 && result != 0, "done or failed");
    Require(stream.seeks == 0 && stream.sizesAsked == 0, "pictures are read forward");
    if (result < 0)
        return;
    Require(canvas.width >= 1 && canvas.height >= 1 && canvas.depth == 24, "a picture");
    for (uint32_t y = 0; y < canvas.height; ++y)
        Require(canvas.WasWritten(y), "every line is there");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    HoldCodec();
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const uint32_t piece = size % 3 == 0 ? 1 + static_cast<uint32_t>(size % 97) : 65536;
    callsLeft = size % 5 == 0 ? static_cast<int>(size / 5 % 40) : -1;
    ReadHeader(bytes, piece);
    ReadPicture(bytes, piece);
    return 0;
}
