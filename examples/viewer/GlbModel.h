#pragma once

#include "Model.h"

#include <string>

namespace viewer
{

/// Reads a binary glTF 2.0 file (.glb) with everything in it: lists of triangles, metallic-roughness materials and
/// pictures of the file's own buffer. It is what stands in for assimp where that library is not at hand. Throws
/// ModelError as loadModel() does.
Model loadGlb(const std::string& path);

} // namespace viewer
