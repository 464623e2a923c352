// TIFF files that no program writes, made byte by byte: inks of few bits, offsets of 64 bits that
// lead nowhere, a million directories, orientations that are none, colour profiles that are none.

#include "standard-plugins/tests/library-readers/References.h"
#include "standard-plugins/tests/support/ColorProfiles.h"

#include <algorithm>

using plugintest::ByteStream;
using plugintest::Canvas;
using plugintest::CurrentHost;
using plugintest::Decode;
using plugintest::FirstDifference;
using plugintest::Pixel;
using plugintest::PluginLibrary;

namespace
{

std::string Number(uint64_t value, size_t bytes)
{
    std::string text;
    for (size_t i = 0; i < bytes; ++i)
        text += static_cast<char>(value >> 8 * i);
    return text;
}

enum Type : uint16_t { Short = 3, Long = 4, Undefined = 7, Long8 = 16 };

struct Tag {
    uint16_t tag;
    Type type;
    uint64_t count;
    /// The value itself, or its bytes if there are any.
    uint64_t value;
    std::string bytes;
};

struct TiffForm {
    /// Offsets of 64 bits.
    bool big = false;
    uint32_t width = 24;
    uint32_t height = 20;
    uint32_t bits = 8;
    uint32_t samples = 3;
    uint32_t photometric = 2;
    /// In place of those that the form would have, or beside them.
    std::vector<Tag> others = {};
    /// Offset of the directory behind the only one.
    uint64_t next = 0;
};

/// The strip begins behind the header.
uint64_t HeaderBytes(const TiffForm& form)
{
    return form.big ? 16 : 8;
}

std::vector<Tag> TagsOf(const TiffForm& form, size_t stripBytes)
{
    std::vector<Tag> tags = {{256, Long, 1, form.width, {}},
                             {257, Long, 1, form.height, {}},
                             {258, Short, 1, form.bits, {}},
                             {259, Short, 1, 1, {}},
                             {262, Short, 1, form.photometric, {}},
                             {273, form.big ? Long8 : Long, 1, HeaderBytes(form), {}},
                             {277, Short, 1, form.samples, {}},
                             {278, Long, 1, form.height, {}},
                             {279, form.big ? Long8 : Long, 1, stripBytes, {}}};
    // A number of bits for each sample.
    if (form.samples > 1) {
        tags[2].count = form.samples;
        for (uint32_t i = 0; i < form.samples; ++i)
            tags[2].bytes += Number(form.bits, 2);
    }
    for (const Tag& other : form.others) {
        std::erase_if(tags, [&](const Tag& tag) { return tag.tag == other.tag; });
        tags.push_back(other);
    }
    std::sort(tags.begin(), tags.end(), [](const Tag& a, const Tag& b) { return a.tag < b.tag; });
    return tags;
}

std::string MakeTiff(const TiffForm& form, const std::string& strip)
{
    const size_t room = form.big ? 8 : 4;
    std::string file = strip + std::string(strip.size() & 1, '\0');
    std::vector<Tag> tags = TagsOf(form, strip.size());
    for (Tag& tag : tags) {
        if (tag.bytes.empty())
            continue;
        tag.value = HeaderBytes(form) + file.size();
        if (tag.bytes.size() <= room) {
            tag.value = 0;
            for (size_t i = tag.bytes.size(); i > 0; --i)
                tag.value = tag.value << 8 | static_cast<uint8_t>(tag.bytes[i - 1]);
        } else
            file += tag.bytes + std::string(tag.bytes.size() & 1, '\0');
    }
    const uint64_t directory = HeaderBytes(form) + file.size();
    file += Number(tags.size(), form.big ? 8 : 2);
    for (const Tag& tag : tags)
        file += Number(tag.tag, 2) + Number(tag.type, 2) + Number(tag.count, room) +
                Number(tag.value, room);
    file += Number(form.next, room);
    const std::string header =
        form.big ? std::string("II\x2b\0\x08\0\0\0", 8) : std::string("II*\0", 4);
    return header + Number(directory, room) + file;
}

uint8_t Value(uint32_t x, uint32_t y, uint32_t channel)
{
    return static_cast<uint8_t>(x * 11 + y * 5 * (channel + 1) + 17);
}

std::string RgbStrip(const TiffForm& form)
{
    std::string strip;
    for (uint32_t y = 0; y < form.height; ++y)
        for (uint32_t x = 0; x < form.width; ++x)
            for (uint32_t c = 0; c < 3; ++c)
                strip += static_cast<char>(Value(x, y, c));
    return strip;
}

Pixel ColorAt(uint32_t x, uint32_t y)
{
    return {Value(x, y, 0), Value(x, y, 1), Value(x, y, 2)};
}

class HandMadeTiff : public plugintest::ReaderTest
{
protected:
    int32_t Read(const std::string& file, Canvas& canvas)
    {
        ByteStream stream(file);
        const int32_t result = Decode(plugin, stream, canvas);
        EXPECT_LT(stream.peak.Most(), 12u << 20);
        return result;
    }
    void ExpectRefused(const TiffForm& form, const std::string& what)
    {
        Canvas canvas;
        EXPECT_LT(Read(MakeTiff(form, RgbStrip(form)), canvas), 0) << what;
        EXPECT_EQ(canvas.allocations, 0) << what;
    }
    /// All its pixels are there, as the file has them.
    static void ExpectPlain(const Canvas& canvas, const std::string& what)
    {
        EXPECT_EQ(FirstDifference(canvas, 24, 20, ColorAt), "") << what;
    }

