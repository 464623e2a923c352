// Pictures for whole-program tests: painted by a formula, written by libraries that the program
// does not use for it, compared pixel by pixel.
#pragma once

#include <cstdint>
#include <string>

namespace tavrix::testing
{

/// The colour of pixel (x, y) of every test picture, 0xRRGGBB. Never black.
uint32_t TestColor(int x, int y);
/// The same in flat squares of 16 pixels, of which a JPEG loses next to nothing.
uint32_t TestSquareColor(int x, int y);
/// Writes a picture of flat squares as JPEG below the test's home; answers its host path.
std::string WriteTestJpeg(int width, int height, const std::string& name = "picture.jpg");
/// Writes a picture of that formula as PNG below the test's home; answers its host path.
std::string WriteTestPng(int width, int height, const std::string& name = "picture.png");
/// Noise, which no encoder makes smaller: a colour by its place. Never black but by chance.
uint32_t NoiseColor(int x, int y);
/// A square picture of it as a PNG file of side * side * 3 bytes and little more.
std::string WriteNoisePng(int side, const std::string& name);
/// The first `numerator`/`denominator` of a file, under a new name in the same folder.
std::string TruncateFile(const std::string& path, int numerator, int denominator);

} // namespace tavrix::testing
