#include "gl/HandWritten.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace bench
{

namespace
{

GLuint makeBuffer(const void* data, size_t size)
{
    GLuint name = 0;
    glGenBuffers(1, &name);
    glBindBuffer(GL_ARRAY_BUFFER, name);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(size), data, GL_STATIC_DRAW);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    return name;
}

template <class Value> GLuint makeBuffer(const std::vector<Value>& values)
{
    return makeBuffer(values.data(), values.size() * sizeof(Value));
}

GLuint makeTexture(GLenum internalFormat, GLenum format, GLenum type)
{
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(internalFormat), pictureSize, pictureSize, 0, format, type,
                 nullptr);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
    return name;
}

const void* byteOffset(size_t offset)
{
    return reinterpret_cast<const void*>(offset);
}

void bindBlock(GLuint program, GLuint block, GLuint binding, GLuint buffer)
{
    glBindBufferBase(GL_UNIFORM_BUFFER, binding, buffer);
    glUniformBlockBinding(program, block, binding);
}

void bindAttribute(GLuint attribute, GLuint buffer, GLint components)
{
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glEnableVertexAttribArray(attribute);
    glVertexAttribPointer(attribute, components, GL_FLOAT, GL_FALSE, 0, nullptr);
    glVertexAttribDivisor(attribute, 0);
}

} // namespace

HandWrittenTarget::HandWrittenTarget()
{
    GLint blockSize = 0;
    glGetIntegerv(GL_MAX_UNIFORM_BLOCK_SIZE, &blockSize);
    m_cubesPerBatch = cubesPerBlock(blockSize);
    m_program = glCreateProgram();
    glAttachShader(m_program, compile(GL_VERTEX_SHADER, cubeVertexShader(m_cubesPerBatch).c_str()));
    glAttachShader(m_program, compile(GL_FRAGMENT_SHADER, cubeFragmentShader));
    glLinkProgram(m_program);
    GLint linked = 0;
    glGetProgramiv(m_program, GL_LINK_STATUS, &linked);
    if (linked == 0)
    {
        throw std::runtime_error("the program of the cubes does not link");
    }
    const auto camera = CubeData::camera();
    m_camera = makeBuffer(camera.data(), sizeof(camera));

    GLuint framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D,
                           makeTexture(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE), 0);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_TEXTURE_2D,
                           makeTexture(GL_DEPTH24_STENCIL8, GL_DEPTH_STENCIL, GL_UNSIGNED_INT_24_8), 0);
    GLuint vertexArray = 0;
    glGenVertexArrays(1, &vertexArray);
    glBindVertexArray(vertexArray);
    glViewport(0, 0, pictureSize, pictureSize);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    glEnable(GL_PROGRAM_POINT_SIZE);
    glUseProgram(m_program);
}

GLuint HandWrittenTarget::compile(GLenum stage, const char* source) const
{
    const GLuint shader = glCreateShader(stage);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    return shader;
}

void HandWrittenTarget::clear() const
{
    constexpr std::array<GLfloat, 4> color{};
    glClearBufferfv(GL_COLOR, 0, color.data());
    glClearBufferfi(GL_DEPTH_STENCIL, 0, 1.0f, 0);
}

