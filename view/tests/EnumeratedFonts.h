// The fonts that the platform enumerates, under a test's hand: the machine's own, or those that the
// test makes up, or a failure.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

class EnumeratedFonts
{
public:
    EnumeratedFonts();
    ~EnumeratedFonts();
    EnumeratedFonts(const EnumeratedFonts&) = delete;
    EnumeratedFonts& operator=(const EnumeratedFonts&) = delete;

    struct Made {
        std::u16string name;
        DWORD kind;
    };
    std::vector<Made> made; // none: the machine's own
    bool fails = false;
    unsigned families = 0; // how often all families were asked for
};
