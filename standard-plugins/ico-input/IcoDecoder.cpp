#include "standard-plugins/ico-input/IcoDecoder.h"

#include "standard-plugins/common/PluginResult.h"
#include "standard-plugins/common/rows/device/RowsFromFile.h"
#include "standard-plugins/ico-input/IcoBitmap.h"
#include "standard-plugins/ico-input/IcoDirectory.h"
#include "standard-plugins/ico-input/IcoPng.h"

#include <stdlib.h>

namespace
{

struct IcoDecode {
    RowReading rows;
    TemporaryFile file;
    IcoDirectory directory;
};

bool FindPicture(IcoDecode* decode)
{
    RowReading& rows = decode->rows;
    return ReadIcoMark(&rows, &decode->directory) && CopyRest(&rows, &decode->file) &&
           (FindBestPicture(&decode->file, &decode->directory) || FailReading(&rows, PluginFailed));
}

bool ReadPicture(IcoDecode* decode, const ReadOrder& order)
{
    if (!FindPicture(decode))
        return false;
    const IcoPicture& picture = decode->directory.best;
    const Background ground = ReadBackground(icoBackground, order.get);
    decode->rows.damaged = decode->directory.broken;
    return picture.isPng ? ReadIcoPng(&decode->rows, &decode->file, picture, ground)
                         : ReadIcoBitmap(&decode->rows, &decode->file, picture, ground);
}

int32_t Finish(IcoDecode* decode, bool read)
{
    const int32_t result = read ? EndRowReading(decode->rows) : decode->rows.result;
    CloseRowReading(&decode->rows);
    CloseTemporaryFile(&decode->file);
    free(decode);
    return result;
}

} // namespace

int32_t ReadIcoPicture(const ReadOrder& order)
{
    auto* decode = static_cast<IcoDecode*>(calloc(1, sizeof(IcoDecode)));
    if (!decode)
        return PluginNoMemory;
    return Finish(decode, OpenRowReading(&decode->rows, order) && ReadPicture(decode, order));
}

int32_t ReadIcoSize(PluginStreamRecord* stream, uint32_t* width, uint32_t* height)
{
    auto* decode = static_cast<IcoDecode*>(calloc(1, sizeof(IcoDecode)));
    if (!decode)
        return PluginNoMemory;
    const bool read = OpenHeaderReading(&decode->rows, stream) && FindPicture(decode);
    *width = decode->directory.best.width;
    *height = decode->directory.best.height;
    return Finish(decode, read);
}
