// Reads a stream by lines and bytes through a buffer of its own. Lines end in LF; a CR right before
// that LF is not part of the line. What the buffer holds has been taken out of the stream: who
// wants the stream to stand right behind a line gives the reader a buffer of one byte. The stream
// stays the caller's. One thread at a time.
#pragma once

#include "foundation/Allocator.h"
#include "foundation/Stream.h"

class LineReader
{
public:
    /// Null makes a malloc allocator that the reader owns. `bufferSize` in bytes.
    LineReader(Allocator* allocator, u32 bufferSize);
    ~LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    /// Makes the buffer. BadArgument for null, Failed when a stream is attached already, NoMemory.
    [[nodiscard]] i32 Attach(Stream* stream);
    /// Frees the buffer and forgets stream and bytes; another Attach may follow. Always Done.
    i32 Detach();
    /// Fills the buffer anew; what was left in it is lost. Done, also when the stream answered
    /// success with no bytes; NothingDone when the stream answered 0; Failed when it failed or none
    /// is attached; NoMemory without an allocator.
    i32 Fill();
    /// Done with `*end` untouched while bytes are buffered. Otherwise fills, and `*end` is 1 when
    /// that gave less than Done and else 0. A stream that ends by answering success with no bytes
    /// is thus never at its end. Failed for null.
    i32 AtEnd(i32* end);
    /// Reads `*count` bytes and puts the number got into `*count`; with a null `count` one byte.
    /// Failed when a fill gave less than Done, so at an end answered by 0 too, and also when some
    /// bytes were got before it. After a success with no bytes, Done when some were got, else
    /// NothingDone. BadArgument for a null `out`.
    i32 ReadBytes(void* out, u32* count);
    /// Reads up to the next LF into `line` of `*length` bytes, terminates it and puts the bytes
    /// stored into `*length`. Where the stream ends first, the line ends there, a final CR stays,
    /// and the result is Failed after a failure or an end answered by 0, else Done. A line that
    /// fills `line` is cut: Done, `*length` unchanged and no terminator; its rest is the next line.
    /// Done at once for a capacity of 0. Failed without stream or length, BadArgument for a null
    /// `line`.
    i32 ReadLine(char* line, u32* length);

private:
    Allocator* allocator;
    Allocator* ownedAllocator;
    Stream* stream;
    u8* buffer;
    u32 bufferSize;
    u32 cursor;
    u32 fill; // bytes in the buffer
};
