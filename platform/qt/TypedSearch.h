// How a list is walked by typing: what is typed in quick succession is the beginning of a row's
// text, and one letter again and again goes from row to row. User-interface thread.
#pragma once

#include <windows.h>

#include <string>

namespace tavrix::platform
{

class TypedSearch
{
public:
    /// Takes one more unit and answers the row to go to from `current` (-1: none), by asking
    /// `textOf` (a row) for texts; -1 when no row begins so.
    template <class TextOf>
    int Take(char16_t unit, int count, int current, const TextOf& textOf)
    {
        const std::u16string beginning = Add(unit);
        const bool repeated = typed.size() != beginning.size() || typed.size() == 1;
        const int start = current + (repeated || current < 0 ? 1 : 0);
        for (int i = 0; i < count; ++i) {
            const int row = (start + i) % count;
            if (BeginsWith(textOf(row), beginning))
                return row;
        }
        return -1;
    }
    /// Nothing is being typed, so that Space does what it does otherwise.
    bool IsIdle() const;

private:
    /// What to look for now.
    std::u16string Add(char16_t unit);
    static bool BeginsWith(const std::u16string& text, const std::u16string& beginning);

    std::u16string typed;
    DWORD typedAt = 0;
};

} // namespace tavrix::platform
