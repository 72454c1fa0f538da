#pragma once

#include <renderengine/ContextInterface.h>

#include <cstdint>
#include <vector>

namespace renderengine::testing
{

/// The sides of the picture that `drawTriangle` makes.
constexpr uint32_t triangleSize = 16;

/// Draws, through the whole engine, a red triangle that covers the lower left half of a green picture, and reads it
/// back: rows of RGBA from the bottom up. Everything it made is destroyed again. Throws std::runtime_error when a
/// shader is refused.
std::vector<uint8_t> drawTriangle(ContextInterface& context);

/// Whether every pixel beside the diagonal has the colour that it should have.
bool isTriangle(const std::vector<uint8_t>& picture);

} // namespace renderengine::testing
