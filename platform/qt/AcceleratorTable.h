// Accelerator tables as data: which key with which modifiers is which command, and the compiled
// form they are read from. No messages and no toolkit here.
#pragma once

#include <windows.h>

#include <optional>
#include <vector>

namespace tavrix::platform
{

struct KeyModifiers {
    bool shift = false;
    bool control = false;
    bool alt = false;
    bool operator==(const KeyModifiers&) const = default;
};

struct Accelerator {
    bool virtualKey = true; // false: `key` is a character
    WORD key = 0;
    KeyModifiers modifiers;
    WORD command = 0;
};

/// Reads a compiled table: entries of 8 bytes up to the one that is marked last, or to the end.
/// Empty when there is no whole entry.
CE_API std::optional<std::vector<Accelerator>> ParseAccelerators(const void* bytes, size_t size);

/// The entry for a key with exactly these modifiers; null when there is none.
CE_API const Accelerator* FindVirtualKey(const std::vector<Accelerator>& table, WORD key,
                                         const KeyModifiers& modifiers);
/// The entry for a typed character. Shift and control are part of the character; only the alt key
/// must agree.
CE_API const Accelerator* FindCharacter(const std::vector<Accelerator>& table, WORD character,
                                        bool alt);

} // namespace tavrix::platform
