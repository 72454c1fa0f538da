#pragma once

#include <cstdint>
#include <string>

namespace viewer
{

/// How the vertex shader finds the transform and the material of its geometry, also when many geometries are merged
/// into one draw.
enum class MemberData
{
    UniformBlocks, ///< in merged uniform blocks, through the draw index
    StorageBlocks, ///< the same with storage blocks
    Attributes     ///< in vertex attributes: constants of a geometry, streams when geometries are merged
};

/// Lengths of the arrays in the merged uniform blocks; unused otherwise.
struct MergedCounts
{
    uint32_t draws = 1;
    uint32_t transforms = 1;
    uint32_t materials = 1;
};

/// The sources of the viewer's one program: GLSL 4.10, with storage blocks 4.30. Its blocks mirror CameraBlock,
/// TransformBlock and MaterialBlock of SceneRenderer.cpp; all colours in them are linear.
std::string vertexShader(MemberData data, const MergedCounts& counts);
extern const char* const c_fragmentShader;

} // namespace viewer
