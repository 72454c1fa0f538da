#pragma once

#include "gl/ShaderParameterGL.h"

#include <renderengine/TextureImageProperties.h>

#include <glbinding/gl.h>

#include <cstdint>

namespace renderengine
{

class ShaderProgramGL;
class TextureGL;

/// What stands behind a texture-image handle: one level of a texture that a shader reads or writes through an image
/// unit. Only `RendererGL46` binds it.
class TextureImageGL
{
public:
    explicit TextureImageGL(const TextureImageProperties& properties);

    /// Replaces the record and forgets that the image was bound. Uploads nothing.
    void update(const TextureImageProperties& properties);

    /// Nothing to free: the texture belongs to its own handle.
    void destroy() {}

    /// `glBindImageTexture` with the texture's own internal format, and marks the image as bound. A null texture binds
    /// name 0.
    void bind(const TextureGL* texture);

    /// Sends the unit to the image's uniform, when the program that is in use has it.
    void applyUnit(const ShaderProgramGL& program) const;

    /// True from the first `bind` to the next `update`; it stays set when another image takes the unit.
    bool isBound() const { return m_bound; }

    uint32_t getUnit() const { return m_properties.unit; }
    const TextureImageProperties& getProperties() const { return m_properties; }

private:
    TextureImageProperties m_properties;
    ShaderParameterGL1i m_parameter;
    bool m_bound = false;
};

} // namespace renderengine