std::vector<uint8_t> HandWrittenTarget::readPicture() const
{
    std::vector<uint8_t> pixels(4 * pictureSize * pictureSize);
    glReadPixels(0, 0, pictureSize, pictureSize, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return pixels;
}

HandWrittenMultiDraw::HandWrittenMultiDraw(const CubeData& cubes, uint32_t indexCount)
    : m_attributes{
          {m_target.attribute("position"), m_target.attribute("normal"), m_target.attribute("KvrAttribDrawIndex")}}
{
    const GLuint program = m_target.program();
    bindBlock(program, m_target.block("Camera"), 0, m_target.camera());
    GLuint binding = 1;
    for (const char* name :
         {"TransformIndirectBuffer", "TransformMergedBuffer", "Material_IndirectBuffer", "Material_MergedBuffer"})
    {
        glUniformBlockBinding(program, m_target.block(name), binding);
        ++binding;
    }
    // The blocks of a single cube are not read.
    glUniformBlockBinding(program, m_target.block("Transform"), 1);
    glUniformBlockBinding(program, m_target.block("Material_"), 1);
    glUniform1f(m_target.uniform("KvrPointSize"), 1.0f);
    glUniform1i(m_target.uniform("KvrUseMergedShaderBuffers"), 1);
    for (uint32_t first = 0; first < cubes.count(); first += m_target.cubesPerBatch())
    {
        m_batches.push_back(
            makeBatch(cubes, indexCount, first, std::min(m_target.cubesPerBatch(), cubes.count() - first)));
    }
}

HandWrittenMultiDraw::Batch HandWrittenMultiDraw::makeBatch(const CubeData& cubes, uint32_t indexCount, uint32_t first,
                                                            uint32_t count)
{
    std::vector<std::array<int32_t, 4>> places;
    std::vector<TransformData> transforms;
    std::vector<MaterialData> materials;
    for (uint32_t i = 0; i < count; ++i)
    {
        places.push_back({static_cast<int32_t>(i), 0, 0, 0});
        transforms.push_back(cubes.transform(first + i));
        materials.push_back(cubes.material(first + i));
    }
    Batch batch;
    batch.blocks = {makeBuffer(places), makeBuffer(transforms), makeBuffer(places), makeBuffer(materials)};
    appendGeometry(batch, cubes, indexCount, count);
    return batch;
}

void HandWrittenMultiDraw::appendGeometry(Batch& batch, const CubeData& cubes, uint32_t indexCount, uint32_t count)
{
    std::vector<float> positions;
    std::vector<float> normals;
    std::vector<uint32_t> drawIndices;
    std::vector<uint32_t> indices;
    for (uint32_t i = 0; i < count; ++i)
    {
        batch.counts.push_back(static_cast<GLsizei>(indexCount));
        batch.offsets.push_back(byteOffset(indices.size() * sizeof(uint32_t)));
        batch.baseVertices.push_back(static_cast<GLint>(drawIndices.size()));
        positions.insert(positions.end(), cubes.positions().begin(), cubes.positions().end());
        normals.insert(normals.end(), cubes.normals().begin(), cubes.normals().end());
        drawIndices.insert(drawIndices.end(), cubeVertices, i);
        indices.insert(indices.end(), cubes.indices().begin(),
                       cubes.indices().begin() + static_cast<std::ptrdiff_t>(indexCount));
    }
    batch.positions = makeBuffer(positions);
    batch.normals = makeBuffer(normals);
    batch.drawIndices = makeBuffer(drawIndices);
    batch.indices = makeBuffer(indices);
}

void HandWrittenMultiDraw::drawFrame() const
{
    m_target.clear();
    for (const Batch& batch : m_batches)
    {
        for (GLuint i = 0; i < batch.blocks.size(); ++i)
        {
            glBindBufferBase(GL_UNIFORM_BUFFER, i + 1, batch.blocks[i]);
        }
        bindAttribute(m_attributes[0], batch.positions, 3);
        bindAttribute(m_attributes[1], batch.normals, 3);
        bindAttribute(m_attributes[2], batch.drawIndices, 1);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, batch.indices);
        glMultiDrawElementsBaseVertex(GL_TRIANGLES, batch.counts.data(), GL_UNSIGNED_INT, batch.offsets.data(),
                                      static_cast<GLsizei>(batch.counts.size()), batch.baseVertices.data());
    }
}

HandWrittenLoop::HandWrittenLoop(const CubeData& cubes, uint32_t indexCount, bool device)
    : m_indexCount(static_cast<GLsizei>(indexCount))
{
    if (device)
    {
        m_attributes = {m_target.attribute("position"), m_target.attribute("normal")};
        m_blocks = {m_target.block("Camera"), m_target.block("Transform"), m_target.block("Material_")};
        m_pointSize = m_target.uniform("KvrPointSize");
        m_useMerged = m_target.uniform("KvrUseMergedShaderBuffers");
    }
    for (uint32_t i = 0; i < cubes.count(); ++i)
    {
        Cube cube;
        cube.positions = makeBuffer(cubes.positions());
        cube.normals = makeBuffer(cubes.normals());
        const TransformData transform = cubes.transform(i);
        const MaterialData material = cubes.material(i);
        cube.transform = makeBuffer(&transform, sizeof(transform));
        cube.material = makeBuffer(&material, sizeof(material));
        cube.indices = makeBuffer(cubes.indices().data(), indexCount * sizeof(uint32_t));
        m_cubes.push_back(cube);
    }
}

