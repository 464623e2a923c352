// The text of an HTTP/1.0 request (RFC 1945 section 5). Lines end in a bare LF, the request line is
// absolute with and without a proxy, and a Range is always asked for, also from 0 on: all meant.
// Nothing is cut here: a text takes the room that it needs.
#pragma once

#include "foundation/DualString.h"
#include "settings/PropertyList.h"

struct HttpRequestParts {
    const WCHAR* path; // the absolute address
    const WCHAR* host;
    const WCHAR* position;     // the first byte that is asked for, in digits
    const WCHAR* extraHeaders; // whole lines
    const WCHAR* credentials;  // empty for none
};

/// Done, or NoMemory with an empty text.
[[nodiscard]] i32 FormatRequest(const HttpRequestParts& parts, DualString& text);

/// A line for each entry that has a text, in list order; `list` may be null. Done or NoMemory.
[[nodiscard]] i32 FormatExtraHeaders(const PropertyList* list, DualString& text);

/// The bytes that go out, in the device's ANSI code page; valid until the text's next change.
/// Meant: `*count` is the number of the wide text's units, so that characters of two bytes cost the
/// request its end; but never more than there are. Done or NoMemory.
[[nodiscard]] i32 RequestBytes(DualString& text, const char** bytes, u32* count);

/// Assign, with a shortage of memory told: Done or NoMemory.
[[nodiscard]] i32 Keep(DualString& target, const WCHAR* text);
