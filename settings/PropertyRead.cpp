// The reading half of PropertyList: by name, by position, and the conversion behind both.
#include "foundation/Numbers.h"
#include "settings/PropertyList.h"

namespace
{

// Numbers leave name and type of the record as the caller set them.
i32 GiveUnsigned(Variant* out, const WCHAR* text)
{
    u64 number = 0;
    if (ParseUnsigned(text, &number) < 0)
        return Failed;
    out->value = number > UINT32_MAX ? UINT32_MAX : static_cast<u32>(number);
    return Done;
}

// A minus sign is read over and never applied, on purpose: what was stored from -7 comes back as 7,
// and callers rely on it that no negative number comes out.
i32 GiveSigned(Variant* out, const WCHAR* text)
{
    u64 number = 0;
    if (ParseSigned(text, &number) < 0)
        return Failed;
    out->value = static_cast<u32>(number);
    return Done;
}

// The entry's own text, not a copy. A text that memory was lacking for has no value to give.
i32 GiveText(Variant* out, const PropertyEntry& entry)
{
    const void* text = entry.narrowValue;
    if (out->type == VariantWide)
        text = entry.wideValue;
    if (text == nullptr)
        return Failed;
    out->name = entry.name;
    out->value = reinterpret_cast<uintptr_t>(text);
    return Done;
}

i32 GiveFromWide(Variant* out, const PropertyEntry& entry)
{
    switch (out->type) {
    case VariantUnsigned:
        return GiveUnsigned(out, entry.wideValue);
    case VariantSigned:
        return GiveSigned(out, entry.wideValue);
    case VariantWide:
    case VariantNarrow:
        return GiveText(out, entry);
    default:
        return Failed;
    }
}

// Bytes are given as text only: "12" stored as bytes is no number, unlike "12" stored as wide text.
i32 GiveFromNarrow(Variant* out, const PropertyEntry& entry)
{
    if (out->type != VariantWide && out->type != VariantNarrow)
        return Failed;
    return GiveText(out, entry);
}

i32 GiveFromDouble(Variant* out, const PropertyEntry& entry)
{
    if (entry.doubleValue == nullptr)
        return Failed;
    switch (out->type) {
    case VariantUnsigned:
        out->value = TruncateToUnsigned(*entry.doubleValue);
        break;
    case VariantSigned:
        out->value = static_cast<u32>(TruncateToSigned(*entry.doubleValue));
        break;
    case VariantDouble:
        out->value = reinterpret_cast<uintptr_t>(entry.doubleValue);
        break;
    default:
        return Failed;
    }
    out->name = entry.name;
    return Done;
}

// No list holds such an entry, since numbers are stored as text. If one did, the record would be
// filled and the result would be a failure all the same.
i32 GiveFromUnsigned(Variant* out, const PropertyEntry& entry)
{
    if (out->type == VariantUnsigned || out->type == VariantSigned) {
        out->name = entry.name;
        out->type = VariantUnsigned;
        out->value = static_cast<u32>(reinterpret_cast<uintptr_t>(entry.wideValue));
    }
    return Failed;
}

} // namespace

i32 PropertyList::Convert(Variant* out, const PropertyEntry& entry)
{
    if (out->type == VariantNone || entry.type == VariantNone) {
        *out = Variant{};
        return Failed;
    }
    switch (entry.type) {
    case VariantUnsigned:
        return GiveFromUnsigned(out, entry);
    case VariantWide:
        return GiveFromWide(out, entry);
    case VariantNarrow:
        return GiveFromNarrow(out, entry);
    case VariantDouble:
        return GiveFromDouble(out, entry);
    default:
        return UnknownType;
    }
}

i32 PropertyList::Get(Variant* item) const
{
    if (item == nullptr || item->name == nullptr)
        return BadArgument;
    i32 index = -1;
    const i32 found = Find(item->name, &index);
    if (found < 0)
        return found;
    if (found == NothingDone) {
        item->type = VariantNone;
        item->value = 0;
        return NoSuchName;
    }
    return Convert(item, entries[index]) < 1 ? NotConvertible : Done;
}

i32 PropertyList::GetUnsigned(const WCHAR* name, u32* out) const
{
    if (name == nullptr || out == nullptr)
        return BadArgument;
    Variant item{name, VariantUnsigned, 0};
    const i32 result = Get(&item);
    if (result > 0)
        *out = static_cast<u32>(item.value);
    return result;
}

i32 PropertyList::GetSigned(const WCHAR* name, i32* out) const
{
    if (name == nullptr || out == nullptr)
        return BadArgument;
    Variant item{name, VariantSigned, 0};
    const i32 result = Get(&item);
    if (result > 0)
        *out = static_cast<i32>(static_cast<u32>(item.value));
    return result;
}

i32 PropertyList::GetWide(const WCHAR* name, const WCHAR** out) const
{
    if (name == nullptr || out == nullptr)
        return BadArgument;
    Variant item{name, VariantWide, 0};
    const i32 result = Get(&item);
    if (result > 0)
        *out = reinterpret_cast<const WCHAR*>(item.value);
    return result;
}

i32 PropertyList::GetAt(u32 index, Variant* item) const
{
    if (item == nullptr)
        return BadArgument;
    if (index >= Capacity) {
        *item = Variant{};
        return NoSuchName;
    }
    if (entries == nullptr)
        return Failed;
    item->name = entries[index].name;
    return Convert(item, entries[index]) < 1 ? NotConvertible : Done;
}
