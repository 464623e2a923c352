// The head of an HTTP response (RFC 1945 section 6): the status line and the header lines, read
// byte by byte from a stream, so that the stream stands at the first byte of the body afterwards.
#pragma once

#include "foundation/LineReader.h"
#include "foundation/Stream.h"
#include "settings/PropertyList.h"

/// Bytes of a line that are looked at. What is beyond them is the next line.
enum : u32 { StatusLineSize = 64, HeaderLineSize = 1024 };

struct HttpHead {
    i32 fields; // of the status line that could be read: 3 for one that is whole
    u32 status; // its code
};

/// Reads the status line into `head` and the header lines into `headers`, which is not cleared: by
/// the names that the server spells, a repeated name replacing the earlier value. Names that the
/// list does not take are dropped. Ends behind the empty line, behind a line without ":" (the rest
/// then counts as body), or with the stream. Done, or the code of what could not be read or made.
[[nodiscard]] i32 ReadHttpHead(Stream* source, PropertyList& headers, HttpHead& head);

/// Reads header lines up to the empty one. `reader` stands behind the status line.
/// Failed for a line without ":".
[[nodiscard]] i32 ReadHeaderLines(LineReader& reader, PropertyList& headers);
