#include "transfer/HttpRequest.h"

#include "foundation/Result.h"
#include "foundation/TextSearch.h"

#include <string.h>

namespace
{

/// Puts the texts behind each other. One of them may be that of `target`.
i32 Join(const WCHAR* const* texts, u32 count, DualString& target)
{
    SIZE_T units = 0;
    for (u32 i = 0; i < count; ++i) {
        u32 length = 0;
        (void)TextLength(texts[i], &length);
        units += length;
    }
    WCHAR* const joined = static_cast<WCHAR*>(GlobalAlloc(GPTR, (units + 1) * sizeof(WCHAR)));
    if (joined == nullptr)
        return NoMemory;
    WCHAR* end = joined;
    for (u32 i = 0; i < count; ++i)
        for (const WCHAR* unit = texts[i]; *unit != 0; ++unit)
            *end++ = *unit;
    const i32 result = Keep(target, joined);
    GlobalFree(joined);
    return result;
}

template <u32 Count>
i32 Join(const WCHAR* const (&texts)[Count], DualString& target)
{
    return Join(texts, Count, target);
}

} // namespace

i32 FormatRequest(const HttpRequestParts& parts, DualString& text)
{
    const bool hasCredentials = *parts.credentials != 0;
    return Join({TEXT("GET "), parts.path, TEXT(" HTTP/1.0\nHost: "), parts.host,
                 TEXT("\nRange: bytes="), parts.position, TEXT("-\n"), parts.extraHeaders,
                 hasCredentials ? TEXT("Authorization: Basic ") : TEXT(""), parts.credentials,
                 hasCredentials ? TEXT("\n\n") : TEXT("\n")},
                text);
}

i32 FormatExtraHeaders(const PropertyList* list, DualString& text)
{
    text.Clear();
    const i32 count = list != nullptr ? list->Count() : 0;
    for (i32 i = 0; i < count; ++i) {
        Variant entry{nullptr, VariantWide, 0};
        if (list->GetAt(static_cast<u32>(i), &entry) < Done)
            continue;
        const WCHAR* const value = reinterpret_cast<const WCHAR*>(entry.value);
        if (Join({text.Get(), entry.name, TEXT(": "), value, TEXT("\n")}, text) < Done)
            return NoMemory;
    }
    return Done;
}

i32 RequestBytes(DualString& text, const char** bytes, u32* count)
{
    *count = 0;
    (void)TextLength(text.Get(), count);
    *bytes = text.GetNarrow();
    const SIZE_T length = strlen(*bytes);
    if (*count > 0 && length == 0)
        return NoMemory;
    if (length < *count)
        *count = static_cast<u32>(length);
    return Done;
}

i32 Keep(DualString& target, const WCHAR* text)
{
    const bool isEmpty = *text == 0;
    target.Assign(text);
    return isEmpty || *target.Get() != 0 ? Done : NoMemory;
}
