#pragma once

#include "gl/VertexAttribute.h"

#include <glbinding/gl.h>

#include <cstdint>
#include <vector>

namespace renderengine
{

class ShaderProgramGL;

/// What an unmerged draw sends, gathered from its ranges, its views and their buffers.
///
/// Thousands of draws do not fit into the processor's caches. A frame that draws again what the frame before drew reads
/// these few lines of memory instead of some twenty objects for each draw. Render thread only.
class PlainDraw
{
public:
    struct Block
    {
        GLenum target = GL_UNIFORM_BUFFER;
        GLuint buffer = 0;
        /// GL_INVALID_INDEX when the program lacks it.
        GLuint index = GL_INVALID_INDEX;
    };

    struct Range
    {
        GLenum mode = GL_TRIANGLES;
        GLuint indexBuffer = 0;
        GLenum indexType = GL_UNSIGNED_INT;
        GLsizei count = 0;
        GLsizei instanceCount = 1;
        GLuint baseInstance = 0;
        uint32_t primitiveRestartValue = 0;
        bool primitiveRestart = false;
        uint64_t indexOffset = 0;
    };

    /// True while the program is the one that it was gathered for and no view has changed since.
    bool isCurrent(const ShaderProgramGL& program) const;

    /// Empties the lists and makes it not current.
    void clear();

    /// Makes it current: the lists hold what the views say now.
    void setCurrent(const ShaderProgramGL& program);

    /// Asks for the lists, so that they are in the processor's cache when the draw's turn comes.
    void prefetch() const;

    /// In the order in which they are bound.
    std::vector<Block> blocks;
    std::vector<VertexAttribute> attributes;
    std::vector<Range> ranges;

    /// The draw has constant attributes, which are not gathered.
    bool hasOverallAttributes = false;

private:
    uint64_t m_linkStamp = 0;
    uint64_t m_viewStamp = 0;
};

} // namespace renderengine
