// The viewer's own loader must read what assimp reads.

#include "GlbModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <string>

namespace
{

using viewer::Model;

std::string pathOf(const std::string& name)
{
    return std::string(ASSIMP_MODELS) + "/" + name;
}

void expectNear(const SbVec3f& a, const SbVec3f& b, float tolerance)
{
    for (std::size_t axis = 0; axis < 3; ++axis)
        EXPECT_NEAR(a[axis], b[axis], tolerance);
}

bool isAt(const SbVec3f& a, const SbVec3f& b)
{
    return std::abs(a[0] - b[0]) + std::abs(a[1] - b[1]) + std::abs(a[2] - b[2]) < 1e-4f;
}

/// The mesh of the same triangles in a model that lists its meshes in another order, or null.
const viewer::Mesh* findSame(const Model& model, const viewer::Mesh& mesh)
{
    for (const viewer::Mesh& other : model.meshes)
    {
        if (mesh.indices.size() == other.indices.size() &&
            isAt(mesh.positions[mesh.indices.front()], other.positions[other.indices.front()]) &&
            isAt(mesh.positions[mesh.indices.back()], other.positions[other.indices.back()]))
            return &other;
    }
    return nullptr;
}

class GlbModelOfPackage : public testing::TestWithParam<const char*>
{
};

TEST_P(GlbModelOfPackage, IsWhatAssimpReads)
{
    const Model own = viewer::loadGlb(pathOf(GetParam()));
    const Model reference = viewer::loadModel(pathOf(GetParam()));
    EXPECT_EQ(own.triangleCount(), reference.triangleCount());
    EXPECT_EQ(own.instances.size(), reference.instances.size());
    ASSERT_EQ(own.images.size(), reference.images.size());
    const float tolerance = 1e-4f * reference.bounds.diagonal();
    expectNear(own.bounds.min, reference.bounds.min, tolerance);
    expectNear(own.bounds.max, reference.bounds.max, tolerance);
    for (std::size_t i = 0; i < own.images.size(); ++i)
        EXPECT_EQ(own.images[i].pixels, reference.images[i].pixels);

    ASSERT_EQ(own.meshes.size(), reference.meshes.size());
    for (const viewer::Mesh& mesh : own.meshes)
    {
        const viewer::Mesh* found = findSame(reference, mesh);
        ASSERT_NE(found, nullptr) << mesh.name;
        const viewer::Mesh& other = *found;
        std::size_t different = 0;
        for (std::size_t corner = 0; corner < mesh.indices.size(); ++corner)
        {
            const SbVec3f& a = mesh.normals[mesh.indices[corner]];
            const SbVec3f& b = other.normals[other.indices[corner]];
            different += a.dot(b) < 0.99f ? 1 : 0;
        }
        // Where a triangle is next to nothing its normal is chance.
        EXPECT_LE(different, mesh.indices.size() / 100) << mesh.name;
        EXPECT_EQ(own.materials[mesh.material].baseColor, reference.materials[other.material].baseColor);
        EXPECT_EQ(own.materials[mesh.material].metallic, reference.materials[other.material].metallic);
        EXPECT_EQ(own.materials[mesh.material].roughness, reference.materials[other.material].roughness);
    }
}

INSTANTIATE_TEST_SUITE_P(Package, GlbModelOfPackage,
                         testing::Values("glTF2/2CylinderEngine-glTF-Binary/2CylinderEngine.glb",
                                         "glTF2/BoxTextured-glTF-Binary/BoxTextured.glb"),
                         [](const auto& model)
                         { return std::filesystem::path(model.param).parent_path().filename().string().substr(0, 3); });

} // namespace
