// How the camera was held: the eight orientations of EXIF, drawn where the standard wants them.

#include "standard-plugins/tests/support/Decoding.h"
#include "standard-plugins/tests/support/JpegMaking.h"

#include <gtest/gtest.h>

using namespace plugintest;

namespace
{

uint8_t Value(uint32_t x, uint32_t y, int channel)
{
    return static_cast<uint8_t>(x * 3 + y * (2 + static_cast<uint32_t>(channel)));
}

std::string Word(uint32_t value, bool bigEnd)
{
    const auto high = static_cast<char>(value >> 8);
    const auto low = static_cast<char>(value);
    return bigEnd ? std::string{high, low} : std::string{low, high};
}

std::string Long(uint32_t value, bool bigEnd)
{
    return bigEnd ? Word(value >> 16, true) + Word(value & 0xffff, true)
                  : Word(value & 0xffff, false) + Word(value >> 16, false);
}

struct Exif {
    uint32_t value = 1;
    bool bigEnd = false;
    uint32_t type = 3;
    uint32_t count = 1;
    uint32_t tag = 0x112;
    uint32_t directory = 8;
    uint32_t entries = 1;
    uint32_t magic = 42;
    /// Offset of the next directory.
    uint32_t next = 0;
};

std::string Data(const Exif& exif)
{
    const bool big = exif.bigEnd;
    const std::string value =
        exif.type == 3 ? Word(exif.value, big) + Word(0, big) : Long(exif.value, big);
    return std::string("Exif\0\0", 6) + (big ? "MM" : "II") + Word(exif.magic, big) +
           Long(exif.directory, big) + Word(exif.entries, big) + Word(exif.tag, big) +
           Word(exif.type, big) + Long(exif.count, big) + value + Long(exif.next, big);
}

std::string WithMarker(const JpegForm& form, const std::string& data)
{
    return MakeJpeg(form, Value).insert(2, JpegSegment(0xe1, data));
}

// Where the pixel of the file stands in the picture, by the standard's table: which sides of the
// picture the first row and the first column are.
Pixel At(const Canvas& stored, uint32_t orientation, uint32_t x, uint32_t y)
{
    const uint32_t lastX = stored.width - 1;
    const uint32_t lastY = stored.height - 1;
    switch (orientation) {
    case 2:
        return stored.At(lastX - x, y);
    case 3:
        return stored.At(lastX - x, lastY - y);
    case 4:
        return stored.At(x, lastY - y);
    case 5:
        return stored.At(y, x);
    case 6:
        return stored.At(y, lastY - x);
    case 7:
        return stored.At(lastX - y, lastY - x);
    case 8:
        return stored.At(lastX - y, x);
    default:
        return stored.At(x, y);
    }
}

class Orientation : public testing::Test
{
protected:
    Orientation() { CurrentHost() = {}; }
    ~Orientation() override { CurrentHost() = {}; }

    void ExpectTurned(const JpegForm& form, const std::string& data, uint32_t orientation)
    {
        ByteStream plainStream(MakeJpeg(form, Value));
        Canvas plain;
        ASSERT_EQ(Decode(plugin, plainStream, plain), 1);
        ByteStream stream(WithMarker(form, data));
        Canvas canvas;
        ASSERT_EQ(Decode(plugin, stream, canvas), 1);
        const bool turned = orientation >= 5 && orientation <= 8;
        EXPECT_EQ(FirstDifference(
                      canvas, turned ? form.height : form.width, turned ? form.width : form.height,
                      [&](uint32_t x, uint32_t y) { return At(plain, orientation, x, y); }),
                  "")
            << orientation;
    }
    PluginLibrary plugin{"INPUT/JPEG"};
};

} // namespace

TEST_F(Orientation, EveryOneIsDrawnAsTheStandardSays)
{
    for (const bool bigEnd : {false, true})
        for (const uint32_t type : {3u, 4u})
            for (uint32_t value = 1; value <= 8; ++value)
                ExpectTurned({.width = 37, .height = 23},
                             Data({.value = value, .bigEnd = bigEnd, .type = type}), value);
}

TEST_F(Orientation, HoldsForPicturesOfOneLineAndAcrossBlocksOfRows)
{
    for (const auto& [width, height] :
         {std::pair{1u, 1u}, {1u, 40u}, {40u, 1u}, {5u, 63u}, {5u, 64u}, {5u, 65u}, {70u, 200u}})
        for (uint32_t value = 1; value <= 8; ++value)
            ExpectTurned({.width = width, .height = height}, Data({.value = value}), value);
}

TEST_F(Orientation, HoldsForProgressiveAndInkPictures)
{
    for (uint32_t value = 1; value <= 8; ++value) {
        ExpectTurned({.width = 37, .height = 70, .progressive = true}, Data({.value = value}),
                     value);
        ExpectTurned({.width = 37, .height = 70, .colors = JpegColors::Cmyk},
                     Data({.value = value}), value);
    }
}

