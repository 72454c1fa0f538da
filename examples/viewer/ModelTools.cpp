#include "ModelTools.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>

namespace viewer
{

SbVec3f faceNormal(const Mesh& mesh, std::size_t triangle)
{
    const SbVec3f& a = mesh.positions[mesh.indices[triangle]];
    const SbVec3f ab = mesh.positions[mesh.indices[triangle + 1]] - a;
    const SbVec3f ac = mesh.positions[mesh.indices[triangle + 2]] - a;
    SbVec3f normal = ab.cross(ac);
    normal.normalize();
    return normal;
}

void checkFile(const std::string& path)
{
    std::error_code error;
    if (!std::filesystem::exists(path, error))
        throw ModelError("there is no file '" + path + "'");
    if (std::filesystem::is_directory(path, error))
        throw ModelError("'" + path + "' is a folder, not a model");
    if (!std::ifstream(path, std::ios::binary))
        throw ModelError("'" + path + "' cannot be opened for reading");
    if (std::filesystem::is_regular_file(path, error) && std::filesystem::file_size(path, error) == 0)
        throw ModelError("'" + path + "' is empty");
}

bool hasUsableNormals(const Mesh& mesh)
{
    std::size_t unusable = 0;
    for (std::size_t triangle = 0; triangle + 2 < mesh.indices.size(); triangle += 3)
    {
        const SbVec3f& normal = mesh.normals[mesh.indices[triangle]];
        unusable += std::abs(normal.dot(faceNormal(mesh, triangle))) < 0.1f ? 1 : 0;
    }
    return 2 * unusable <= mesh.indices.size() / 3;
}

void addInstance(Model& model, std::size_t mesh, const SbMatrix& world)
{
    for (const uint32_t index : model.meshes[mesh].indices)
        model.bounds.extend(world.multVecMatrix(model.meshes[mesh].positions[index]));
    model.instances.push_back({mesh, world});
}

void Bounds::extend(const SbVec3f& point)
{
    for (std::size_t axis = 0; axis < 3; ++axis)
    {
        min[axis] = std::min(min[axis], point[axis]);
        max[axis] = std::max(max[axis], point[axis]);
    }
}

SbVec3f Bounds::center() const
{
    return SbVec3f(0.5f * (min[0] + max[0]), 0.5f * (min[1] + max[1]), 0.5f * (min[2] + max[2]));
}

float Bounds::diagonal() const
{
    return std::hypot(max[0] - min[0], max[1] - min[1], max[2] - min[2]);
}

std::size_t Model::triangleCount() const
{
    std::size_t count = 0;
    for (const Instance& instance : instances)
        count += meshes[instance.mesh].indices.size() / 3;
    return count;
}

} // namespace viewer
