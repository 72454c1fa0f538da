#pragma once

#include <kavelor/SbMatrix.h>
#include <kavelor/SbVec.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace viewer
{

/// A model could not be read. what() is one sentence for the user.
class ModelError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A picture of 8-bit RGBA pixels, top row first, as colours are stored in files (sRGB).
struct Image
{
    uint32_t width = 0;
    uint32_t height = 0;
    std::vector<uint8_t> pixels;
};

/// How a surface reflects light: a metallic-roughness material, colours linear.
struct Material
{
    SbVec4f baseColor{0.8f, 0.8f, 0.8f, 1.0f};
    SbVec3f emissive{0.0f, 0.0f, 0.0f};
    float metallic = 0.0f;
    float roughness = 0.55f;
    /// Fragments below this alpha are dropped; 0 keeps all.
    float alphaCutoff = 0.0f;
    /// Index into Model::images, or -1 when the material has no texture of its base colour.
    int baseColorImage = -1;

    bool isTransparent() const { return baseColor[3] < 0.999f && alphaCutoff == 0.0f; }
};

/// A list of triangles. The attribute arrays are empty or as long as `positions`.
struct Mesh
{
    std::string name;
    std::vector<SbVec3f> positions;
    std::vector<SbVec3f> normals;
    std::vector<SbVec2f> texCoords;
    std::vector<SbVec4f> colors;
    std::vector<uint32_t> indices;
    std::size_t material = 0;
};

/// A mesh at a place in the world.
struct Instance
{
    std::size_t mesh = 0;
    SbMatrix model;
};

/// An axis-aligned box; empty while the minimum lies above the maximum.
struct Bounds
{
    SbVec3f min{1e30f, 1e30f, 1e30f};
    SbVec3f max{-1e30f, -1e30f, -1e30f};

    void extend(const SbVec3f& point);
    SbVec3f center() const;
    float diagonal() const;
};

/// What a file holds that can be drawn: triangles with their materials, placed in the world.
struct Model
{
    std::vector<Mesh> meshes;
    std::vector<Material> materials;
    std::vector<Image> images;
    std::vector<Instance> instances;
    Bounds bounds;

    /// The number of triangles of all instances.
    std::size_t triangleCount() const;
};

/// Reads a model of any format that assimp knows. Throws ModelError when the file is missing, unreadable or malformed,
/// or holds no triangle. A texture that cannot be read is reported on standard error and left out.
Model loadModel(const std::string& path);

} // namespace viewer
