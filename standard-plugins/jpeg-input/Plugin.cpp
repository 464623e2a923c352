// What the host is told of the JPEG reader.
#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/PluginSettings.h"
#include "standard-plugins/common/reading/Reader.h"
#include "standard-plugins/jpeg-input/DeviceFile.h"
#include "standard-plugins/jpeg-input/JpegDecoder.h"

namespace
{

const PluginFormatText formats[] = {
    {{PLUGIN_TEXT("JPEG image (*.jpg)"), PLUGIN_TEXT("JPEG 画像 (*.jpg)")},
     PLUGIN_TEXT("*.jpg;*.jpeg;*.jpe;*.jfif")},
};

// By how much a quick decode makes the picture smaller: 1, 2, 4 or 8 times.
const PluginSetting fastSetting = {PLUGIN_TEXT("JpegInputFastDivisor"), 1, 8, 8};

// The codec scales by powers of two; what lies between is brought down to one.
uint32_t DivisorOf(uint32_t setting)
{
    return setting >= 8 ? 8 : setting >= 4 ? 4 : setting >= 2 ? 2 : 1;
}

} // namespace

const ReaderPlugin readerPlugin = {
    {
        PLUGIN_TEXT("TX_INPUT"),
        {PLUGIN_TEXT("JPEG reader"), PLUGIN_TEXT("JPEG 読み込み")},
        PLUGIN_TEXT("1.1"),
        PLUGIN_TEXT("2026-11-22"),
        {PLUGIN_TEXT("Reads JPEG pictures, baseline and progressive, grey, colour and CMYK."),
         PLUGIN_TEXT(
             "ベースラインとプログレッシブの JPEG 画像 (グレー、カラー、CMYK) を読み込みます。")},
        formats,
        1,
    },
    ReadJpegPicture,
    ReadJpegSize,
    nullptr,
};

extern "C" {

// The host hands a path over here and never a stream.
TAVRIX_EXPORT int32_t TAVRIX_CALL GetImageFast(
    const TavrixChar* path, PluginStreamRecord* stream, TavrixImageHandle image,
    RasterFunctionTable* rasters, PaletteFunctionTable*, TavrixProgressCallback progress,
    TavrixMessageCallback message, TavrixPutPropertyCallback, TavrixGetPropertyCallback get)
{
    const uint32_t divisor = DivisorOf(ReadSetting(fastSetting, get));
    if (!path)
        return ReadSmallJpeg({stream, image, rasters, progress, message, get}, divisor);
    DeviceFile file;
    if (!OpenDeviceFile(&file, path))
        return PluginFailed;
    const int32_t result =
        ReadSmallJpeg({&file.stream, image, rasters, progress, message, get}, divisor);
    CloseDeviceFile(&file);
    return result;
}

} // extern "C"
