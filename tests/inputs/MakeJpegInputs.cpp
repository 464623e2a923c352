#include "standard-plugins/tests/support/JpegMaking.h"
#include "standard-plugins/tests/support/PngMaking.h"
#include "tests/inputs/MakeInputs.h"

using plugintest::FindFrame;
using plugintest::FindMarker;
using plugintest::JpegColors;
using plugintest::JpegForm;
using plugintest::JpegSegment;
using plugintest::MakeJpeg;
using plugintest::SegmentSize;
using plugintest::WithSize;

namespace
{

constexpr uint32_t width = 40;
constexpr uint32_t height = 48;
constexpr uint8_t startOfScan = 0xda;

uint8_t Sample(uint32_t x, uint32_t y, int channel)
{
    return static_cast<uint8_t>(x * 4 + y * 2 + static_cast<uint32_t>(channel) * 40);
}

JpegForm Form()
{
    return {.width = width, .height = height};
}

std::string Sound()
{
    return MakeJpeg(Form(), Sample);
}

std::string WithBytesAt(std::string file, size_t at, const std::string& bytes)
{
    return file.insert(at, bytes);
}

std::string WithoutSegment(std::string file, uint8_t marker)
{
    for (size_t at = FindMarker(file, marker); at != std::string::npos;
         at = FindMarker(file, marker))
        file.erase(at, SegmentSize(file, at));
    return file;
}

std::string Repeated(const std::string& bytes, int times)
{
    std::string all;
    for (int i = 0; i < times; ++i)
        all += bytes;
    return all;
}

// Where the data behind the n-th scan header begin, and where they end.
struct Scan {
    size_t header;
    size_t data;
    size_t end;
};

Scan FindScan(const std::string& file, int number)
{
    size_t at = 2;
    for (int seen = 0;;) {
        const bool isScan = static_cast<uint8_t>(file.at(at + 1)) == startOfScan;
        const size_t header = at;
        at += SegmentSize(file, at);
        if (!isScan)
            continue;
        const size_t data = at;
        while (static_cast<uint8_t>(file.at(at)) != 0xff || file.at(at + 1) == '\0' ||
               (static_cast<uint8_t>(file.at(at + 1)) & 0xf8) == 0xd0)
            ++at;
        if (seen++ == number)
            return {header, data, at};
    }
}

void MakeSizes(const KeepInput& keep)
{
    const auto rough = [](uint32_t x, uint32_t y, int channel) {
        return static_cast<uint8_t>((x * x * 31 + y * y * 17 + x * y * 7) >>
                                    static_cast<uint32_t>(channel + 1));
    };
    JpegForm form = {.width = 64, .height = 64};
    const std::string five = MakeJpeg(form, rough);
    keep("size-65500x65500-in-5-kilobytes.jpg", WithSize(five, 65500, 65500));
    keep("size-65535x65535.jpg", WithSize(five, 65535, 65535));
    keep("size-0-wide.jpg", WithSize(five, 0, 64));
    keep("size-0-high.jpg", WithSize(five, 64, 0));
    form.colors = JpegColors::Grey;
    form.across = form.down = 1;
    const std::string flat =
        MakeJpeg({.width = 512, .height = 512, .colors = JpegColors::Grey, .across = 1, .down = 1},
                 [](uint32_t, uint32_t, int) -> uint8_t { return 128; });
    // So much flatness in few bytes that whole lines of the claimed size can be read from it.
    const Scan scan = FindScan(flat, 0);
    const std::string data = flat.substr(scan.data, scan.end - scan.data);
    keep("size-65500x65500-some-lines.jpg",
         WithSize(flat.substr(0, scan.data) + Repeated(data.substr(0, data.size() - 1), 8) +
                      flat.substr(scan.end),
                  65500, 65500));
    form.progressive = true;
    keep("size-65500x65500-progressive.jpg", WithSize(MakeJpeg(form, rough), 65500, 65500));
}

void MakeMarkers(const KeepInput& keep)
{
    const std::string sound = Sound();
    keep("good-10000-comments.jpg", WithBytesAt(sound, 2, Repeated(JpegSegment(0xfe, ""), 10000)));
    keep("good-10000-restart-markers-in-the-header.jpg",
         WithBytesAt(sound, 2, Repeated("\xff\xd0", 10000)));
    keep("good-10000-line-count-markers.jpg",
         WithBytesAt(sound, 2, Repeated(JpegSegment(0xdc, std::string(2, '\x10')), 5000)));
    keep("good-stray-bytes-between-markers.jpg",
         WithBytesAt(sound, FindFrame(sound), std::string(100, 'x')));
    const size_t frame = FindFrame(sound);
    const size_t frameSize = SegmentSize(sound, frame);
    const size_t scan = FindMarker(sound, startOfScan);
    const std::string swapped = sound.substr(0, frame) +
                                sound.substr(scan, SegmentSize(sound, scan)) +
                                sound.substr(frame, frameSize) + sound.substr(frame + frameSize);
    keep("scan-before-frame.jpg", swapped);
    keep("frame-missing.jpg", sound.substr(0, frame) + sound.substr(frame + frameSize));
    keep("good-standard-huffman-tables-left-out.jpg", WithoutSegment(sound, 0xc4));
    keep("quantisation-tables-missing.jpg", WithoutSegment(sound, 0xdb));
    std::string changed = sound;
    changed[FindMarker(sound, 0xc4) + 5] = '\xff';
    keep("huffman-table-overfull.jpg", changed);
    changed = sound;
    changed[frame + 3] = 1;
    changed[frame + 2] = 0;
    keep("segment-of-length-1.jpg", changed);
    changed = sound;
    changed[frame + 11] = 0;
    keep("sampling-factor-0.jpg", changed);
    changed = sound;
    changed[frame + 4] = 12;
    keep("twelve-bits.jpg", changed);
    changed = sound;
    changed[frame + 1] = '\xc3';
    keep("lossless-frame.jpg", changed);
}

void MakeData(const KeepInput& keep)
{
    const std::string sound = Sound();
    const Scan scan = FindScan(sound, 0);
    const size_t half = scan.data + (scan.end - scan.data) / 2;
    keep("data-cut-and-end-mark-behind.jpg", sound.substr(0, half) + "\xff\xd9");
    keep("end-mark-missing.jpg", sound.substr(0, sound.size() - 2));
    keep("data-missing.jpg", sound.substr(0, scan.data) + "\xff\xd9");
    JpegForm form = Form();
    form.restartRows = 1;
    std::string restarts = MakeJpeg(form, Sample);
    const size_t first = restarts.find("\xff\xd0", FindScan(restarts, 0).data);
    restarts.erase(first, 2);
    keep("restart-marker-missing.jpg", restarts);
    std::string order = MakeJpeg(form, Sample);
    order[order.find("\xff\xd1", FindScan(order, 0).data) + 1] = '\xd2';
    keep("restart-markers-out-of-order.jpg", order);
    order = MakeJpeg(form, Sample);
    order[order.find("\xff\xd1", FindScan(order, 0).data) + 1] = '\xd5';
    keep("good-restart-marker-with-a-wrong-number.jpg", order);
    form = Form();
    form.progressive = true;
    const std::string progressive = MakeJpeg(form, Sample);
    const Scan second = FindScan(progressive, 1);
    const std::string again = progressive.substr(second.header, second.end - second.header);
    keep("progressive-of-1000-scans.jpg",
         WithBytesAt(progressive, second.end, Repeated(again, 1000)));
}

void MakeTails(const KeepInput& keep)
{
    const std::string sound = Sound();
    keep("good-garbage-behind.jpg", sound + std::string(4096, 'g'));
    std::string multi = "MPF";
    multi += std::string("\0II*\0\x08\0\0\0\0\0", 11);
    keep("good-second-picture-behind.jpg", WithBytesAt(sound, 2, JpegSegment(0xe2, multi)) + sound);
}

} // namespace

