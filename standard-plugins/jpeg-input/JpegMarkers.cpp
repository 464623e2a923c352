#include "standard-plugins/jpeg-input/JpegMarkers.h"

#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/reading/ExifOrientation.h"
#include "standard-plugins/jpeg-input/JpegReading.h"

#include <stdlib.h>
#include <string.h>

namespace
{

constexpr uint32_t mostProfileBytes = 4u << 20;
const uint8_t exifStart[] = {'E', 'x', 'i', 'f', 0, 0};
const uint8_t profileStart[] = {'I', 'C', 'C', '_', 'P', 'R', 'O', 'F', 'I', 'L', 'E', 0};

JpegMarkers& MarkersOf(j_decompress_ptr codec)
{
    return static_cast<JpegReading*>(codec->client_data)->markers;
}

// The source never runs dry in silence: filling it gives bytes, or leaves the decode.
uint32_t TakeByte(j_decompress_ptr codec)
{
    jpeg_source_mgr* source = codec->src;
    if (source->bytes_in_buffer == 0)
        (void)source->fill_input_buffer(codec);
    --source->bytes_in_buffer;
    return *source->next_input_byte++;
}

// The bytes behind the length word, at most as many as `buffer` holds; the rest is passed over.
uint32_t TakeMarker(j_decompress_ptr codec, uint8_t* buffer, uint32_t room)
{
    const uint32_t high = TakeByte(codec);
    const uint32_t length = high << 8 | TakeByte(codec);
    if (length < 2)
        LeaveReading(static_cast<JpegReading*>(codec->client_data), PluginFailed);
    const uint32_t bytes = length - 2;
    const uint32_t kept = bytes < room ? bytes : room;
    for (uint32_t i = 0; i < kept; ++i)
        buffer[i] = static_cast<uint8_t>(TakeByte(codec));
    if (bytes > kept)
        codec->src->skip_input_data(codec, static_cast<long>(bytes - kept));
    return kept;
}

// The longest marker.
constexpr uint32_t mostMarkerBytes = 65533;

boolean OnExif(j_decompress_ptr codec)
{
    JpegReading* reading = static_cast<JpegReading*>(codec->client_data);
    const uint32_t count = TakeMarker(codec, reading->markerBytes, mostMarkerBytes);
    const bool isExif =
        count > sizeof exifStart && memcmp(reading->markerBytes, exifStart, sizeof exifStart) == 0;
    if (isExif && reading->markers.orientation == 0)
        reading->markers.orientation =
            FindOrientation(reading->markerBytes + sizeof exifStart, count - sizeof exifStart);
    return TRUE;
}

void KeepPiece(JpegMarkers& markers, uint32_t number, uint32_t count, const uint8_t* bytes,
               uint32_t length)
{
    const bool fits = number >= 1 && number <= count &&
                      (markers.pieceCount == 0 || markers.pieceCount == count) &&
                      markers.pieceBytes + length <= mostProfileBytes;
    if (!fits || markers.pieces[number - 1]) {
        markers.spoiled = true;
        return;
    }
    auto* piece = static_cast<uint8_t*>(malloc(length ? length : 1));
    if (!piece) {
        markers.spoiled = true;
        return;
    }
    memcpy(piece, bytes, length);
    markers.pieces[number - 1] = piece;
    markers.lengths[number - 1] = length;
    markers.pieceCount = count;
    markers.pieceBytes += length;
}

boolean OnProfile(j_decompress_ptr codec)
{
    JpegReading* reading = static_cast<JpegReading*>(codec->client_data);
    const uint8_t* bytes = reading->markerBytes;
    const uint32_t count = TakeMarker(codec, reading->markerBytes, mostMarkerBytes);
    constexpr uint32_t head = sizeof profileStart + 2;
    if (!MarkersOf(codec).spoiled && count >= head &&
        memcmp(bytes, profileStart, sizeof profileStart) == 0)
        KeepPiece(MarkersOf(codec), bytes[head - 2], bytes[head - 1], bytes + head, count - head);
    return TRUE;
}

} // namespace

void WatchMarkers(jpeg_decompress_struct* codec, JpegMarkers* markers)
{
    *markers = {};
    jpeg_set_marker_processor(codec, JPEG_APP0 + 1, OnExif);
    jpeg_set_marker_processor(codec, JPEG_APP0 + 2, OnProfile);
}

uint32_t OrientationOf(const JpegMarkers& markers)
{
    return markers.orientation == 0 ? plainOrientation : markers.orientation;
}

uint8_t* JoinProfile(const JpegMarkers& markers, size_t* bytes)
{
    *bytes = 0;
    if (markers.spoiled || markers.pieceCount == 0)
        return nullptr;
    auto* profile = static_cast<uint8_t*>(malloc(markers.pieceBytes ? markers.pieceBytes : 1));
    if (!profile)
        return nullptr;
    for (uint32_t i = 0; i < markers.pieceCount; ++i) {
        if (!markers.pieces[i]) {
            free(profile);
            return nullptr;
        }
        memcpy(profile + *bytes, markers.pieces[i], markers.lengths[i]);
        *bytes += markers.lengths[i];
    }
    return profile;
}

void FreeMarkers(JpegMarkers* markers)
{
    for (uint8_t* piece : markers->pieces)
        free(piece);
    *markers = {};
}
