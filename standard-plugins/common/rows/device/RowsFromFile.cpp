#include "standard-plugins/common/rows/device/RowsFromFile.h"

#include "standard-plugins/common/PluginResult.h"

namespace
{

struct Copying {
    RowReading* rows;
    uint64_t askedAt;
};

// The length is not known, so that nothing of the rows' work counts as done.
bool MayGoOn(void* self, uint64_t bytes)
{
    constexpr uint64_t askedEach = 64 * 1024;
    auto* copying = static_cast<Copying*>(self);
    if (!copying->rows->callback || bytes - copying->askedAt < askedEach)
        return true;
    copying->askedAt = bytes;
    const uint32_t total = copying->rows->progress.total;
    return copying->rows->callback(0, total ? total : 1) >= 0;
}

} // namespace

bool CopyRest(RowReading* rows, TemporaryFile* file)
{
    Copying copying = {rows, 0};
    const int32_t result = CopyToTemporaryFile(file, &rows->reader, MayGoOn, &copying);
    return result >= 0 || FailReading(rows, result);
}
