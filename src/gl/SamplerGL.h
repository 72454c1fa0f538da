#pragma once

#include "gl/BaseResourceGL.h"

#include <glbinding/gl.h>
#include <renderengine/SamplerProperties.h>

namespace renderengine
{

/// One GL sampler object. Render thread only, with the context current.
class SamplerGL : public BaseResourceGL
{
public:
    /// Generates the name and sets the parameters.
    void create(const SamplerProperties& properties);
    /// Sets every parameter. The anisotropy is sent only when it is above 1.0. A wrap index outside the table logs an
    /// error and leaves the sampler as it was.
    void update(const SamplerProperties& properties);
    /// Deletes the name.
    void destroy() override;

    /// glBindSampler on the texture unit.
    void bind(GLuint unit) const;

    /// GL sampler name, 0 before create and after destroy.
    GLuint getId() const { return id; }

private:
    GLuint id = 0;
};

} // namespace renderengine
