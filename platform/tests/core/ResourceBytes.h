// Builds compiled resources byte by byte, for tests of the parser and of the calls over it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class ResourceBytes
{
public:
    /// With the empty record that opens each file.
    ResourceBytes() { Add(0, 0, 0, ""); }

    /// A record whose type and name are numbers or texts.
    template <class Type, class Name>
    ResourceBytes& Add(const Type& type, const Name& name, uint16_t language,
                       const std::string& data)
    {
        std::string keys;
        PutKey(keys, type);
        PutKey(keys, name);
        while (keys.size() % 4 != 0)
            keys.push_back(0);
        Put32(bytes, static_cast<uint32_t>(data.size()));
        Put32(bytes, static_cast<uint32_t>(8 + keys.size() + 16));
        bytes += keys;
        Put32(bytes, 0);      // version of the data
        Put16(bytes, 0x1030); // memory flags
        Put16(bytes, language);
        Put32(bytes, 0); // version
        Put32(bytes, 0); // characteristics
        bytes += data;
        while (bytes.size() % 4 != 0)
            bytes.push_back(0);
        return *this;
    }

    const std::string& Text() const { return bytes; }
    /// In a block of exactly that size, whose ends the sanitizer guards.
    std::vector<std::byte> Bytes() const
    {
        std::vector<std::byte> copy;
        copy.reserve(bytes.size());
        for (const char byte : bytes)
            copy.push_back(static_cast<std::byte>(byte));
        return copy;
    }

private:
    static void Put16(std::string& to, uint32_t value)
    {
        to.push_back(static_cast<char>(value & 0xFF));
        to.push_back(static_cast<char>(value >> 8 & 0xFF));
    }
    static void Put32(std::string& to, uint32_t value)
    {
        Put16(to, value);
        Put16(to, value >> 16);
    }
    static void PutKey(std::string& to, int number)
    {
        Put16(to, 0xFFFF);
        Put16(to, static_cast<uint32_t>(number));
    }
    static void PutKey(std::string& to, const char16_t* text)
    {
        for (; *text != 0; ++text)
            Put16(to, *text);
        Put16(to, 0);
    }

    std::string bytes;
};
