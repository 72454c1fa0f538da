#pragma once

#include "gl/BaseResourceGL.h"

#include <glbinding/gl.h>
#include <renderengine/ShaderObjectProperties.h>

#include <string>

namespace renderengine
{

/// One compiled shader stage. Render thread only, with the context current.
class ShaderObjectGL : public BaseResourceGL
{
public:
    /// Creates the shader and compiles the source. Returns GL_COMPILE_STATUS; the name is valid also after a failure. A
    /// stage outside the table logs an error, creates nothing and returns false.
    bool compile(const ShaderObjectProperties& properties);
    /// Writes the info log, with its closing zero, into text. An empty log leaves text as it was.
    void getInfoLog(std::string& text) const;
    /// GL shader name, 0 when there is none.
    GLuint getId() const { return id; }
    /// GL stage enumerant.
    GLenum getStage() const { return stage; }
    /// Deletes the shader.
    void destroy() override;

private:
    GLuint id = 0;
    GLenum stage = GL_NONE;
};

} // namespace renderengine
