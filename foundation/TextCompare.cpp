#include "foundation/TextCompare.h"

#include "foundation/TextSearch.h"
#include "foundation/TextUnits.h"

namespace
{

constexpr u32 CollatedUnits = 128;

/// The place of each unit below 128 in the order of a list.
struct CollationTable {
    u8 entries[CollatedUnits];
};

constexpr CollationTable MakeCollationTable()
{
    CollationTable table{};
    u8 next = 0;
    const auto append = [&table, &next](u32 first, u32 last) {
        for (u32 unit = first; unit <= last; ++unit)
            table.entries[unit] = next++;
    };
    append(0, '/');
    append(':', '@');
    append('[', '`');
    append('{', CollatedUnits - 1);
    append('0', '9');
    append('a', 'z');
    for (u32 letter = 'A'; letter <= 'Z'; ++letter)
        table.entries[letter] = table.entries[letter - 'A' + 'a'];
    return table;
}

constexpr CollationTable Collation = MakeCollationTable();
constexpr u32 CollatedUnit(u32 value)
{
    return value < CollatedUnits ? Collation.entries[value] : value;
}

static_assert(CollatedUnit(':') == 48 && CollatedUnit('[') == 55 && CollatedUnit('{') == 61);
static_assert(CollatedUnit('0') == 66 && CollatedUnit('a') == 76 && CollatedUnit('Z') == 101);

i32 Order(u32 a, u32 b)
{
    if (a == b)
        return 0;
    return a > b ? 1 : -1;
}

template <class Char>
i32 IsSame(const Char* a, const Char* b)
{
    u32 length = 0;
    u32 otherLength = 0;
    if (TextLength(a, &length) < Done || TextLength(b, &otherLength) < Done)
        return Failed;
    if (length != otherLength || SumOfUnits(a, length) != SumOfUnits(b, length))
        return NothingDone;
    return AreEqualUnits(a, b, length) ? Done : NothingDone;
}

template <class Char>
i32 Collate(const Char* a, const Char* b, i32* order)
{
    if (a == nullptr || b == nullptr || order == nullptr)
        return Failed;
    // The final zero sorts before all units, so that a shorter text comes first of itself.
    while (*a != 0 && CollatedUnit(UnitValue(*a)) == CollatedUnit(UnitValue(*b))) {
        ++a;
        ++b;
    }
    *order = Order(CollatedUnit(UnitValue(*a)), CollatedUnit(UnitValue(*b)));
    return Done;
}

template <class Char>
i32 CompareFolded(const Char* a, const Char* b, u32 count)
{
    if (a == nullptr || b == nullptr)
        return 0;
    for (u32 i = 0; i < count; ++i) {
        const i32 order = Order(FoldedUnit(a[i]), FoldedUnit(b[i]));
        if (order != 0 || a[i] == 0)
            return order;
    }
    return 0;
}

template <class Char>
i32 CompareAllFolded(const Char* a, const Char* b)
{
    u32 length = 0;
    u32 otherLength = 0;
    if (TextLength(a, &length) < Done || TextLength(b, &otherLength) < Done)
        return 0;
    return CompareFolded(a, b, length > otherLength ? length : otherLength);
}

} // namespace

i32 IsSameText(const WCHAR* a, const WCHAR* b)
{
    return IsSame(a, b);
}

i32 IsSameText(const char* a, const char* b)
{
    return IsSame(a, b);
}

i32 CompareCollated(const WCHAR* a, const WCHAR* b, i32* order)
{
    return Collate(a, b, order);
}

i32 CompareCollated(const char* a, const char* b, i32* order)
{
    return Collate(a, b, order);
}

i32 CompareNoCase(const WCHAR* a, const WCHAR* b, u32 count)
{
    return CompareFolded(a, b, count);
}

i32 CompareNoCase(const char* a, const char* b, u32 count)
{
    return CompareFolded(a, b, count);
}

i32 CompareNoCaseAll(const WCHAR* a, const WCHAR* b)
{
    return CompareAllFolded(a, b);
}

i32 CompareNoCaseAll(const char* a, const char* b)
{
    return CompareAllFolded(a, b);
}
