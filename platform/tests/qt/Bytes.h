// Hand-made bytes of compiled resources, word by word.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace tavrix::testing
{

class Bytes
{
public:
    Bytes& Word(unsigned value)
    {
        bytes.push_back(static_cast<BYTE>(value & 0xFF));
        bytes.push_back(static_cast<BYTE>((value >> 8) & 0xFF));
        return *this;
    }
    Bytes& Double(unsigned value) { return Word(value & 0xFFFF).Word(value >> 16); }
    Bytes& Byte(unsigned value)
    {
        bytes.push_back(static_cast<BYTE>(value));
        return *this;
    }
    Bytes& Text(const std::u16string& text)
    {
        for (const char16_t unit : text)
            Word(unit);
        return Word(0);
    }
    Bytes& Align(size_t boundary)
    {
        while (bytes.size() % boundary != 0)
            bytes.push_back(0);
        return *this;
    }
    Bytes& Append(const Bytes& other)
    {
        bytes.insert(bytes.end(), other.bytes.begin(), other.bytes.end());
        return *this;
    }
    const BYTE* Data() const { return bytes.data(); }
    size_t Size() const { return bytes.size(); }

private:
    std::vector<BYTE> bytes;
};

} // namespace tavrix::testing
