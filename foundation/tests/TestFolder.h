// A folder of the test's own, seen from both sides: by device path for the program, by host path
// and bytes for the test.
#pragma once

#include "platform/testing/Testing.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

class TestFolder
{
public:
    TestFolder() : host(tavrix::testing::FreshFolder())
    {
        device = u"\\Computer" + tavrix::testing::Wide(host);
        for (char16_t& character : device) {
            if (character == u'/')
                character = u'\\';
        }
    }

    /// The folder's device path, without a final separator.
    const std::u16string& Device() const { return device; }
    /// The device path of an entry.
    std::u16string Path(const std::u16string& name) const { return device + u"\\" + name; }
    std::filesystem::path Host(const std::string& name) const
    {
        return std::filesystem::path(host) / name;
    }

    void Write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(Host(name), std::ios::binary) << bytes;
    }
    std::string Read(const std::string& name) const
    {
        std::ifstream in(Host(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    bool Has(const std::string& name) const { return std::filesystem::exists(Host(name)); }

private:
    std::string host;
    std::u16string device;
};
