// Pictures made and read by other programs, to compare with what a reader makes of them.
#pragma once

#include "platform/testing/Testing.h"
#include "standard-plugins/tests/support/Decoding.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace plugintest
{

/// A picture as red, green and blue bytes.
struct Reference {
    uint32_t width = 0;
    uint32_t height = 0;
    std::string rgb;
    Pixel At(uint32_t x, uint32_t y) const;
};

/// Of a binary PBM, PGM or PPM file of any depth; samples are brought to 8 bits, to the nearest.
/// Nothing wide where it is none.
Reference ReadPnm(const std::string& bytes);
/// A binary PPM file of the samples that `sample(x, y, channel)` gives.
std::string MakePpm(uint32_t width, uint32_t height, uint8_t (*sample)(uint32_t, uint32_t, int));
/// Neighbours are alike, as in photographs.
uint8_t SoftSample(uint32_t x, uint32_t y, int channel);
/// The greatest distance of a sample from its like; 1000 where the sizes differ.
int GreatestDistance(const Canvas& canvas, const Reference& reference);
std::string BytesOf(const std::filesystem::path& file);
/// The folder of kept inputs of a format.
std::filesystem::path KeptFolder(const std::string& format);

/// A fresh folder in which commands run, with a fresh host for the decodes.
class ReaderTest : public testing::Test
{
protected:
    ReaderTest();
    ~ReaderTest() override;

    /// Runs a command in the folder; it must succeed. What it printed.
    std::string Run(const std::string& command) const;
    void Write(const std::string& name, const std::string& bytes) const;
    std::string Read(const std::string& name) const { return BytesOf(folder / name); }
    /// Decodes a file of the folder and compares it with what a command prints as PNM.
    void ExpectLike(const PluginLibrary& plugin, const std::string& name,
                    const std::string& referenceCommand, int tolerance = 0) const;
    void ExpectLike(const PluginLibrary& plugin, const std::string& name,
                    const Reference& reference, int tolerance = 0) const;

    tavrix::testing::Scope scope;
    std::filesystem::path folder = tavrix::testing::FreshFolder();
};

} // namespace plugintest
