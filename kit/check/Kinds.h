// The seven kinds of plugins: their words, the function that does their work, and what each may
// export. Kinds are counted from 0 and taken together as bits.
#pragma once

#include "foundation/Types.h"

#include <string>
#include <vector>

namespace plugincheck
{

enum Kind : u32 { Input, Output, Print, Effect, Adjust, Scale, Subtract, KindCount };

constexpr u32 Bit(Kind kind)
{
    return 1U << kind;
}
constexpr u32 AllKinds = (1U << KindCount) - 1;
/// Those that change a picture in place.
constexpr u32 Changers = Bit(Effect) | Bit(Adjust) | Bit(Scale) | Bit(Subtract);
/// Those at whose every use the host warns when Configure is missing.
constexpr u32 Configured = Bit(Input) | Bit(Output) | Bit(Effect) | Bit(Adjust);

/// The kind's word, such as "INPUT".
const char* KindWord(Kind kind);
/// False when no kind has this word; small letters are another word.
bool KindOfWord(const std::string& word, Kind* kind);
/// The export that does the work, such as "GetImage".
const char* WorkExport(Kind kind);
/// Every function that a plugin of the kind may export.
std::vector<std::string> AllowedExports(Kind kind);

} // namespace plugincheck
