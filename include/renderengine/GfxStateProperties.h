#pragma once

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <type_traits>

#include <kavelor/SbVec.h>

namespace renderengine
{

/// How primitives become fragments.
struct RasterizerProperties
{
    RasterizerProperties() : fillMode(2), cullMode(2), polygonOffsetEnable(1), frontFace(0) {}

    bool operator==(const RasterizerProperties& other) const
    {
        return polygonOffsetUnits == other.polygonOffsetUnits && polygonOffsetFactor == other.polygonOffsetFactor &&
               lineWidth == other.lineWidth && pointSize == other.pointSize && sizeScale == other.sizeScale &&
               lineStipplePattern == other.lineStipplePattern && lineStippleFactor == other.lineStippleFactor &&
               fillMode == other.fillMode && cullMode == other.cullMode &&
               polygonOffsetEnable == other.polygonOffsetEnable && frontFace == other.frontFace &&
               multisample == other.multisample && pointSmooth == other.pointSmooth && lineSmooth == other.lineSmooth;
    }
    bool operator!=(const RasterizerProperties& other) const { return !(*this == other); }

    /// Constant depth offset, in units of the smallest resolvable depth difference (glPolygonOffset).
    float polygonOffsetUnits = 0.0f;
    /// Depth offset per unit of depth slope (glPolygonOffset).
    float polygonOffsetFactor = 0.0f;
    /// Line width in pixels, before `sizeScale`.
    float lineWidth = 1.0f;
    /// Point size in pixels, before `sizeScale`.
    float pointSize = 1.0f;
    /// Factor on line width and point size; taken from the viewport when a draw runs.
    float sizeScale = 1.0f;
    /// Bits of the stipple pattern; -1 turns stippling off.
    int16_t lineStipplePattern = -1;
    /// Pixels per bit of the pattern, minus one.
    uint8_t lineStippleFactor = 0;
    /// 0 point, 1 line, 2 fill; 3 must not be passed.
    uint8_t fillMode : 2;
    /// 0 none, 1 front, 2 back, 3 front and back.
    uint8_t cullMode : 2;
    /// Where the depth offset applies: bit 0 fill, bit 1 line, bit 2 point.
    uint8_t polygonOffsetEnable : 3;
    /// 0 counter-clockwise; -1 clockwise (one signed bit).
    int8_t frontFace : 1;
    /// Whether multisampling is used (GL_MULTISAMPLE).
    bool multisample = true;
    /// Whether points are round and antialiased; no effect in a core context.
    bool pointSmooth = false;
    /// Whether lines are antialiased.
    bool lineSmooth = false;
};

static_assert(sizeof(RasterizerProperties) == 28, "five floats, a short and six bytes; the flags share one");

/// How one draw buffer takes its colours.
///
/// Blend equation indices: 0 add, 1 subtract, 2 reverse subtract, 3 min, 4 max. Blend factor indices run from 0 zero
/// and 1 one to 18, one minus second source alpha.
struct ColorTargetProperties
{
    ColorTargetProperties() : colorOp(0), srcColor(1), dstColor(0), alphaOp(0), srcAlpha(1), dstAlpha(0), blendEnable(0)
    {
    }

    bool operator==(const ColorTargetProperties& other) const
    {
        return colorOp == other.colorOp && srcColor == other.srcColor && dstColor == other.dstColor &&
               alphaOp == other.alphaOp && srcAlpha == other.srcAlpha && dstAlpha == other.dstAlpha &&
               writeRed == other.writeRed && writeGreen == other.writeGreen && writeBlue == other.writeBlue &&
               writeAlpha == other.writeAlpha && blendEnable == other.blendEnable;
    }
    bool operator!=(const ColorTargetProperties& other) const { return !(*this == other); }

    /// Blend equation of the colour.
    uint8_t colorOp : 3;
    /// Blend factor of the source colour.
    uint8_t srcColor : 5;
    /// Blend factor of the destination colour.
    uint8_t dstColor : 5;
    /// Blend equation of alpha.
    uint8_t alphaOp : 3;
    /// Blend factor of the source alpha.
    uint8_t srcAlpha : 5;
    /// Blend factor of the destination alpha.
    uint8_t dstAlpha : 5;
    /// Colour mask.
    bool writeRed = true;
    bool writeGreen = true;
    bool writeBlue = true;
    bool writeAlpha = true;
    /// Whether this draw buffer blends.
    uint8_t blendEnable : 1;
};

static_assert(sizeof(ColorTargetProperties) == 9, "five bytes of bit-fields and four of mask");

/// How fragments reach the draw buffers.
struct ColorOutputProperties
{
    ColorOutputProperties() : logicOp(3), logicOpEnable(0) {}

