// The platform's calls by which text is drawn, led through the test: it sees their order, has any
// of them fail, and puts the ink itself, since without the toolkit there are no letters. Everything
// but the letters is the platform's own.
#pragma once

#include "foundation/Types.h"

#include <windows.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

class DrawingCalls
{
public:
    DrawingCalls();
    ~DrawingCalls();
    DrawingCalls(const DrawingCalls&) = delete;
    DrawingCalls& operator=(const DrawingCalls&) = delete;

    /// A call to DrawTextW.
    struct Letters {
        std::u16string text; // null as "null"
        RECT place;
        UINT format;
    };

    /// The bitmap that was made last.
    struct Ink {
        i32 width = 0;
        i32 height = 0;
        size_t rowBytes = 0;
        u8* bytes = nullptr; // from the bottom row up
        std::vector<u8> All() const
        {
            return {bytes, bytes + rowBytes * static_cast<size_t>(height)};
        }
        /// A pixel of it, counted from the top.
        void Set(i32 x, i32 y) const
        {
            bytes[rowBytes * static_cast<size_t>(height - 1 - y) + static_cast<size_t>(x / 8)] |=
                static_cast<u8>(128 >> x % 8);
        }
    };

    std::vector<std::string> log;
    std::string fails; // the call that gives nothing, by its word in the log
    std::vector<Letters> letters;
    LOGFONTW font = {};
    BITMAPINFOHEADER header = {};
    RGBQUAD colors[2] = {};
    Ink ink;
    /// Stands in for the drawing of letters; DrawTextW's answer. Without it nothing is drawn.
    std::function<int(const Ink&, RECT* place, UINT format)> draw;

    /// Notes a call; false when it is to fail.
    bool Note(const std::string& call);
    /// The word of an object that was made here.
    std::map<void*, std::string> names;
};
