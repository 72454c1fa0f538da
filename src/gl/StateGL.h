#pragma once

#include <glbinding/gl.h>
#include <renderengine/FixedFunctionProperties.h>
#include <renderengine/GfxStateProperties.h>
#include <renderengine/ShaderStateCoreProperties.h>

#include <memory>

namespace renderengine
{

/// Pushes one GfxStateProperties record into the current context. It keeps no copy of what the driver has: what may be
/// skipped is decided by comparing two records, never by a query. It owns no GL object. Every operation needs the
/// context current, on the render thread.
class StateGL
{
public:
    /// Takes the record, which must not change while an operation runs. Null stands for the default record.
    explicit StateGL(std::shared_ptr<const GfxStateProperties> state);

    const GfxStateProperties& getProperties() const { return *properties; }

    /// Sets every group: rasterizer, colour output, scissor, depth and stencil.
    void apply() const;
    /// Sets the groups that differ from previous, which the caller knows to be in effect, in the same order. A group is
    /// set as a whole.
    void applyDifferential(const GfxStateProperties& previous) const;

    void applyState(const RasterizerProperties& rasterizer) const;
    void applyState(const ColorOutputProperties& colorOutput) const;
    void applyState(const ScissorProperties& scissor) const;
    void applyState(const DepthStencilProperties& depthStencil) const;
    /// face: GL_FRONT or GL_BACK.
    void applyState(const StencilProperties& stencil, GLenum face) const;

    // Fixed-function groups, for the render-task path. They need a compatibility context.

    /// Projection, the texture matrices of units 7 to 0, and model times view. Ends in the model-view mode with
    /// GL_TEXTURE0 active.
    void applyState(const TransformPart1Properties& transformPart1,
                    const TransformPart2Properties& transformPart2) const;
    /// Colour, light model, lights (positions in eye coordinates) and materials.
    void applyState(const MaterialProperties& material, const LightingFlags& lightingFlags,
                    const LightProperties& lights) const;
    /// Reduced form: the current colour when setColor is on, the shade model when lighting is on.
    void applyState(const MaterialProperties& material, const LightingFlags& lightingFlags) const;
    /// Texture coordinate generation of 8 units. Ends with GL_TEXTURE0 active.
    void applyState(const TexGenProperties& texGen) const;
    /// Texture environment mode of 4 units; a mode that is none of the six valid ones logs a warning and becomes
    /// GL_REPLACE. Ends with GL_TEXTURE0 active.
    void applyState(const TexEnvProperties& texEnv) const;

private:
    std::shared_ptr<const GfxStateProperties> properties;
};

} // namespace renderengine
