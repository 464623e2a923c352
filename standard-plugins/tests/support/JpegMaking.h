// JPEG files for the tests, and the reference library's own reading of them all at once.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace plugintest
{

/// How the file keeps its colours.
enum class JpegColors { Grey, YCbCr, Rgb, Cmyk, Ycck };

struct JpegForm {
    uint32_t width = 1;
    uint32_t height = 1;
    JpegColors colors = JpegColors::YCbCr;
    int quality = 90;
    /// Sampling of the first component: 1x1, 2x1 or 2x2, and more.
    int across = 2;
    int down = 2;
    bool progressive = false;
    /// Sequential with a scan for each component.
    bool separateScans = false;
    bool arithmetic = false;
    bool adobeMarker = true; // only where the colours can have one
    int restartRows = 0;
    /// Every row is the first one: for large files in little time.
    bool sameRows = false;
};

/// Values a pixel of the file as it is given to the encoder.
int ChannelCount(JpegColors colors);
/// `sample(x, y, channel)`: grey; red, green, blue; or the four ink values as the file holds them.
std::string MakeJpeg(const JpegForm& form,
                     const std::function<uint8_t(uint32_t, uint32_t, int)>& sample);
/// The whole picture through the library's plain calls; `channels` values a pixel: 1 grey, 3 red,
/// green, blue, 4 the ink values of the file.
std::vector<uint8_t> ReferencePixels(const std::string& file, int channels);

/// One marker segment: 0xff, the marker, the length and the data.
std::string JpegSegment(uint8_t marker, const std::string& data);
/// Where the marker stands (its 0xff), walking the segments from the start; npos when it is not
/// there before the first scan's data. SOS itself can be found.
size_t FindMarker(const std::string& file, uint8_t marker);
/// Size of the segment at `at`, its marker included.
size_t SegmentSize(const std::string& file, size_t at);
/// Puts another size into the frame header.
std::string WithSize(std::string file, uint32_t width, uint32_t height);
/// The frame header's marker: 0xc0, 0xc1, 0xc2 or 0xc9.
size_t FindFrame(const std::string& file);

} // namespace plugintest
