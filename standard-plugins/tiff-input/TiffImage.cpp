#include "standard-plugins/tiff-input/TiffImage.h"

#include "standard-plugins/common/LineWriter.h"
#include "standard-plugins/common/reading/Background.h"

namespace
{

// A tag of one 16-bit number, with the library's default.
uint16_t ShortTag(const TiffFile& file, uint32_t tag)
{
    uint16_t value = 0;
    (void)file.library->getDefaulted(file.tiff, tag, &value);
    return value;
}

bool ReadSizes(const TiffFile& file, TiffImage* image)
{
    const TiffLibrary& library = *file.library;
    if (!library.get(file.tiff, TIFFTAG_IMAGEWIDTH, &image->width) ||
        !library.get(file.tiff, TIFFTAG_IMAGELENGTH, &image->height) ||
        !IsPictureSize(image->width, image->height))
        return false;
    image->tiled = library.isTiled(file.tiff) != 0;
    if (image->tiled)
        return library.get(file.tiff, TIFFTAG_TILEWIDTH, &image->tileWidth) &&
               library.get(file.tiff, TIFFTAG_TILELENGTH, &image->tileHeight) &&
               image->tileWidth > 0 && image->tileHeight > 0;
    (void)library.getDefaulted(file.tiff, TIFFTAG_ROWSPERSTRIP, &image->rowsPerStrip);
    if (image->rowsPerStrip > image->height)
        image->rowsPerStrip = image->height;
    return image->rowsPerStrip > 0;
}

bool ReadSamples(const TiffFile& file, TiffImage* image)
{
    image->samples = ShortTag(file, TIFFTAG_SAMPLESPERPIXEL);
    image->bits = ShortTag(file, TIFFTAG_BITSPERSAMPLE);
    image->compression = ShortTag(file, TIFFTAG_COMPRESSION);
    image->fillOrder = ShortTag(file, TIFFTAG_FILLORDER);
    image->separate =
        image->samples > 1 && ShortTag(file, TIFFTAG_PLANARCONFIG) == PLANARCONFIG_SEPARATE;
    const uint16_t turned = ShortTag(file, TIFFTAG_ORIENTATION);
    image->orientation = turned >= 1 && turned <= 8 ? turned : 1;
    return image->samples > 0 && image->samples <= mostTiffSamples &&
           image->compression != COMPRESSION_OJPEG;
}

bool ReadSampleForm(const TiffFile& file, TiffImage* image)
{
    const uint16_t form = ShortTag(file, TIFFTAG_SAMPLEFORMAT);
    image->isFloat = form == SAMPLEFORMAT_IEEEFP;
    if (image->bits == 32)
        return form == SAMPLEFORMAT_UINT || form == SAMPLEFORMAT_VOID || image->isFloat;
    return image->bits >= 1 && image->bits <= 16 &&
           (form == SAMPLEFORMAT_UINT || form == SAMPLEFORMAT_VOID);
}

bool IsFax(uint16_t compression)
{
    return compression == COMPRESSION_CCITTRLE || compression == COMPRESSION_CCITTRLEW ||
           compression == COMPRESSION_CCITTFAX3 || compression == COMPRESSION_CCITTFAX4;
}

// Some writers leave the tag out; then the number of samples tells.
uint16_t Photometric(const TiffFile& file, const TiffImage& image)
{
    uint16_t value = 0;
    if (file.library->get(file.tiff, TIFFTAG_PHOTOMETRIC, &value))
        return value;
    if (image.samples >= 3)
        return PHOTOMETRIC_RGB;
    return IsFax(image.compression) ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK;
}

// How the values of a colour map count: over all 16 bits, as they should; in the upper byte alone;
// or as 8 bits, as some writers had it.
enum class MapScale { Whole, Upper, Lower };

MapScale ScaleOf(uint16_t* const (&channels)[3], uint32_t count)
{
    uint32_t all = 0;
    for (const uint16_t* channel : channels)
        for (uint32_t i = 0; i < count; ++i)
            all |= channel[i];
    if (all <= 255)
        return MapScale::Lower;
    return (all & 255) == 0 ? MapScale::Upper : MapScale::Whole;
}

uint8_t MapValue(uint32_t value, MapScale scale)
{
    if (scale == MapScale::Whole)
        return Narrow16(value);
    return static_cast<uint8_t>(scale == MapScale::Upper ? value >> 8 : value);
}

bool ReadTable(const TiffFile& file, TiffImage* image)
{
    uint16_t* channels[3] = {};
    if (image->bits > 8 ||
        !file.library->get(file.tiff, TIFFTAG_COLORMAP, &channels[0], &channels[1], &channels[2]))
        return false;
    const uint32_t count = 1u << image->bits;
    const MapScale scale = ScaleOf(channels, count);
    for (uint32_t c = 0; c < 3; ++c)
        for (uint32_t i = 0; i < count; ++i)
            image->table[i][c] = MapValue(channels[c][i], scale);
    return true;
}

bool HasFourInks(const TiffFile& file)
{
    return ShortTag(file, TIFFTAG_INKSET) == INKSET_CMYK;
}

void SetColors(TiffImage* image, TiffColors colors, uint32_t samples)
{
    image->colors = colors;
    image->colorSamples = samples;
}

// Of compressed colour differences the library gives red, green and blue rows.
bool PrepareJpegRows(const TiffFile& file, TiffImage* image)
{
    if (image->compression != COMPRESSION_JPEG || image->separate || image->samples != 3)
        return false;
    SetColors(image, TiffColors::Rgb, 3);
    return file.library->set(file.tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB) != 0;
}

// What the library shows and nobody else knows: colour differences, L*a*b*, logarithms.
bool PrepareConversion(const TiffFile& file, TiffImage* image)
{
    char reason[1024];
    // The rows are wanted as they lie in the file.
    if (!file.library->canConvert(file.tiff, reason) ||
        !file.library->set(file.tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT))
        return false;
    SetColors(image, TiffColors::Rgb, 3);
    image->converted = true;
    image->separate = false;
    image->bits = 8;
    image->isFloat = false;
    image->samples = 4;
    image->alphaSample = 3;
    image->alpha = TiffAlpha::Associated;
    return true;
}

bool ReadColors(const TiffFile& file, TiffImage* image)
{
    switch (Photometric(file, *image)) {
    case PHOTOMETRIC_MINISBLACK:
        SetColors(image, TiffColors::Grey, 1);
        break;
    case PHOTOMETRIC_MINISWHITE:
        SetColors(image, TiffColors::InvertedGrey, 1);
        break;
    case PHOTOMETRIC_RGB:
        SetColors(image, TiffColors::Rgb, 3);
        break;
    case PHOTOMETRIC_PALETTE:
        SetColors(image, TiffColors::Palette, 1);
        if (!ReadTable(file, image))
            return false;
        break;
    case PHOTOMETRIC_SEPARATED:
        SetColors(image, TiffColors::Inks, 4);
        if (!HasFourInks(file))
            return false;
        break;
    case PHOTOMETRIC_YCBCR:
        return PrepareJpegRows(file, image) || PrepareConversion(file, image);
    case PHOTOMETRIC_CIELAB:
    case PHOTOMETRIC_LOGL:
    case PHOTOMETRIC_LOGLUV:
        return PrepareConversion(file, image);
    default:
        return false;
    }
    return image->samples >= image->colorSamples && ReadSampleForm(file, image);
}

// The first of the samples beside the colours that says to be alpha; others are no colour. Over
// inks and inverted greys only straight alpha has a plain meaning.
bool ReadAlpha(const TiffFile& file, TiffImage* image)
{
    if (image->converted)
        return true;
    uint16_t count = 0;
    uint16_t* kinds = nullptr;
    (void)file.library->getDefaulted(file.tiff, TIFFTAG_EXTRASAMPLES, &count, &kinds);
    for (uint32_t i = 0; kinds && i < count && image->colorSamples + i < image->samples; ++i) {
        if (kinds[i] == EXTRASAMPLE_UNSPECIFIED)
            continue;
        image->alphaSample = image->colorSamples + i;
        image->alpha =
            kinds[i] == EXTRASAMPLE_ASSOCALPHA ? TiffAlpha::Associated : TiffAlpha::Unassociated;
        break;
    }
    return image->alpha != TiffAlpha::Associated || image->colors == TiffColors::Grey ||
           image->colors == TiffColors::Rgb;
}

// The most bytes that one byte of the data can stand for; 0 where there is no such limit.
uint64_t MostExpansion(uint16_t compression)
{
    switch (compression) {
    case COMPRESSION_NONE:
        return 1;
    case COMPRESSION_PACKBITS: // two bytes make 128
        return 64;
    case COMPRESSION_LZW: // twelve bits make 4096 at the most
        return 2731;
    case COMPRESSION_ADOBE_DEFLATE:
    case COMPRESSION_DEFLATE: // two bits make 258
        return 1032;
    default:
        return 0;
    }
}

bool FitsIntoFile(const TiffFile& file, const TiffImage& image)
{
    const uint64_t expansion = MostExpansion(image.compression);
    const uint64_t bytes = TiffRowBytes(image, image.width) * TiffPlanes(image) * image.height;
    return expansion == 0 || image.converted || bytes / expansion <= file.bytes->size;
}

// What the library will write is what there is room for.
bool AgreesWithLibrary(const TiffFile& file, const TiffImage& image)
{
    if (image.converted)
        return true;
    const TiffLibrary& library = *file.library;
    if (!image.tiled)
        return library.rowBytes(file.tiff) == TiffRowBytes(image, image.width);
    const uint64_t rowBytes = TiffRowBytes(image, image.tileWidth);
    return uint64_t{image.tileWidth} * image.bits % 8 == 0 &&
           library.tileRowBytes(file.tiff) == rowBytes &&
           library.tileBytes(file.tiff) == rowBytes * image.tileHeight;
}

} // namespace

bool ReadTiffImage(TiffFile* file, TiffImage* image)
{
    *image = {};
    if (!ReadSizes(*file, image) || !ReadSamples(*file, image) || !ReadColors(*file, image) ||
        !ReadAlpha(*file, image) || !FitsIntoFile(*file, *image) ||
        !AgreesWithLibrary(*file, *image))
        return false;
    image->paletteMissing =
        image->colors == TiffColors::Grey &&
        WrittenTag(file->bytes, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK) == PHOTOMETRIC_PALETTE;
    void* profile = nullptr;
    if (file->library->get(file->tiff, TIFFTAG_ICCPROFILE, &image->profileBytes, &profile))
        image->profile = profile;
    return true;
}

uint64_t TiffRowBytes(const TiffImage& image, uint32_t width)
{
    const uint64_t samples = image.separate ? 1 : image.samples;
    return (uint64_t{width} * samples * image.bits + 7) / 8;
}
