// INPUT: streams as files, servers and broken disks give them.

#include "kit/check/Check.h"
#include "kit/check/Text.h"
#include "kit/check/Workbench.h"

#include <algorithm>

namespace plugincheck
{

namespace
{

/// A read of a stream into a fresh picture.
struct Reading {
    i32 result;
    PictureState state;
    u32 reads;
    u32 failedReads;
};

Reading ReadOnce(Workbench* bench, const Source& source, const std::string& doing,
                 u32 mostAtOnce = 0xFFFFFFFF, u32 failFrom = 0)
{
    Raster picture;
    ReadingStream stream(source.bytes);
    stream.mostAtOnce = mostAtOnce;
    stream.failFrom = failFrom;
    const i32 result = bench->Read(&picture, &stream, {}, doing);
    return {result, StateOf(&picture), stream.reads, stream.failedReads};
}

/// At most `most` numbers from 1 to `last`: the first ones, then evenly spread.
std::vector<u32> Steps(u32 last, u32 most)
{
    std::vector<u32> steps;
    for (u32 i = 1; i <= last && i <= most / 2; ++i)
        steps.push_back(i);
    const u32 rest = last > most / 2 ? last - most / 2 : 0;
    for (u32 i = 1; i <= std::min(rest, most / 2); ++i)
        steps.push_back(most / 2 + static_cast<u32>(u64{rest} * i / std::min(rest, most / 2)));
    return steps;
}

} // namespace

void CheckSamples(CheckContext& context)
{
    Workbench bench(context);
    for (const Sample& sample : context.plugin.samples) {
        const Source source = {"the sample " + sample.name, sample.bytes, true};
        const Reading reading = ReadOnce(&bench, source, "read " + source.words);
        if (reading.result < 0)
            context.Violation("GetImage refuses the sample " + sample.name + " (result " +
                                  std::to_string(reading.result) + ").",
                              sample.name);
    }
}

void CheckEmptyStream(CheckContext& context)
{
    Workbench bench(context);
    const Source source = {"a stream without a byte", {}, false};
    const Reading reading = ReadOnce(&bench, source, "read " + source.words);
    if (reading.result >= 0)
        context.Violation("GetImage reports success (result " + std::to_string(reading.result) +
                          ") for a stream without a byte, of which no picture can be made.");
}

void CheckGarbage(CheckContext& context)
{
    Workbench bench(context);
    // That it makes a picture of any bytes is a format's right; the picture is looked at anyway.
    for (const size_t count : {1, 2, 3, 16, 100, 1000, 70000})
        for (u32 seed = 1; seed <= 3; ++seed)
            (void)ReadOnce(&bench, {"", RandomBytes(count, seed), false},
                           "read " + Counted(count, "random byte"));
    for (const u8 byte : {u8{0}, u8{0xFF}})
        (void)ReadOnce(&bench, {"", std::vector<u8>(5000, byte), false},
                       "read 5000 bytes of " + Hex(byte));
}

void CheckShortReads(CheckContext& context)
{
    Workbench bench(context);
    for (const Source& source : SourcesOf(context)) {
        const Reading whole = ReadOnce(&bench, source, "read " + source.words);
        for (const u32 most : {1U, 7U}) {
            const Reading bits = ReadOnce(
                &bench, source,
                "read " + source.words + ", " + Counted(most, "byte") + " at a time", most);
            if ((whole.result < 0) != (bits.result < 0) ||
                (whole.result >= 0 && !(whole.state == bits.state))) {
                context.Violation("GetImage makes another picture of " + source.words +
                                  " when the stream gives " + Counted(most, "byte") +
                                  " at a time; a read may give fewer bytes than were asked for, "
                                  "and only 0 is the end.");
                return;
            }
        }
    }
}

void CheckFailingReads(CheckContext& context)
{
    constexpr u32 MostBytes = 64;
    Workbench bench(context);
    for (const Source& source : SourcesOf(context)) {
        for (const u32 most : {MostBytes, 0xFFFFFFFFU}) {
            const Reading whole = ReadOnce(&bench, source, "read " + source.words, most);
            for (const u32 step : Steps(whole.reads, 40)) {
                const Reading failing =
                    ReadOnce(&bench, source,
                             "read " + source.words + ", of which read " + std::to_string(step) +
                                 " and all behind it failed",
                             most, step);
                // A decoder that has its picture may well be content without the rest.
                if (failing.failedReads != 0 && failing.result >= 0 &&
                    !(whole.result >= 0 && failing.state == whole.state)) {
                    context.Violation(
                        "GetImage reports success (result " + std::to_string(failing.result) +
                        ") though the stream failed in the middle of " + source.words + ".");
                    return;
                }
            }
        }
    }
}

void CheckCutStreams(CheckContext& context)
{
    Workbench bench(context);
    for (const Sample& sample : context.plugin.samples) {
        const auto size = static_cast<u32>(sample.bytes.size());
        for (const u32 length : Steps(size, 60)) {
            if (length == size)
                continue;
            const Source cut = {"", {sample.bytes.begin(), sample.bytes.begin() + length}, false};
            (void)ReadOnce(&bench, cut,
                           "read the first " + Counted(length, "byte") + " of the sample " +
                               sample.name);
        }
        // The same length, with a byte of the header or the data changed.
        for (const u32 place : Steps(size, 60)) {
            Source spoiled = {"", sample.bytes, false};
            spoiled.bytes[place - 1] ^= 0xFF;
            (void)ReadOnce(&bench, spoiled,
                           "read the sample " + sample.name + " with byte " +
                               std::to_string(place - 1) + " changed");
        }
    }
}

void CheckHeaderRead(CheckContext& context)
{
    Workbench bench(context);
    if (!bench.Plugin().Has("GetImageInfo"))
        return;
    std::vector<Source> sources = SourcesOf(context);
    sources.push_back({"a stream without a byte", {}, false});
    for (const Source& source : sources) {
        std::vector<u8> room(sizeof(RasterInfo) + 256, 0xA5);
        auto* info = reinterpret_cast<RasterInfo*>(room.data());
        info->size = sizeof(RasterInfo);
        ReadingStream stream(source.bytes);
        (void)bench.Other([&] { return bench.Plugin().ReadHeader(&stream, info); }, "GetImageInfo",
                          {}, "read the header of " + source.words);
        if (std::any_of(room.begin() + sizeof(RasterInfo), room.end(),
                        [](u8 byte) { return byte != 0xA5; }))
            context.Violation("GetImageInfo writes past the record that it has to fill.");
    }
}

void CheckQuickRead(CheckContext& context)
{
    Workbench bench(context);
    if (!bench.Plugin().Has("GetImageFast"))
        return;
    Raster picture;
    const std::u16string missing = bench.FreshPath(nullptr);
    const i32 result = bench.Other(
        [&] { return bench.Plugin().Transfer("GetImageFast", missing.c_str(), nullptr, &picture); },
        "GetImageFast", {}, "was given the path of a file that is not there");
    if (result >= 0)
        context.Violation("GetImageFast reports success (result " + std::to_string(result) +
                          ") for a file that is not there.");
}

} // namespace plugincheck
