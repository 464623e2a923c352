// The head of an HTTP response (RFC 1945 section 6): the status line and the header lines, read
// byte by byte from a stream, so that the stream stands at the first byte of the body afterwards.
#pragma once

#include "foundation/LineReader.h"
#include "foundation/Stream.h"
#include "settings/PropertyList.h"

/// Bytes of a line that are looked at. What is beyond them is the next line, so that a line of just
/// so many bytes is followed by an empty one.
enum : u32 { StatusLineSize = 64, HeaderLineSize = 1024 };

struct HttpHead {
    i32 fields;   // of the status line that could be read: 3 for one that is whole, -1 for an empty
                  // one
    u32 status;   // its code, with fewer fields 0
    i32 isBroken; // 1 when the stream failed before the head's end
};

/// Reads the status line into `head` and the header lines into `headers`, which is not cleared: by
/// the names that the server spells, a repeated name replacing the earlier value. Names that the
/// list does not take are dropped. Ends behind the empty line, behind a line without ":" (the rest
/// then counts as body), or with the stream, however that ends. Done or NoMemory.
[[nodiscard]] i32 ReadHttpHead(Stream* source, PropertyList& headers, HttpHead& head);

/// Reads header lines up to the empty one or the end of the stream. `reader` stands behind the
/// status line. Failed for a line without ":" and for a stream that fails, with the line that this
/// cuts dropped. NoMemory when a line's text could not be made.
[[nodiscard]] i32 ReadHeaderLines(LineReader& reader, PropertyList& headers);