    PluginLibrary plugin{"INPUT/TIFF"};
};

// Inks of few bits, the samples of a pixel beside each other and rows of whole bytes.
uint32_t Ink(uint32_t x, uint32_t y, uint32_t ink, uint32_t bits)
{
    return (x * 3 + y * 5 + ink * 7 + x * y) & ((1u << bits) - 1);
}

std::string InkStrip(const TiffForm& form)
{
    std::string strip;
    for (uint32_t y = 0; y < form.height; ++y) {
        uint32_t held = 0;
        uint32_t count = 0;
        for (uint32_t x = 0; x < form.width; ++x)
            for (uint32_t ink = 0; ink < 4; ++ink) {
                held = held << form.bits | Ink(x, y, ink, form.bits);
                count += form.bits;
                if (count >= 8) {
                    count -= 8;
                    strip += static_cast<char>(held >> count);
                }
            }
        if (count > 0)
            strip += static_cast<char>(held << (8 - count));
    }
    return strip;
}

Pixel InkColor(uint32_t x, uint32_t y, uint32_t bits)
{
    const uint32_t most = (1u << bits) - 1;
    const auto light = [&](uint32_t ink) {
        return 255 - (Ink(x, y, ink, bits) * 255 + most / 2) / most;
    };
    const auto mixed = [&](uint32_t ink) {
        return static_cast<uint8_t>((light(ink) * light(3) + 127) / 255);
    };
    return {mixed(0), mixed(1), mixed(2)};
}

} // namespace

TEST_F(HandMadeTiff, IsReadWholeInBothSizesOfOffsets)
{
    for (const bool big : {false, true}) {
        const TiffForm form = {.big = big};
        Canvas canvas;
        EXPECT_EQ(Read(MakeTiff(form, RgbStrip(form)), canvas), 1) << big;
        ExpectPlain(canvas, big ? "big" : "classic");
    }
}

TEST_F(HandMadeTiff, OfFourInksWithFewBitsGivesTheirColours)
{
    for (const uint32_t bits : {1u, 2u, 3u, 4u, 5u, 7u, 8u}) {
        const TiffForm form = {
            .width = 23, .height = 9, .bits = bits, .samples = 4, .photometric = 5};
        Canvas canvas;
        EXPECT_EQ(Read(MakeTiff(form, InkStrip(form)), canvas), 1) << bits;
        EXPECT_EQ(FirstDifference(canvas, 23, 9,
                                  [&](uint32_t x, uint32_t y) { return InkColor(x, y, bits); }),
                  "")
            << bits;
    }
    for (const uint32_t bits : {0u, 17u, 33u, 65535u}) {
        const TiffForm form = {.bits = bits, .samples = 4, .photometric = 5};
        Canvas canvas;
        EXPECT_LT(Read(MakeTiff(form, std::string(24 * 20 * 16, '\x77')), canvas), 0) << bits;
    }
}

