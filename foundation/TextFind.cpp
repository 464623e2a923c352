#include "foundation/TextFind.h"

#include "foundation/TextSearch.h"
#include "foundation/TextUnits.h"

namespace
{

template <class Char>
const Char* FirstPlace(const Char* haystack, u32 haystackLength, const Char* needle,
                       u32 needleLength)
{
    const Char* const lastPlace = haystack + (haystackLength - needleLength);
    const u32 wanted = SumOfUnits(needle, needleLength);
    u32 sum = SumOfUnits(haystack, needleLength);
    for (const Char* place = haystack;; ++place) {
        if (sum == wanted && AreEqualUnits(place, needle, needleLength))
            return place;
        if (place == lastPlace)
            return nullptr;
        sum += UnitValue(place[needleLength]) - UnitValue(place[0]);
    }
}

template <class Char>
i32 Search(const Char* haystack, const Char* needle, const Char** out)
{
    u32 haystackLength = 0;
    u32 needleLength = 0;
    if (TextLength(haystack, &haystackLength) < Done || TextLength(needle, &needleLength) < Done)
        return Failed;
    // Meant as it stands: a haystack too short is a failure, not a search without a find.
    if (haystackLength < needleLength)
        return Failed;
    const Char* place = FirstPlace(haystack, haystackLength, needle, needleLength);
    if (place == nullptr)
        return NothingDone;
    if (out != nullptr)
        *out = place;
    return Done;
}

} // namespace

i32 FindText(const WCHAR* haystack, const WCHAR* needle, const WCHAR** out)
{
    return Search(haystack, needle, out);
}

i32 FindText(const char* haystack, const char* needle, const char** out)
{
    return Search(haystack, needle, out);
}

i32 FindBytes(const void* data, u32 dataLength, const void* needle, u32 needleLength,
              const void** out)
{
    if (data == nullptr || needle == nullptr || dataLength < needleLength)
        return Failed;
    const u8* place = FirstPlace(static_cast<const u8*>(data), dataLength,
                                 static_cast<const u8*>(needle), needleLength);
    if (place == nullptr)
        return NothingDone;
    if (out != nullptr)
        *out = place;
    return Done;
}
