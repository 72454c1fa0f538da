#pragma once

#include "gl/BaseResourceGL.h"
#include "gl/NameMap.h"

#include <glbinding/gl.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace renderengine
{

class ShaderBufferGL;

/// One GL program and the names that it exposes. Names are looked up in maps that are made at link time; no query runs
/// while drawing. Render thread only, with the context current.
class ShaderProgramGL : public BaseResourceGL
{
public:
    struct AttribData
    {
        GLint size = 0;
        GLenum type = GL_NONE;
        GLint location = -1;
    };

    /// Creates the program, attaches the shaders, links and reflects. Returns GL_LINK_STATUS.
    bool link(const std::vector<GLuint>& shaders);
    /// Links (again) and reads the names back. Returns GL_LINK_STATUS; after a failure the maps are as they were.
    bool reflect();
    /// Replaces the list of captured varyings. separate: 0 GL_INTERLEAVED_ATTRIBS, else GL_SEPARATE_ATTRIBS. They take
    /// effect at the next reflect(). Always returns true.
    bool setTransformFeedbackVaryings(const std::vector<std::string>& names, uint32_t separate);

    /// glPatchParameteri(GL_PATCH_VERTICES), then glUseProgram.
    void use(uint32_t patchVertices) const;
    /// Location of a uniform, -1 when the program lacks it. Elements of an array resolve with and without their index.
    GLint getUniformLocation(std::string_view name) const;
    /// Location of a vertex attribute, -1 when the program lacks it.
    GLint getAttribLocation(std::string_view name) const;
    /// Connects the block of the buffer's name with a binding point, for the buffer's target. A block that the program
    /// lacks is skipped.
    void bindBlock(const ShaderBufferGL& buffer, GLuint bindingPoint) const;
    /// Connects the block of a target and an index, as getBlockIndex() gave it, with a binding point.
    void bindBlock(GLenum target, GLuint index, GLuint bindingPoint) const;
    /// Writes the info log, with its closing zero, into text. An empty log leaves text as it was.
    void getInfoLog(std::string& text) const;
    /// Deletes the program.
    void destroy() override;

    /// GL program name, 0 when there is none.
    GLuint getId() const { return id; }
    /// Location of the uniform "KvrUseMergedShaderBuffers", -1 when the program lacks it.
    GLint getUseMergedShaderBuffersLocation() const { return useMergedShaderBuffersLocation; }
    /// Location of the uniform "KvrPointSize", -1 when the program lacks it.
    GLint getPointSizeLocation() const { return pointSizeLocation; }

    const NameMap<GLint>& getUniforms() const { return uniforms; }
    /// Index of a block of the target GL_UNIFORM_BUFFER or else GL_SHADER_STORAGE_BUFFER, GL_INVALID_INDEX when the
    /// program lacks it.
    GLuint getBlockIndex(GLenum target, const std::string& name) const;
    /// A number that no other link of any program has, 0 before the first one. What was found in the maps holds as long
    /// as it stays.
    uint64_t getLinkStamp() const { return linkStamp; }

    const NameMap<AttribData>& getAttributes() const { return attributes; }
    const NameMap<GLuint>& getShaderStorageBlocks() const { return shaderStorageBlocks; }
    const NameMap<GLuint>& getUniformBlocks() const { return uniformBlocks; }

private:
    using BlockMap = NameMap<GLuint>;

    void sendVaryings() const;
    void reflectAttributes();
    void reflectUniforms();
    void storeUniform(const std::string& name, GLint size, GLint location);
    void reflectBlocks(GLenum programInterface, BlockMap& blocks) const;
    void reflectUniformBlocksWithoutInterfaceQuery();
    GLint getParameter(GLenum parameter) const;

    GLuint id = 0;
    NameMap<GLint> uniforms;
    NameMap<AttribData> attributes;
    BlockMap shaderStorageBlocks;
    BlockMap uniformBlocks;
    std::vector<std::string> varyingNames;
    GLenum varyingBufferMode = GL_INTERLEAVED_ATTRIBS;
    GLint useMergedShaderBuffersLocation = -1;
    GLint pointSizeLocation = -1;
    uint64_t linkStamp = 0;
};

} // namespace renderengine
