#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bench
{

inline constexpr int pictureSize = 16;
inline constexpr uint32_t cubeVertices = 24;
inline constexpr uint32_t cubeIndices = 36;

/// The blocks of the program, in their std140 layout.
struct TransformData
{
    std::array<float, 16> model;
};
struct MaterialData
{
    std::array<float, 4> color;
    std::array<float, 4> emissive;
    std::array<float, 4> surface;
};

/// A number of cubes, each with a transform and a material of its own; what both sides of a pair draw.
class CubeData
{
public:
    explicit CubeData(uint32_t count);

    uint32_t count() const { return m_count; }
    const std::vector<float>& positions() const { return m_positions; } ///< of one cube
    const std::vector<float>& normals() const { return m_normals; }
    const std::vector<uint32_t>& indices() const { return m_indices; }
    TransformData transform(uint32_t cube) const;
    MaterialData material(uint32_t cube) const;
    static std::array<float, 16> camera();

private:
    uint32_t m_count;
    std::vector<float> m_positions;
    std::vector<float> m_normals;
    std::vector<uint32_t> m_indices;
};

/// How many cubes one merged block of this many bytes holds.
uint32_t cubesPerBlock(int blockSize);

/// A lit program that finds transform and material in the cube's own blocks, or in merged ones through the draw index.
std::string cubeVertexShader(uint32_t cubesPerBatch);
extern const char* const cubeFragmentShader;

} // namespace bench
