#pragma once

#include "Model.h"

#include <cstddef>
#include <string>

namespace viewer
{

/// Throws ModelError unless there is a file of that name that can be read and is not empty.
void checkFile(const std::string& path);

/// The normal of the triangle whose first index stands at the given place of the mesh's indices.
SbVec3f faceNormal(const Mesh& mesh, std::size_t triangle);

/// Whether the mesh has normals of its own. Some exporters write placeholders: null, or the same for all faces. A mesh
/// whose normals lie in the plane of its triangles as often as not has none.
bool hasUsableNormals(const Mesh& mesh);

/// Places a mesh of the model in the world and extends the model's bounds by it.
void addInstance(Model& model, std::size_t mesh, const SbMatrix& world);

} // namespace viewer
