#include "gl/CubeData.h"

#include <cmath>

namespace bench
{

CubeData::CubeData(uint32_t count) : m_count(count)
{
    for (uint32_t face = 0; face < 6; ++face)
    {
        const size_t axis = face / 2;
        const float side = face % 2 == 0 ? 0.5f : -0.5f;
        for (uint32_t corner = 0; corner < 4; ++corner)
        {
            const float u = corner == 0 || corner == 3 ? -0.5f : 0.5f;
            const float v = corner < 2 ? -0.5f : 0.5f;
            std::array<float, 3> position{};
            std::array<float, 3> normal{};
            position[axis] = side;
            position[(axis + 1) % 3] = side > 0.0f ? u : v;
            position[(axis + 2) % 3] = side > 0.0f ? v : u;
            normal[axis] = 2.0f * side;
            m_positions.insert(m_positions.end(), position.begin(), position.end());
            m_normals.insert(m_normals.end(), normal.begin(), normal.end());
        }
        for (const uint32_t corner : {0u, 1u, 2u, 0u, 2u, 3u})
        {
            m_indices.push_back(4 * face + corner);
        }
    }
}

TransformData CubeData::transform(uint32_t cube) const
{
    const auto side = static_cast<uint32_t>(std::ceil(std::sqrt(static_cast<double>(m_count))));
    const float spacing = 1.8f / static_cast<float>(side);
    const float angle = 0.37f * static_cast<float>(cube);
    const float size = 0.6f * spacing;
    TransformData data{};
    data.model[0] = size * std::cos(angle);
    data.model[2] = -size * std::sin(angle);
    data.model[5] = size;
    data.model[8] = size * std::sin(angle);
    data.model[10] = size * std::cos(angle);
    data.model[12] = (static_cast<float>(cube % side) + 0.5f) * spacing - 0.9f;
    data.model[13] = (static_cast<float>(cube / side) + 0.5f) * spacing - 0.9f;
    data.model[15] = 1.0f;
    return data;
}

MaterialData CubeData::material(uint32_t cube) const
{
    const float part = static_cast<float>(cube % 97) / 97.0f;
    return {{part, 1.0f - part, 0.5f, 1.0f}, {0.02f, 0.02f, 0.02f, 0.0f}, {0.0f, 0.5f, 0.0f, 0.0f}};
}

std::array<float, 16> CubeData::camera()
{
    // Tilted a little, so that no face is seen from its edge.
    return {1.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.9f, 0.3f, 0.0f, 0.0f, -0.3f, 0.9f, 0.0f, 0.0f, 0.0f, 0.0f, 1.0f};
}

uint32_t cubesPerBlock(int blockSize)
{
    return static_cast<uint32_t>(blockSize) / static_cast<uint32_t>(sizeof(TransformData));
}

std::string cubeVertexShader(uint32_t cubesPerBatch)
{
    return "#version 430\n#define COUNT " + std::to_string(cubesPerBatch) + R"(
in vec3 position;
in vec3 normal;
in float KvrAttribDrawIndex;
uniform int KvrUseMergedShaderBuffers;
uniform float KvrPointSize;
struct Material
{
    vec4 color;
    vec4 emissive;
    vec4 surface;
};
layout(std140) uniform Camera
{
    mat4 viewProjection;
};
layout(std140) uniform Transform
{
    mat4 ownModel;
};
layout(std140) uniform Material_
{
    Material ownMaterial;
};
layout(std140) uniform TransformIndirectBuffer
{
    ivec4 transformIndices[COUNT];
};
layout(std140) uniform TransformMergedBuffer
{
    mat4 models[COUNT];
};
layout(std140) uniform Material_IndirectBuffer
{
    ivec4 materialIndices[COUNT];
};
layout(std140) uniform Material_MergedBuffer
{
    Material materials[COUNT];
};
flat out vec4 materialColor;
flat out vec4 materialEmissive;
out vec3 worldNormal;
void main()
{
    mat4 model = ownModel;
    Material material = ownMaterial;
    if (KvrUseMergedShaderBuffers != 0)
    {
        uint index = floatBitsToUint(KvrAttribDrawIndex);
        model = models[transformIndices[index].x];
        material = materials[materialIndices[index].x];
    }
    materialColor = material.color;
    materialEmissive = material.emissive;
    worldNormal = mat3(model) * normal;
    gl_PointSize = KvrPointSize;
    gl_Position = viewProjection * (model * vec4(position, 1.0));
}
)";
}

const char* const cubeFragmentShader = R"(#version 430
flat in vec4 materialColor;
flat in vec4 materialEmissive;
in vec3 worldNormal;
out vec4 fragment;
void main()
{
    float light = max(dot(normalize(worldNormal), normalize(vec3(0.3, 0.8, 0.5))), 0.0);
    fragment = materialColor * (0.2 + 0.8 * light) + materialEmissive;
}
)";

} // namespace bench
