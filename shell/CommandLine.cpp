#include "shell/CommandLine.h"

#include "foundation/BoundedText.h"
#include "foundation/TextSearch.h"

#include <stdlib.h>

namespace
{
constexpr u32 NameCapacity = 1024;
constexpr WCHAR Quote = TEXT('"');
} // namespace

WCHAR* TakeQuotedName(const WCHAR* commandLine)
{
    if (commandLine == nullptr || commandLine[0] != Quote)
        return nullptr;
    auto* name = static_cast<WCHAR*>(malloc(NameCapacity * sizeof(WCHAR)));
    if (name == nullptr)
        return nullptr;
    CopyText(name, NameCapacity, commandLine + 1);
    const WCHAR* last = nullptr;
    if (FindLastChar(name, Quote, &last) > 0)
        name[last - name] = 0;
    return name;
}
