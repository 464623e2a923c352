#include "foundation/PathText.h"

#include "foundation/BoundedText.h"

void TurnSlashes(WCHAR* path)
{
    for (; *path != 0; ++path) {
        if (*path == TEXT('/'))
            *path = TEXT('\\');
    }
}

void ResolvePath(WCHAR* out, u32 capacity, const WCHAR* base, const WCHAR* path)
{
    (void)CopyText(out, capacity, base != nullptr ? base : TEXT(""));
    // Meant as it stands: a leading separator does not make a path absolute, it only saves this
    // one.
    const bool isSeparated = *path == TEXT('\\') || *path == TEXT('/');
    const bool isAtRoot = out[0] == TEXT('\\') && out[1] == 0;
    if (!isSeparated && !isAtRoot)
        (void)AppendText(out, capacity, TEXT("\\"));
    (void)AppendText(out, capacity, path);
    TurnSlashes(out);
}