    bool operator==(const ColorOutputProperties& other) const
    {
        return std::equal(std::begin(targets), std::end(targets), std::begin(other.targets)) &&
               blendColor == other.blendColor && blendAlpha == other.blendAlpha && logicOp == other.logicOp &&
               logicOpEnable == other.logicOpEnable;
    }
    bool operator!=(const ColorOutputProperties& other) const { return !(*this == other); }

    /// One entry per draw buffer.
    ColorTargetProperties targets[8];
    /// Red, green and blue of the constant blend colour.
    SbVec3f blendColor{0.0f, 0.0f, 0.0f};
    /// Alpha of the constant blend colour.
    float blendAlpha = 0.0f;
    /// Index of the logic operation; 3 is copy.
    uint8_t logicOp : 4;
    /// Whether the logic operation replaces blending.
    uint8_t logicOpEnable : 1;
};

/// Stencil test and operations of one face.
struct StencilProperties
{
    bool operator==(const StencilProperties& other) const
    {
        return func == other.func && reference == other.reference && readMask == other.readMask &&
               writeMask == other.writeMask && stencilFail == other.stencilFail && depthFail == other.depthFail &&
               depthPass == other.depthPass;
    }
    bool operator!=(const StencilProperties& other) const { return !(*this == other); }

    /// Comparison: 0 never, 1 less, 2 less or equal, 3 greater, 4 greater or equal, 5 equal, 6 not equal, 7 always.
    uint32_t func = 7;
    /// Reference value.
    int32_t reference = 0;
    /// Bits that take part in the comparison.
    uint32_t readMask = 0xFFFFFFFFu;
    /// Bits that are written.
    uint32_t writeMask = 0xFFFFFFFFu;
    /// Operation when the stencil test fails: 0 keep, 1 zero, 2 replace, 3 increment, 4 increment and wrap,
    /// 5 decrement, 6 decrement and wrap, 7 invert.
    uint32_t stencilFail = 0;
    /// Operation when the depth test fails.
    uint32_t depthFail = 0;
    /// Operation when both tests pass.
    uint32_t depthPass = 0;
};

static_assert(sizeof(StencilProperties) == 28, "seven words");

/// Depth and stencil test.
struct DepthStencilProperties
{
    bool operator==(const DepthStencilProperties& other) const
    {
        return depthTest == other.depthTest && depthWrite == other.depthWrite && depthFunc == other.depthFunc &&
               stencilTest == other.stencilTest && front == other.front && back == other.back;
    }
    bool operator!=(const DepthStencilProperties& other) const { return !(*this == other); }

    /// Whether fragments are tested against the depth buffer.
    bool depthTest = true;
    /// Whether depth is written.
    bool depthWrite = true;
    /// Comparison, with the indices of StencilProperties::func.
    uint32_t depthFunc = 1;
    /// Whether fragments are tested against the stencil buffer.
    bool stencilTest = false;
    /// Stencil state of front faces.
    StencilProperties front;
    /// Stencil state of back faces.
    StencilProperties back;
};

/// Scissor test.
struct ScissorProperties
{
    bool operator==(const ScissorProperties& other) const
    {
        return rectangle == other.rectangle && enable == other.enable;
    }
    bool operator!=(const ScissorProperties& other) const { return !(*this == other); }

    /// x, y, width and height in pixels.
    SbVec4us rectangle{0, 0, 0, 0};
    /// Whether the test is on.
    bool enable = false;
};

/// The fixed state of a draw. Shared by pointer to const between many draws; it can be copied bytewise.
struct GfxStateProperties
{
    bool operator==(const GfxStateProperties& other) const
    {
        return rasterizer == other.rasterizer && colorOutput == other.colorOutput &&
               depthStencil == other.depthStencil && scissor == other.scissor;
    }
    bool operator!=(const GfxStateProperties& other) const { return !(*this == other); }

    /// How primitives become fragments.
    RasterizerProperties rasterizer;
    /// How fragments reach the draw buffers.
    ColorOutputProperties colorOutput;
    /// Depth and stencil test.
    DepthStencilProperties depthStencil;
    /// Scissor test.
    ScissorProperties scissor;
};

static_assert(std::is_trivially_copyable_v<GfxStateProperties>, "the record can be copied bytewise");

} // namespace renderengine