void HandWrittenLoop::drawFrame() const
{
    m_target.clear();
    const GLuint program = m_target.program();
    for (const Cube& cube : m_cubes)
    {
        bindBlock(program, m_blocks[0], 0, m_target.camera());
        glUniform1f(m_pointSize, 1.0f);
        bindBlock(program, m_blocks[1], 1, cube.transform);
        bindBlock(program, m_blocks[2], 2, cube.material);
        glUniform1i(m_useMerged, 0);
        bindAttribute(m_attributes[0], cube.positions, 3);
        bindAttribute(m_attributes[1], cube.normals, 3);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, cube.indices);
        glDrawElementsInstancedBaseInstance(GL_TRIANGLES, m_indexCount, GL_UNSIGNED_INT, nullptr, 1, 0);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
        glDisableVertexAttribArray(m_attributes[0]);
        glDisableVertexAttribArray(m_attributes[1]);
    }
}

HandWrittenCopies::HandWrittenCopies(const CubeData& cubes, uint32_t indexCount)
{
    GLint blockSize = 0;
    glGetIntegerv(GL_MAX_UNIFORM_BLOCK_SIZE, &blockSize);
    const uint32_t perBatch = cubesPerBlock(blockSize);
    const std::array<size_t, 5> sizes = {cubes.positions().size() * sizeof(float),
                                         cubes.normals().size() * sizeof(float), indexCount * sizeof(uint32_t),
                                         sizeof(TransformData), sizeof(MaterialData)};
    // Cube by cube, as a client makes them.
    std::vector<std::array<GLuint, 5>> sources(cubes.count());
    for (std::array<GLuint, 5>& buffers : sources)
    {
        for (size_t kind = 0; kind < sizes.size(); ++kind)
        {
            buffers[kind] = makeBuffer(std::vector<uint8_t>(sizes[kind]));
        }
    }
    for (uint32_t first = 0; first < cubes.count(); first += perBatch)
    {
        const uint32_t count = std::min(perBatch, cubes.count() - first);
        for (size_t kind = 0; kind < sizes.size(); ++kind)
        {
            const size_t size = sizes[kind];
            const GLuint destination = makeBuffer(nullptr, size * count);
            for (uint32_t i = 0; i < count; ++i)
            {
                m_copies.push_back({sources[first + i][kind], destination, static_cast<GLintptr>(size * i),
                                    static_cast<GLsizeiptr>(size)});
            }
        }
    }
}

void HandWrittenCopies::copyAll() const
{
    GLuint bound = 0;
    for (const Copy& copy : m_copies)
    {
        if (copy.destination != bound)
        {
            glBindBuffer(GL_COPY_WRITE_BUFFER, copy.destination);
            bound = copy.destination;
        }
        glBindBuffer(GL_COPY_READ_BUFFER, copy.source);
        glCopyBufferSubData(GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER, 0, copy.offset, copy.size);
    }
    glBindBuffer(GL_COPY_READ_BUFFER, 0);
    glBindBuffer(GL_COPY_WRITE_BUFFER, 0);
}

void HandWrittenCopies::copyAllAsEngine() const
{
    for (const Copy& copy : m_copies)
    {
        glBindBuffer(GL_COPY_WRITE_BUFFER, copy.destination);
        glBindBuffer(GL_COPY_READ_BUFFER, copy.source);
        GLint64 size = 0;
        glGetBufferParameteri64v(GL_COPY_READ_BUFFER, GL_BUFFER_SIZE, &size);
        glCopyBufferSubData(GL_COPY_READ_BUFFER, GL_COPY_WRITE_BUFFER, 0, copy.offset, static_cast<GLsizeiptr>(size));
        glBindBuffer(GL_COPY_WRITE_BUFFER, 0);
        glBindBuffer(GL_COPY_READ_BUFFER, 0);
    }
}

} // namespace bench
