#pragma once

#include <glbinding/gl.h>

#include <cstdint>
#include <vector>

namespace renderengine
{

/// One `glMultiDrawElementsBaseVertex`: all ranges of one primitive type of a batch. The three vectors have equal
/// length and go to GL as they are.
struct MergedDraw
{
    uint32_t primitive = 0; ///< index into `gltables::primitiveModes`
    bool primitiveRestart = false;
    uint32_t primitiveRestartValue = 0xFFFFFFFF;
    std::vector<GLsizei> count;
    std::vector<const void*> indices; ///< byte offsets into the index buffer
    std::vector<GLint> baseVertex;
};

} // namespace renderengine