void MakeJpegInputs(const KeepInput& keep)
{
    keep("good-baseline.jpg", Sound());
    JpegForm form = Form();
    form.progressive = true;
    keep("good-progressive.jpg", MakeJpeg(form, Sample));
    form = Form();
    form.colors = JpegColors::Grey;
    form.across = form.down = 1;
    keep("good-grey.jpg", MakeJpeg(form, Sample));
    form.colors = JpegColors::Cmyk;
    keep("good-four-inks.jpg", MakeJpeg(form, Sample));
    form = Form();
    form.arithmetic = true;
    keep("good-arithmetic.jpg", MakeJpeg(form, Sample));
    keep("empty.jpg", "");
    keep("one-byte.jpg", "\xff");
    keep("start-mark-alone.jpg", "\xff\xd8\xff");
    MakeSizes(keep);
    MakeMarkers(keep);
    MakeData(keep);
    MakeTails(keep);
    keep("really-a-png.jpg", plugintest::PngSignature() +
                                 plugintest::PngHeader(width, height, 8, 2) +
                                 plugintest::PngChunk("IEND", ""));
    keep("really-an-error-page.jpg", "<!DOCTYPE html>\n<html><body>404 Not Found</body></html>\n");
    keep("really-gzip.jpg", std::string("\x1f\x8b\x08\x00\x00\x00\x00\x00\x02\x03", 10) +
                                plugintest::Deflate("not a picture").substr(2));
}
