#include "standard-plugins/gif-input/GifCodeCheck.h"

namespace
{

constexpr uint32_t mostCodes = 4096;
constexpr uint32_t mostBits = 12;

void Clear(GifCodeCheck* check)
{
    check->bits = check->startBits;
    check->next = check->clearCode + 2;
    check->previous = 0;
}

// Pixels of a code that is defined by now; 0 of one that means nothing.
uint32_t LengthOf(const GifCodeCheck& check, uint32_t code)
{
    if (code < check.clearCode)
        return 1;
    if (check.previous == 0 || code > check.next || code >= mostCodes)
        return 0;
    return code == check.next ? check.previous + 1 : check.lengths[code];
}

void TakeCode(GifCodeCheck* check, uint32_t code)
{
    if (code == check->clearCode) {
        Clear(check);
        return;
    }
    const uint32_t length = code == check->clearCode + 1 ? 0 : LengthOf(*check, code);
    if (length == 0) {
        check->ended = true;
        return;
    }
    if (check->previous != 0 && check->next < mostCodes)
        check->lengths[check->next++] = static_cast<uint16_t>(check->previous + 1);
    if (check->next >= 1u << check->bits && check->bits < mostBits)
        ++check->bits;
    check->previous = length;
    check->pixels += length;
}

} // namespace

void StartCodeCheck(GifCodeCheck* check, uint32_t codeSize)
{
    *check = {};
    check->clearCode = 1u << codeSize;
    check->startBits = codeSize + 1;
    Clear(check);
}

void CheckCodes(GifCodeCheck* check, const uint8_t* bytes, size_t count)
{
    for (size_t i = 0; i < count && !check->ended; ++i) {
        check->held |= uint32_t{bytes[i]} << check->heldBits;
        check->heldBits += 8;
        while (check->heldBits >= check->bits && !check->ended) {
            const uint32_t code = check->held & ((1u << check->bits) - 1);
            check->held >>= check->bits;
            check->heldBits -= check->bits;
            TakeCode(check, code);
        }
    }
}