TEST_F(HandMadeTiff, WithoutASoundPaletteIsGreyAndAFailure)
{
    const auto grey = [](uint32_t x, uint32_t y) {
        const auto value = static_cast<uint8_t>(x * 9 + y);
        return Pixel{value, value, value};
    };
    std::string strip;
    for (uint32_t y = 0; y < 20; ++y)
        for (uint32_t x = 0; x < 24; ++x)
            strip += static_cast<char>(grey(x, y).red);
    std::string map;
    for (uint32_t i = 0; i < 768; ++i)
        map += Number(i * 77 & 0xffff, 2);
    for (const bool big : {false, true}) {
        TiffForm form = {.big = big, .samples = 1, .photometric = 3};
        form.others = {{320, Short, 768, 0, map}};
        Canvas sound;
        EXPECT_EQ(Read(MakeTiff(form, strip), sound), 1);
        EXPECT_NE(FirstDifference(sound, 24, 20, grey), "");
        // None, one that is too short, one that lies behind the end.
        for (const std::vector<Tag>& others : {std::vector<Tag>{},
                                               {{320, Short, 10, 0, map.substr(0, 20)}},
                                               {{320, Short, 768, 5000, {}}}}) {
            form.others = others;
            Canvas canvas;
            EXPECT_LT(Read(MakeTiff(form, strip), canvas), 0) << big;
            EXPECT_EQ(FirstDifference(canvas, 24, 20, grey), "") << big;
            // Of fewer bits there are no such greys.
            TiffForm few = form;
            few.bits = 4;
            Canvas none;
            EXPECT_LT(Read(MakeTiff(few, strip), none), 0) << big;
            EXPECT_EQ(none.allocations, 0) << big;
        }
    }
}

TEST_F(HandMadeTiff, WhoseTagsLieBehindItsEndKeepsItsPictureAndIsAFailure)
{
    for (const bool big : {false, true})
        // The picture's title, its program, its colour profile.
        for (const Tag& tag :
             {Tag{270, Undefined, 100, 100000, {}}, Tag{305, Undefined, 9, 90000, {}},
              Tag{34675, Undefined, 500, 70000, {}}}) {
            const TiffForm form = {.big = big, .others = {tag}};
            Canvas canvas;
            EXPECT_LT(Read(MakeTiff(form, RgbStrip(form)), canvas), 0) << tag.tag;
            ExpectPlain(canvas, std::to_string(tag.tag));
        }
}

TEST_F(HandMadeTiff, OfOffsetsThatLeadNowhereIsRefused)
{
    constexpr uint64_t far[] = {0,
                                1u << 20,
                                0xffffffff,
                                0x100000000,
                                0x7fffffffffffffff,
                                0x8000000000000000,
                                0xfffffffffffffff8,
                                0xffffffffffffffff};
    for (const uint64_t offset : far) {
        SCOPED_TRACE(offset);
        const TiffForm form = {.big = true};
        std::string lost = MakeTiff(form, RgbStrip(form));
        lost.replace(8, 8, Number(offset, 8));
        Canvas canvas;
        EXPECT_LT(Read(lost, canvas), 0);
        EXPECT_EQ(canvas.allocations, 0);
        if (offset == 0)
            continue;
        ExpectRefused({.big = true, .others = {{273, Long8, 1, offset, {}}}}, "strip");
        // The numbers of bits lie elsewhere, since four of them have no room in the entry.
        ExpectRefused({.big = true, .samples = 5, .others = {{258, Short, 5, offset, {}}}},
                      "bits a sample");
        ExpectRefused({.big = true, .others = {{273, Long8, offset, 16, {}}}}, "so many strips");
    }
}

