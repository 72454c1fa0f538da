#pragma once

#include "gl/CubeData.h"

#include <glbinding/gl.h>

#include <array>
#include <cstdint>
#include <vector>

namespace bench
{

/// The picture and the program that the hand-written frames draw with. All members need the context that the
/// constructor had.
class HandWrittenTarget
{
public:
    HandWrittenTarget();
    void clear() const;
    std::vector<uint8_t> readPicture() const;
    GLuint block(const char* name) const { return glGetUniformBlockIndex(m_program, name); }
    GLint uniform(const char* name) const { return glGetUniformLocation(m_program, name); }
    GLuint attribute(const char* name) const { return static_cast<GLuint>(glGetAttribLocation(m_program, name)); }
    GLuint program() const { return m_program; }
    uint32_t cubesPerBatch() const { return m_cubesPerBatch; }
    GLuint camera() const { return m_camera; }

private:
    GLuint compile(GLenum stage, const char* source) const;

    GLuint m_program = 0;
    GLuint m_camera = 0;
    uint32_t m_cubesPerBatch = 0;
};

/// The cubes in shared buffers, drawn by one glMultiDrawElementsBaseVertex for as many cubes as fit into the uniform
/// blocks, with the same indirection from the draw index to transform and material.
class HandWrittenMultiDraw
{
public:
    HandWrittenMultiDraw(const CubeData& cubes, uint32_t indexCount);
    void drawFrame() const;
    std::vector<uint8_t> readPicture() const { return m_target.readPicture(); }

private:
    struct Batch
    {
        std::array<GLuint, 4> blocks; ///< transform indices, transforms, material indices, materials
        GLuint positions = 0;
        GLuint normals = 0;
        GLuint drawIndices = 0;
        GLuint indices = 0;
        std::vector<GLsizei> counts;
        std::vector<const void*> offsets;
        std::vector<GLint> baseVertices;
    };
    static Batch makeBatch(const CubeData& cubes, uint32_t indexCount, uint32_t first, uint32_t count);
    static void appendGeometry(Batch& batch, const CubeData& cubes, uint32_t indexCount, uint32_t count);

    HandWrittenTarget m_target;
    std::array<GLuint, 3> m_attributes;
    std::vector<Batch> m_batches;
};

/// Each cube in buffers of its own, drawn one by one with the calls that the engine makes for a draw of unchanged
/// state.
class HandWrittenLoop
{
public:
    /// On a table that does nothing there is no program to ask for its names.
    HandWrittenLoop(const CubeData& cubes, uint32_t indexCount, bool device);
    void drawFrame() const;
    std::vector<uint8_t> readPicture() const { return m_target.readPicture(); }

private:
    struct Cube
    {
        GLuint positions = 0;
        GLuint normals = 0;
        GLuint indices = 0;
        GLuint transform = 0;
        GLuint material = 0;
    };
    HandWrittenTarget m_target;
    GLsizei m_indexCount;
    std::array<GLuint, 2> m_attributes{{0, 1}};
    std::array<GLuint, 3> m_blocks{{0, 1, 2}};
    GLint m_pointSize = 0;
    GLint m_useMerged = 1;
    std::vector<Cube> m_cubes;
};

/// The copies that bring the cubes' buffers together: each source once, into the buffers of its batch.
class HandWrittenCopies
{
public:
    HandWrittenCopies(const CubeData& cubes, uint32_t indexCount);
    void copyAll() const;
    /// The same copies, each with the calls that the engine makes for it: it binds both buffers, asks for the size of
    /// the source, and leaves nothing bound.
    void copyAllAsEngine() const;

private:
    struct Copy
    {
        GLuint source = 0;
        GLuint destination = 0;
        GLintptr offset = 0;
        GLsizeiptr size = 0;
    };
    std::vector<Copy> m_copies;
};

} // namespace bench
