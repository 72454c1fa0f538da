// The viewer's own loader must read what assimp reads.

#include "GlbModel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace
{

using testing::HasSubstr;
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

class BrokenGlb : public testing::Test
{
protected:
    // Cases run at the same time, each with a file of its own.
    BrokenGlb()
        : m_file(std::filesystem::path(testing::TempDir()) /
                 (std::string(testing::UnitTest::GetInstance()->current_test_info()->name()) + ".glb"))
    {
    }
    ~BrokenGlb() override { std::filesystem::remove(m_file); }

    /// The message about a file of these bytes.
    std::string refusal(const std::string& bytes)
    {
        std::ofstream(m_file, std::ios::binary) << bytes;
        try
        {
            viewer::loadGlb(m_file.string());
        }
        catch (const viewer::ModelError& error)
        {
            return error.what();
        }
        return "";
    }

    static std::string wholeFile()
    {
        std::ifstream file(pathOf("glTF2/BoxTextured-glTF-Binary/BoxTextured.glb"), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

private:
    std::filesystem::path m_file;
};

TEST_F(BrokenGlb, EveryTruncationIsRefused)
{
    const std::string whole = wholeFile();
    ASSERT_GT(whole.size(), 2000u);
    for (std::size_t length = 1; length < whole.size(); length += 97)
        EXPECT_THAT(refusal(whole.substr(0, length)), HasSubstr("cannot be read as a model")) << length;
}

TEST_F(BrokenGlb, OtherFilesAreRefused)
{
    EXPECT_THAT(refusal("no model at all, but long enough"), HasSubstr("it is no binary glTF 2.0 file"));
    EXPECT_THAT(refusal(""), HasSubstr("is empty"));
}

TEST_F(BrokenGlb, MalformedDescriptionsAreRefusedOrDrawnWithoutACrash)
{
    const std::string whole = wholeFile();
    int refused = 0;
    // The description lies at the start.
    for (std::size_t place = 20; place < 1500; place += 3)
    {
        std::string changed = whole;
        changed[place] = '9';
        refused += refusal(changed).empty() ? 0 : 1;
    }
    EXPECT_GT(refused, 50);
}

} // namespace