TEST_F(HandMadeTiff, OfMoreEntriesThanBytesIsRefused)
{
    for (const uint64_t entries : {uint64_t{0}, uint64_t{1} << 16, uint64_t{1} << 32,
                                   uint64_t{1} << 63, ~uint64_t{0}, ~uint64_t{0} / 20}) {
        const TiffForm form = {.big = true};
        const std::string strip = RgbStrip(form);
        std::string file = MakeTiff(form, strip);
        uint64_t directory = 0;
        for (size_t i = 8; i > 0; --i)
            directory = directory << 8 | static_cast<uint8_t>(file[7 + i]);
        file.replace(directory, 8, Number(entries, 8));
        Canvas canvas;
        EXPECT_LT(Read(file, canvas), 0) << entries;
        EXPECT_EQ(canvas.allocations, 0) << entries;
    }
}

TEST_F(HandMadeTiff, WhoseNextDirectoryLeadsNowhereKeepsItsPicture)
{
    for (const bool big : {false, true})
        for (const uint64_t next :
             {uint64_t{1} << 20, uint64_t{0xfffffffe}, ~uint64_t{0}, uint64_t{1} << 63}) {
            const TiffForm form = {.big = big, .next = next};
            if (!big && next << 32 == 0)
                continue; // a next one of none
            Canvas canvas;
            EXPECT_LT(Read(MakeTiff(form, RgbStrip(form)), canvas), 0) << next;
            ExpectPlain(canvas, std::to_string(next));
        }
}

TEST_F(HandMadeTiff, OfAMillionDirectoriesKeepsThePictureOfTheFirst)
{
    TiffForm form;
    const std::string start = MakeTiff(form, RgbStrip(form));
    for (const auto& [pages, expected] : {std::pair{1000u, 1}, {1000000u, -1}}) {
        form.next = start.size();
        std::string file = MakeTiff(form, RgbStrip(form));
        constexpr size_t pageBytes = 18;
        for (uint64_t i = 1; i <= pages; ++i)
            file += Number(1, 2) + Number(254, 2) + Number(Long, 2) + Number(1, 4) + Number(2, 4) +
                    Number(i < pages ? start.size() + i * pageBytes : 0, 4);
        Canvas canvas;
        ByteStream stream(file);
        EXPECT_EQ(Decode(plugin, stream, canvas), expected) << pages;
        ExpectPlain(canvas, std::to_string(pages));
        EXPECT_LT(canvas.peak.Most(), file.size() + (4u << 20)) << "the stream holds the file";
    }
}

TEST_F(HandMadeTiff, WithAnOrientationThatIsNoneIsShownAsItLies)
{
    for (const uint64_t orientation : {0, 9, 65535}) {
        const TiffForm form = {.others = {{274, Short, 1, orientation, {}}}};
        Canvas canvas;
        EXPECT_EQ(Read(MakeTiff(form, RgbStrip(form)), canvas), 1) << orientation;
        ExpectPlain(canvas, std::to_string(orientation));
    }
}

TEST_F(HandMadeTiff, WithAProfileThatIsNoneOrTooLargeOrOfInksKeepsItsColours)
{
    const auto with = [](const std::string& profile) {
        const TiffForm form = {.others = {{34675, Undefined, profile.size(), 0, profile}}};
        return MakeTiff(form, RgbStrip(form));
    };
    const std::string wide = plugintest::WideRgbProfile();
    Canvas converted;
    EXPECT_EQ(Read(with(wide), converted), 1);
    EXPECT_NE(FirstDifference(converted, 24, 20, ColorAt), "") << "a sound one changes them";
    std::string broken = wide;
    broken.replace(128, 8, std::string(8, '\xff'));
    for (const std::string& profile :
         {std::string("no profile"), std::string(5000, '\xff'), broken, wide.substr(0, 300),
          plugintest::InkProfile(), plugintest::GreyProfile(1.0),
          plugintest::WithPadding(wide, 5u << 20)}) {
        Canvas canvas;
        ByteStream stream(with(profile));
        EXPECT_EQ(Decode(plugin, stream, canvas), 1) << profile.size();
        ExpectPlain(canvas, std::to_string(profile.size()));
    }
}