TEST_F(Orientation, ThatIsNoneIsTheFilesOwn)
{
    const Exif wrong[] = {{.value = 0},
                          {.value = 9},
                          {.value = 65535},
                          {.value = 6, .type = 2},
                          {.value = 6, .count = 2},
                          {.value = 6, .count = 0},
                          {.value = 6, .tag = 0x113},
                          {.value = 6, .directory = 0},
                          {.value = 6, .directory = 0xffffffff},
                          {.value = 6, .directory = 22},
                          {.value = 6, .entries = 0},
                          {.value = 6, .magic = 43}};
    for (const Exif& exif : wrong)
        ExpectTurned({.width = 20, .height = 10}, Data(exif), 1);
    const std::string sound = Data({.value = 6});
    for (size_t length = 0; length < sound.size() - 6; ++length)
        ExpectTurned({.width = 20, .height = 10}, sound.substr(0, length), 1);
    ExpectTurned({.width = 20, .height = 10}, Data({.value = 6, .entries = 65535}), 6);
    ExpectTurned({.width = 20, .height = 10}, "http://ns.adobe.com/xap/1.0/", 1);
}

TEST_F(Orientation, IsReadBesideDirectoriesThatLeadInARing)
{
    // The next directory is this one, or lies in the middle of it, or nowhere.
    for (const uint32_t next : {8u, 10u, 26u, 0xffffffffu})
        ExpectTurned({.width = 20, .height = 10}, Data({.value = 6, .next = next}), 6);
    // An entry that leads to a directory of the camera's own, which is this one again.
    for (const uint32_t to : {0u, 8u, 22u, 0xffffffffu}) {
        std::string data = Data({.value = 6, .entries = 2});
        data.insert(data.size() - 4,
                    Word(0x8769, false) + Word(4, false) + Long(1, false) + Long(to, false));
        ExpectTurned({.width = 20, .height = 10}, data, 6);
    }
}

TEST_F(Orientation, IsReadBesideASmallPictureThatIsLargerThanTheFile)
{
    const std::string start = Data({.value = 6, .next = 26});
    for (const uint32_t length : {0u, 1000000u, 0x7fffffffu, 0xffffffffu})
        for (const uint32_t offset : {0u, 26u, 0x7fffffffu, 0xffffffffu})
            ExpectTurned({.width = 20, .height = 10},
                         start + Word(2, false) + Word(0x201, false) + Word(4, false) +
                             Long(1, false) + Long(offset, false) + Word(0x202, false) +
                             Word(4, false) + Long(1, false) + Long(length, false) + Long(0, false),
                         6);
}

TEST_F(Orientation, TheFirstMarkerThatTellsOneCounts)
{
    const JpegForm form = {.width = 20, .height = 10};
    ExpectTurned(form, Data({.value = 6}) + "and more", 6);
    std::string file = WithMarker(form, Data({.value = 3}));
    file.insert(2, JpegSegment(0xe1, Data({.value = 8})));
    ByteStream stream(file);
    Canvas canvas;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    EXPECT_EQ(canvas.width, 10u);
}

TEST_F(Orientation, TheHeaderAloneTellsTheTurnedSize)
{
    ByteStream stream(WithMarker({.width = 20, .height = 10}, Data({.value = 6})));
    RasterInfo info = {};
    info.size = sizeof info;
    EXPECT_EQ(plugin.getImageInfo(nullptr, &stream.record, &info), 1);
    EXPECT_EQ(info.width, 10u);
    EXPECT_EQ(info.height, 20u);
}

TEST_F(Orientation, OfAFileThatBreaksOffTheGoodRowsStandWhereTheyBelong)
{
    const JpegForm form = {.width = 64, .height = 160, .restartRows = 1};
    const std::string whole = WithMarker(form, Data({.value = 6}));
    ByteStream wholeStream(whole);
    Canvas expected;
    ASSERT_EQ(Decode(plugin, wholeStream, expected), 1);
    ByteStream stream(whole.substr(0, whole.size() * 3 / 4));
    Canvas canvas;
    EXPECT_LT(Decode(plugin, stream, canvas), 0);
    ASSERT_EQ(canvas.width, 160u);
    // Row 0 of the file is the last column.
    for (uint32_t y = 0; y < canvas.height; ++y)
        for (uint32_t x = 100; x < 160; ++x)
            EXPECT_EQ(canvas.At(x, y), expected.At(x, y)) << x << "," << y;
}

TEST_F(Orientation, AQuarterTurnLocksEachLineOnceABlockOfRowsAndHoldsNoPicture)
{
    ByteStream stream(
        WithMarker({.width = 2000, .height = 640, .sameRows = true}, Data({.value = 6})));
    Canvas canvas;
    canvas.forgets = true;
    EXPECT_EQ(Decode(plugin, stream, canvas), 1);
    EXPECT_EQ(canvas.locks, 2000 * 10);
    EXPECT_LT(canvas.peak.Most(), 3u * 2000 * 640 / 4);
}
