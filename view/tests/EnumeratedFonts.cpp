#include "view/tests/EnumeratedFonts.h"

#include <dlfcn.h>

namespace
{

EnumeratedFonts* current = nullptr;

} // namespace

EnumeratedFonts::EnumeratedFonts()
{
    current = this;
}

EnumeratedFonts::~EnumeratedFonts()
{
    current = nullptr;
}

// Stands before the platform's in every program that links this.
int WINAPI EnumFontFamiliesW(HDC dc, LPCWSTR family, FONTENUMPROCW take, LPARAM parameter)
{
    if (current != nullptr && family == nullptr)
        ++current->families;
    if (current != nullptr && current->fails)
        return 0;
    if (current == nullptr || current->made.empty())
        return reinterpret_cast<decltype(&EnumFontFamiliesW)>(
            dlsym(RTLD_NEXT, "EnumFontFamiliesW"))(dc, family, take, parameter);
    int answer = 1;
    for (const EnumeratedFonts::Made& font : current->made) {
        LOGFONTW record = {};
        font.name.copy(record.lfFaceName, LF_FACESIZE - 1);
        const TEXTMETRICW metric = {};
        answer = take(&record, &metric, font.kind, parameter);
        if (answer == 0)
            break;
    }
    return answer;
}
