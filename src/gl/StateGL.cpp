#include "gl/StateGL.h"

#include "gl/DebugGroup.h"
#include "gl/GLTables.h"

#include <kavelor/SoPreferences.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <utility>

namespace renderengine
{

namespace
{

constexpr GLuint s_drawBufferCount = 8;

void setEnabled(GLenum capability, bool enable)
{
    if (enable)
    {
        glEnable(capability);
    }
    else
    {
        glDisable(capability);
    }
}

struct CullMode
{
    bool enable;
    GLenum face;
};

// None, front, back, front and back.
constexpr std::array<CullMode, 4> s_cullModes{
    {{false, GL_BACK}, {true, GL_FRONT}, {true, GL_BACK}, {true, GL_FRONT_AND_BACK}}};

void applySmoothingAndStipple(const RasterizerProperties& rasterizer)
{
    static const bool s_coreProfile = SoPreferences::getBool("KVR_RENDERENGINE_USE_GLCORE", false);
    if (!s_coreProfile)
    {
        setEnabled(GL_POINT_SMOOTH, rasterizer.pointSmooth);
        const bool stipple = rasterizer.lineStipplePattern != -1;
        setEnabled(GL_LINE_STIPPLE, stipple);
        if (stipple)
        {
            glLineStipple(rasterizer.lineStippleFactor + 1, static_cast<GLushort>(rasterizer.lineStipplePattern));
        }
    }
    setEnabled(GL_LINE_SMOOTH, rasterizer.lineSmooth);
}

void applyPolygonOffset(const RasterizerProperties& rasterizer)
{
    const auto isZero = [](float value) { return std::fpclassify(value) == FP_ZERO; };
    const bool none = isZero(rasterizer.polygonOffsetFactor) && isZero(rasterizer.polygonOffsetUnits);
    const unsigned enable = none ? 0u : rasterizer.polygonOffsetEnable;
    setEnabled(GL_POLYGON_OFFSET_FILL, (enable & 1u) != 0);
    setEnabled(GL_POLYGON_OFFSET_LINE, (enable & 2u) != 0);
    setEnabled(GL_POLYGON_OFFSET_POINT, (enable & 4u) != 0);
    if (!none)
    {
        glPolygonOffset(rasterizer.polygonOffsetFactor, rasterizer.polygonOffsetUnits);
    }
}

void applyColorTarget(GLuint buffer, const ColorTargetProperties& target)
{
    glColorMaski(buffer, target.writeRed, target.writeGreen, target.writeBlue, target.writeAlpha);
    if (!target.blendEnable)
    {
        glDisablei(GL_BLEND, buffer);
        return;
    }
    glEnablei(GL_BLEND, buffer);
    const GLenum* colorOp = gltables::blendEquations.find(target.colorOp);
    const GLenum* alphaOp = gltables::blendEquations.find(target.alphaOp);
    if (colorOp && alphaOp)
    {
        glBlendEquationSeparatei(buffer, *colorOp, *alphaOp);
    }
    const GLenum* srcColor = gltables::blendFactors.find(target.srcColor);
    const GLenum* dstColor = gltables::blendFactors.find(target.dstColor);
    const GLenum* srcAlpha = gltables::blendFactors.find(target.srcAlpha);
    const GLenum* dstAlpha = gltables::blendFactors.find(target.dstAlpha);
    if (srcColor && dstColor && srcAlpha && dstAlpha)
    {
        glBlendFuncSeparatei(buffer, *srcColor, *dstColor, *srcAlpha, *dstAlpha);
    }
}

} // namespace

StateGL::StateGL(std::shared_ptr<const GfxStateProperties> state)
    : properties(state ? std::move(state) : std::make_shared<const GfxStateProperties>())
{
}

void StateGL::apply() const
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_APPLICATION, "renderengine::StateGL::apply ");
    applyState(properties->rasterizer);
    applyState(properties->colorOutput);
    applyState(properties->scissor);
    applyState(properties->depthStencil);
}

