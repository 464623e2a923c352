// Reads the little-endian words and zero-terminated texts of compiled resources from a run of
// bytes, never behind its end: a read that does not fit gives zero and leaves the reader failed, so
// that a parser looks once, at its end. Positions count from the start of the run, as the alignment
// rules of the formats do.
#pragma once

#include <windows.h>

#include <cstring>
#include <string>

namespace tavrix::platform
{

class ByteReader
{
public:
    ByteReader(const void* bytes, size_t size) : start(static_cast<const BYTE*>(bytes)), end(size)
    {
    }

    bool Failed() const { return failed; }
    size_t Position() const { return position; }
    size_t Left() const { return end - position; }

    BYTE Byte() { return Take<BYTE>(); }
    WORD Word() { return Take<WORD>(); }
    DWORD DoubleWord() { return Take<DWORD>(); }

    /// The next word without taking it.
    WORD PeekWord()
    {
        const size_t before = position;
        const WORD word = Word();
        position = before;
        return word;
    }

    /// The text up to its zero, which is taken too.
    std::u16string Text()
    {
        std::u16string text;
        for (WORD unit = Word(); unit != 0; unit = Word())
            text += static_cast<char16_t>(unit);
        return text;
    }

    void Skip(size_t count)
    {
        if (failed || count > Left())
            failed = true;
        else
            position += count;
    }

    /// Goes on at the next multiple of `boundary`. At the very end of the run the filling may be
    /// missing.
    void Align(size_t boundary)
    {
        const size_t over = position % boundary;
        if (over != 0)
            position = position + boundary - over < end ? position + boundary - over : end;
    }

private:
    template <class T>
    T Take()
    {
        T value = 0;
        if (failed || Left() < sizeof(T)) {
            failed = true;
            return 0;
        }
        std::memcpy(&value, start + position, sizeof(T));
        position += sizeof(T);
        return value;
    }

    const BYTE* start;
    size_t end;
    size_t position = 0;
    bool failed = false;
};

} // namespace tavrix::platform
