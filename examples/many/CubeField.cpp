#include "CubeField.h"

#include "ModelTools.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace many
{

namespace
{

constexpr float c_fieldSize = 20.0f;
constexpr float c_tilt = 0.42f; // radians, towards the camera
constexpr float c_fill = 0.80f; // edge of a cube over the distance to its neighbour

/// The unit cube about the origin: four vertices a face, so that edges are sharp.
viewer::Mesh makeCube(std::size_t number)
{
    viewer::Mesh mesh;
    mesh.name = "cube " + std::to_string(number);
    mesh.material = number;
    for (uint32_t face = 0; face < 6; ++face)
    {
        const std::size_t axis = face / 2;
        const float side = face % 2 == 0 ? 0.5f : -0.5f;
        for (uint32_t corner = 0; corner < 4; ++corner)
        {
            // The corners of a face, counter-clockwise seen from outside.
            const float u = corner == 0 || corner == 3 ? -0.5f : 0.5f;
            const float v = corner < 2 ? -0.5f : 0.5f;
            SbVec3f position;
            position[axis] = side;
            position[(axis + 1) % 3] = side > 0.0f ? u : v;
            position[(axis + 2) % 3] = side > 0.0f ? v : u;
            SbVec3f normal(0.0f, 0.0f, 0.0f);
            normal[axis] = 2.0f * side;
            mesh.positions.push_back(position);
            mesh.normals.push_back(normal);
        }
        for (const uint32_t corner : {0u, 1u, 2u, 0u, 2u, 3u})
            mesh.indices.push_back(4 * face + corner);
    }
    return mesh;
}

/// A number from 0 to 1 that looks random and is the same on every system.
float noise(uint32_t number, uint32_t stream)
{
    uint32_t bits = number * 747796405u + stream * 2891336453u + 12345u;
    bits = ((bits >> ((bits >> 28) + 4)) ^ bits) * 277803737u;
    bits = (bits >> 22) ^ bits;
    return static_cast<float>(bits >> 8) / 16777216.0f;
}

/// Waves around two places.
float heightAt(float x, float z)
{
    const auto wave = [&](float centerX, float centerZ, float length)
    {
        const float distance = std::hypot(x - centerX, z - centerZ);
        return std::cos(length * distance) / (1.0f + 0.22f * distance);
    };
    return 1.9f * wave(-2.5f, -1.5f, 1.15f) + 1.1f * wave(6.0f, 5.0f, 1.5f);
}

SbMatrix rotation(std::size_t axis, float angle)
{
    SbMatrix matrix;
    const std::size_t a = (axis + 1) % 3;
    const std::size_t b = (axis + 2) % 3;
    matrix[a][a] = matrix[b][b] = std::cos(angle);
    matrix[a][b] = std::sin(angle);
    matrix[b][a] = -matrix[a][b];
    return matrix;
}

/// Deep water, foam, sand and coral, by height from 0 to 1.
SbVec3f paletteAt(float place)
{
    static const std::array<SbVec3f, 5> s_colors = {SbVec3f(0.010f, 0.060f, 0.200f), SbVec3f(0.015f, 0.260f, 0.420f),
                                                    SbVec3f(0.160f, 0.620f, 0.560f), SbVec3f(0.940f, 0.690f, 0.250f),
                                                    SbVec3f(0.850f, 0.180f, 0.090f)};
    const float scaled = std::clamp(place, 0.0f, 1.0f) * static_cast<float>(s_colors.size() - 1);
    const std::size_t index = std::min(static_cast<std::size_t>(scaled), s_colors.size() - 2);
    const float part = scaled - static_cast<float>(index);
    SbVec3f color;
    for (std::size_t i = 0; i < 3; ++i)
        color[i] = s_colors[index][i] * (1.0f - part) + s_colors[index + 1][i] * part;
    return color;
}

viewer::Material makeMaterial(uint32_t number, float height)
{
    viewer::Material material;
    const SbVec3f color = paletteAt(0.47f + 0.27f * height + 0.10f * (noise(number, 1) - 0.5f));
    const float brightness = 0.8f + 0.4f * noise(number, 2);
    for (std::size_t i = 0; i < 3; ++i)
        material.baseColor[i] = std::min(1.0f, color[i] * brightness);
    material.roughness = 0.25f + 0.5f * noise(number, 3);
    return material;
}

SbMatrix makePlace(uint32_t number, float x, float height, float z, float spacing)
{
    // Tilted as a small boat would be on the slope of the waves.
    const float step = 0.05f;
    const float slopeX = (heightAt(x + step, z) - height) / step;
    const float slopeZ = (heightAt(x, z + step) - height) / step;
    SbMatrix scale;
    for (std::size_t i = 0; i < 3; ++i)
        scale[i][i] = c_fill * spacing * (0.85f + 0.3f * noise(number, 4));
    SbMatrix place = scale * rotation(1, 0.5f * (noise(number, 5) - 0.5f)) * rotation(0, std::atan(slopeZ)) *
                     rotation(2, -std::atan(slopeX));
    place[3][0] = x;
    place[3][1] = height;
    place[3][2] = z;
    return place * rotation(0, c_tilt);
}

} // namespace

viewer::Model makeCubeField(unsigned count)
{
    const auto side = static_cast<unsigned>(std::ceil(std::sqrt(static_cast<double>(count))));
    const float spacing = c_fieldSize / static_cast<float>(side);
    viewer::Model model;
    model.meshes.reserve(count);
    for (unsigned i = 0; i < count; ++i)
    {
        const unsigned column = i % side;
        const unsigned row = i / side;
        const float x = (static_cast<float>(column) + 0.5f) * spacing - 0.5f * c_fieldSize;
        const float z = (static_cast<float>(row) + 0.5f) * spacing - 0.5f * c_fieldSize;
        const float height = heightAt(x, z);
        model.meshes.push_back(makeCube(i));
        model.materials.push_back(makeMaterial(i, height));
        viewer::addInstance(model, i, makePlace(i, x, height, z, spacing));
    }
    return model;
}

} // namespace many
