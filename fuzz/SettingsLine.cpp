// One line of the settings file, against the grammar written out once more.
#include "settings/SettingsLine.h"
#include "fuzz/Entry.h"

#include <algorithm>
#include <memory>

namespace
{

struct Parts {
    SettingsLineKind kind = SettingsLineKind::Nothing;
    std::u16string name;
    std::u16string value;
};

Parts PartsOf(const std::u16string& line)
{
    const size_t start = line.find_first_not_of(u" \t");
    if (start == line.npos || line[start] == u';')
        return {};
    if (line[start] == u'[') {
        const size_t end = line.find(u']', start);
        if (end == line.npos)
            return {SettingsLineKind::Broken, u"", u""};
        return {SettingsLineKind::Section, line.substr(start + 1, end - start - 1), u""};
    }
    const size_t nameEnd = std::min(line.find_first_of(u"= \t", start), line.size());
    const size_t equals = line.find_first_not_of(u" \t", nameEnd);
    if (equals == line.npos || line[equals] != u'=')
        return {};
    const size_t value = std::min(line.find_first_not_of(u" \t", equals + 1), line.size());
    return {SettingsLineKind::Key, line.substr(start, nameEnd - start), line.substr(value)};
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::u16string line = UpToZero(Input{data, size}.Units());
    // A block of just its size, so that one cell too far is seen.
    const auto cells = std::make_unique<WCHAR[]>(line.size() + 1);
    std::copy(line.begin(), line.end(), cells.get());
    const SettingsLine got = ParseSettingsLine(cells.get());

    const Parts expected = PartsOf(line);
    Require(got.kind == expected.kind, "the kind of the line");
    const bool isKey = got.kind == SettingsLineKind::Key;
    if (isKey || got.kind == SettingsLineKind::Section)
        Require(got.name != nullptr && got.name == expected.name, "the name");
    if (isKey) {
        Require((got.value == nullptr) == expected.value.empty(), "no value is null");
        Require(got.value == nullptr || got.value == expected.value, "the value");
    }
    return 0;
}