void StateGL::applyDifferential(const GfxStateProperties& previous) const
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_APPLICATION, "renderengine::StateGL::applyDifferential ");
    if (previous.rasterizer != properties->rasterizer)
    {
        applyState(properties->rasterizer);
    }
    if (previous.colorOutput != properties->colorOutput)
    {
        applyState(properties->colorOutput);
    }
    if (previous.scissor != properties->scissor)
    {
        applyState(properties->scissor);
    }
    if (previous.depthStencil != properties->depthStencil)
    {
        applyState(properties->depthStencil);
    }
}

void StateGL::applyState(const RasterizerProperties& rasterizer) const
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_APPLICATION, "renderengine::StateGL::applyState Rasterizer");
    if (const GLenum* fillMode = gltables::fillModes.find(rasterizer.fillMode))
    {
        glPolygonMode(GL_FRONT_AND_BACK, *fillMode);
    }
    const CullMode cull = s_cullModes[rasterizer.cullMode];
    setEnabled(GL_CULL_FACE, cull.enable);
    glCullFace(cull.face);
    glFrontFace(rasterizer.frontFace == 0 ? GL_CCW : GL_CW);
    applySmoothingAndStipple(rasterizer);
    glLineWidth(rasterizer.sizeScale * rasterizer.lineWidth);
    glPointSize(rasterizer.sizeScale * rasterizer.pointSize);
    applyPolygonOffset(rasterizer);
    setEnabled(GL_MULTISAMPLE, rasterizer.multisample);
}

void StateGL::applyState(const ColorOutputProperties& colorOutput) const
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_APPLICATION, "renderengine::StateGL::applyState ColorOutput");
    for (GLuint i = 0; i < s_drawBufferCount; ++i)
    {
        applyColorTarget(i, colorOutput.targets[i]);
    }
    glBlendColor(colorOutput.blendColor[0], colorOutput.blendColor[1], colorOutput.blendColor[2],
                 colorOutput.blendAlpha);
    if (!colorOutput.logicOpEnable)
    {
        glDisable(GL_COLOR_LOGIC_OP);
        return;
    }
    glEnable(GL_COLOR_LOGIC_OP);
    if (const GLenum* logicOp = gltables::logicOperations.find(colorOutput.logicOp))
    {
        glLogicOp(*logicOp);
    }
}

void StateGL::applyState(const ScissorProperties& scissor) const
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_APPLICATION, "renderengine::StateGL::applyState Scissor");
    setEnabled(GL_SCISSOR_TEST, scissor.enable);
    if (scissor.enable)
    {
        glScissor(scissor.rectangle[0], scissor.rectangle[1], scissor.rectangle[2], scissor.rectangle[3]);
    }
}

void StateGL::applyState(const DepthStencilProperties& depthStencil) const
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_APPLICATION, "renderengine::StateGL::applyState DepthStencil");
    setEnabled(GL_DEPTH_TEST, depthStencil.depthTest);
    glDepthMask(depthStencil.depthWrite);
    if (const GLenum* depthFunc = gltables::comparisons.find(depthStencil.depthFunc))
    {
        glDepthFunc(*depthFunc);
    }
    setEnabled(GL_STENCIL_TEST, depthStencil.stencilTest);
    if (depthStencil.stencilTest)
    {
        applyState(depthStencil.front, GL_FRONT);
        applyState(depthStencil.back, GL_BACK);
    }
}

void StateGL::applyState(const StencilProperties& stencil, GLenum face) const
{
    RENDERENGINE_DEBUG_GROUP(GL_DEBUG_SOURCE_APPLICATION, "renderengine::StateGL::applyState Stencil");
    if (const GLenum* func = gltables::comparisons.find(stencil.func))
    {
        glStencilFuncSeparate(face, *func, static_cast<GLint>(stencil.reference), stencil.readMask);
    }
    const GLenum* stencilFail = gltables::stencilOperations.find(stencil.stencilFail);
    const GLenum* depthFail = gltables::stencilOperations.find(stencil.depthFail);
    const GLenum* depthPass = gltables::stencilOperations.find(stencil.depthPass);
    if (stencilFail && depthFail && depthPass)
    {
        glStencilOpSeparate(face, *stencilFail, *depthFail, *depthPass);
    }
    glStencilMaskSeparate(face, stencil.writeMask);
}

} // namespace renderengine
