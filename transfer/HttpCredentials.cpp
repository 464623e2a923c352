#include "transfer/HttpCredentials.h"

#include "foundation/BlockStream.h"
#include "foundation/BoundedText.h"
#include "foundation/DualString.h"
#include "foundation/MemoryStream.h"
#include "transfer/Base64Codec.h"

#include <string.h>

namespace
{

constexpr u32 BlockSize = 128;
constexpr u32 LineLength = 76;

i32 WriteText(BlockStream& stream, const char* text)
{
    u32 length = static_cast<u32>(strlen(text));
    return stream.Write(text, &length);
}

i32 WriteNarrowed(BlockStream& stream, const WCHAR* text)
{
    DualString both;
    both.Assign(text);
    const char* const narrow = both.GetNarrow();
    return *text != 0 && *narrow == 0 ? NoMemory : WriteText(stream, narrow);
}

} // namespace

i32 EncodeCredentials(const WCHAR* user, const WCHAR* password,
                      WCHAR (&encoded)[HttpCredentialSize])
{
    encoded[0] = 0;
    BlockStream plain;
    const i64 start = 0;
    if (plain.Open(BlockSize, nullptr) < Done || WriteNarrowed(plain, user) < Done ||
        WriteText(plain, ":") < Done || WriteNarrowed(plain, password) < Done ||
        plain.Seek(&start, nullptr, 0) < Done)
        return NoMemory;
    char text[HttpCredentialSize] = {};
    MemoryStream target;
    if (target.Open(text, sizeof(text) - 1, 0, nullptr) < Done)
        return NoMemory;
    // Fails when the text is full, and what is in it then is what counts.
    (void)Base64Codec().Encode(&plain, &target, LineLength);
    DualString wide;
    wide.AssignNarrow(text);
    (void)CopyText(encoded, HttpCredentialSize, wide.Get());
    return *encoded != 0 ? Done : NoMemory;
}
