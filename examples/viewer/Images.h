#pragma once

#include "Model.h"

#include <cstdint>
#include <string>
#include <vector>

namespace viewer
{

/// The bytes of a file. Throws std::runtime_error when it cannot be read.
std::vector<uint8_t> readFile(const std::string& path);

/// Decodes a picture of any format that stb_image knows. Throws std::runtime_error with the reason.
Image decodeImage(const std::vector<uint8_t>& bytes);

/// Writes a picture as PNG. The file appears whole or not at all: the bytes go to a file beside it, which then takes
/// the name. Throws std::runtime_error with the reason.
void writePng(const std::string& path, const Image& image);

/// Turns a picture upside down, since OpenGL reads the bottom row first.
void flipRows(Image& image);

} // namespace viewer
