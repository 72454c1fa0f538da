#include <memory>

#include <gtest/gtest.h>

#include <renderengine/BlitProperties.h>
#include <renderengine/BufferProperties.h>
#include <renderengine/ClearTargetProperties.h>
#include <renderengine/ComputeProperties.h>
#include <renderengine/DrawProperties.h>
#include <renderengine/GfxStateProperties.h>
#include <renderengine/IndexBufferProperties.h>
#include <renderengine/RenderTargetProperties.h>
#include <renderengine/SamplerProperties.h>
#include <renderengine/ShaderBufferProperties.h>
#include <renderengine/ShaderObjectProperties.h>
#include <renderengine/ShaderParameterArrayProperties.h>
#include <renderengine/ShaderParameterProperties.h>
#include <renderengine/ShaderProgramProperties.h>
#include <renderengine/ShaderStateProperties.h>
#include <renderengine/TaskProperties.h>
#include <renderengine/TextureImageProperties.h>
#include <renderengine/TextureProperties.h>
#include <renderengine/TextureUpdateBatchDataProperties.h>
#include <renderengine/TransformFeedbackProperties.h>
#include <renderengine/VertexBufferProperties.h>
#include <renderengine/ViewportProperties.h>

namespace
{

using namespace renderengine;

struct EmptyTask final : TaskInterface
{
    void run() override {}
};

/// Expects that two records are equal until one is changed.
template <class Record, class Change> void expectUnequalAfter(const Change& change)
{
    Record changed;
    const Record original;
    EXPECT_TRUE(changed == original);
    EXPECT_FALSE(changed != original);
    change(changed);
    EXPECT_FALSE(changed == original);
    EXPECT_TRUE(changed != original);
    const Record copy = changed;
    EXPECT_TRUE(changed == copy);
}

#define EXPECT_COMPARED(RECORD, CHANGE)                                     \
    do                                                                      \
    {                                                                       \
        SCOPED_TRACE(#CHANGE);                                              \
        expectUnequalAfter<RECORD>([&](RECORD& record) { record.CHANGE; }); \
    } while (false)

TEST(RecordEquality, BufferPropertiesComparesEveryField)
{
    EXPECT_COMPARED(BufferProperties, kind = 1);
    EXPECT_COMPARED(BufferProperties, size = 1);
    EXPECT_COMPARED(BufferProperties, data = &record);
}

TEST(RecordEquality, IndexBufferPropertiesComparesEveryField)
{
    EXPECT_COMPARED(IndexBufferProperties, dataType = SbDataType::UNSIGNED_BYTE);
    EXPECT_COMPARED(IndexBufferProperties, buffer = BufferHandle(1));
}

TEST(RecordEquality, VertexBufferPropertiesComparesEveryField)
{
    EXPECT_COMPARED(VertexBufferProperties, slot = 1);
    EXPECT_COMPARED(VertexBufferProperties, dataType = SbDataType::INT);
    EXPECT_COMPARED(VertexBufferProperties, normalized = 1);
    EXPECT_COMPARED(VertexBufferProperties, componentCount = 3);
    EXPECT_COMPARED(VertexBufferProperties, stride = 1);
    EXPECT_COMPARED(VertexBufferProperties, offset = 1);
    EXPECT_COMPARED(VertexBufferProperties, divisor = 1);
    EXPECT_COMPARED(VertexBufferProperties, buffer = BufferHandle(1));
    EXPECT_COMPARED(VertexBufferProperties, name = "position");
}

TEST(RecordEquality, ShaderBufferPropertiesComparesEveryField)
{
    EXPECT_COMPARED(ShaderBufferProperties, kind = 0);
    EXPECT_COMPARED(ShaderBufferProperties, buffer = BufferHandle(1));
    EXPECT_COMPARED(ShaderBufferProperties, name = "block");
}

TEST(RecordEquality, SamplerPropertiesComparesEveryField)
{
    EXPECT_COMPARED(SamplerProperties, borderColor = 1);
    EXPECT_COMPARED(SamplerProperties, maxAnisotropy = 2.0f);
    EXPECT_COMPARED(SamplerProperties, wrapS = 1);
    EXPECT_COMPARED(SamplerProperties, wrapT = 1);
    EXPECT_COMPARED(SamplerProperties, wrapR = 1);
    EXPECT_COMPARED(SamplerProperties, minFilter = 1);
    EXPECT_COMPARED(SamplerProperties, magFilter = 1);
    EXPECT_COMPARED(SamplerProperties, mipFilter = 1);
}

TEST(RecordEquality, ViewportPropertiesComparesEveryField)
{
    EXPECT_COMPARED(ViewportProperties, rectangle[2] = 1);
    EXPECT_COMPARED(ViewportProperties, depthRange[0] = 0.5f);
    EXPECT_COMPARED(ViewportProperties, sizeScale = 2.0f);
}

TEST(RecordEquality, BlitPropertiesComparesEveryField)
{
    EXPECT_COMPARED(BlitProperties, source[3] = 1);
    EXPECT_COMPARED(BlitProperties, destination[3] = 1);
    EXPECT_COMPARED(BlitProperties, flags = 2);
    EXPECT_COMPARED(BlitProperties, filter = 2);
}

TEST(RecordEquality, ComputePropertiesComparesEveryField)
{
    EXPECT_COMPARED(ComputeProperties, groups[2] = 2);
    EXPECT_COMPARED(ComputeProperties, releaseState = true);
}

TEST(RecordEquality, ClearTargetPropertiesComparesEveryField)
{
    EXPECT_COMPARED(ClearTargetProperties, colors[7][3] = 1.0f);
    EXPECT_COMPARED(ClearTargetProperties, depth = 0.0f);
    EXPECT_COMPARED(ClearTargetProperties, stencil = 1);
    EXPECT_COMPARED(ClearTargetProperties, flags = 1);
    EXPECT_COMPARED(ClearTargetProperties, colorMask[3] = false);
    EXPECT_COMPARED(ClearTargetProperties, depthWrite = false);
    EXPECT_COMPARED(ClearTargetProperties, stencilWriteMask = 1);
}

TEST(RecordEquality, TextureImagePropertiesComparesEveryField)
{
    EXPECT_COMPARED(TextureImageProperties, texture = TextureHandle(1));
    EXPECT_COMPARED(TextureImageProperties, name = "image");
    EXPECT_COMPARED(TextureImageProperties, layer = 1);
    EXPECT_COMPARED(TextureImageProperties, level = 1);
    EXPECT_COMPARED(TextureImageProperties, unit = 1);
    EXPECT_COMPARED(TextureImageProperties, access = 1);
    EXPECT_COMPARED(TextureImageProperties, layered = 1);
}

TEST(RecordEquality, RenderTexturePropertyComparesEveryField)
{
    EXPECT_COMPARED(RenderTextureProperty, texture = TextureHandle(1));
    EXPECT_COMPARED(RenderTextureProperty, layer = 1);
    EXPECT_COMPARED(RenderTextureProperty, attachment = 1);
    EXPECT_COMPARED(RenderTextureProperty, level = 1);
}

TEST(RecordEquality, RenderTargetPropertiesComparesEveryField)
{
    EXPECT_COMPARED(RenderTargetProperties, attachments.resize(1));
    EXPECT_COMPARED(RenderTargetProperties, srgb = 1);
}

TEST(RecordEquality, ShaderObjectPropertiesComparesEveryField)
{
    EXPECT_COMPARED(ShaderObjectProperties, stage = 1);
    EXPECT_COMPARED(ShaderObjectProperties, source = "void main() {}");
}

TEST(RecordEquality, ShaderProgramPropertiesComparesEveryField)
{
    EXPECT_COMPARED(ShaderProgramProperties, shaderObjects.resize(1));
}

TEST(RecordEquality, DrawRangeComparesEveryField)
{
    EXPECT_COMPARED(DrawRange, indexBuffer = IndexBufferHandle(1));
    EXPECT_COMPARED(DrawRange, primitive = 1);
    EXPECT_COMPARED(DrawRange, firstVertex = 1);
    EXPECT_COMPARED(DrawRange, indexOffset = 1);
    EXPECT_COMPARED(DrawRange, count = 1);
    EXPECT_COMPARED(DrawRange, instanceCount = 2);
    EXPECT_COMPARED(DrawRange, baseInstance = 1);
    EXPECT_COMPARED(DrawRange, primitiveRestart = true);
    EXPECT_COMPARED(DrawRange, primitiveRestartValue = 1);
}

TEST(RecordEquality, OverallAttributeComparesEveryField)
{
    EXPECT_COMPARED(OverallAttribute, slot = 1);
    EXPECT_COMPARED(OverallAttribute, dataType = SbDataType::INT);
    EXPECT_COMPARED(OverallAttribute, normalized = 1);
    EXPECT_COMPARED(OverallAttribute, componentCount = 3);
    EXPECT_COMPARED(OverallAttribute, name = "color");
    EXPECT_COMPARED(OverallAttribute, value[31] = 1);
}

TEST(RecordEquality, DrawPropertiesComparesEveryField)
{
    EXPECT_COMPARED(DrawProperties, vertexBuffers.resize(1));
    EXPECT_COMPARED(DrawProperties, shaderBuffers.resize(1));
    EXPECT_COMPARED(DrawProperties, ranges.resize(1));
    EXPECT_COMPARED(DrawProperties, overallAttributes.resize(1));
}

TEST(RecordEquality, TexturePropertiesComparesEveryField)
{
    EXPECT_COMPARED(TextureProperties, type = 1);
    EXPECT_COMPARED(TextureProperties, immutable = 1);
    EXPECT_COMPARED(TextureProperties, compressed = 1);
    EXPECT_COMPARED(TextureProperties, width = 2);
    EXPECT_COMPARED(TextureProperties, height = 2);
    EXPECT_COMPARED(TextureProperties, depth = 2);
    EXPECT_COMPARED(TextureProperties, baseLevel = 1);
    EXPECT_COMPARED(TextureProperties, maxLevel = 1);
    EXPECT_COMPARED(TextureProperties, samples = 2);
    EXPECT_COMPARED(TextureProperties, format = 1);
    EXPECT_COMPARED(TextureProperties, internalFormat = 1);
    EXPECT_COMPARED(TextureProperties, swizzle[3] = 5);
    EXPECT_COMPARED(TextureProperties, dataType = SbDataType::FLOAT);
    EXPECT_COMPARED(TextureProperties, data.resize(1));
    EXPECT_COMPARED(TextureProperties, sizes.resize(1));
    EXPECT_COMPARED(TextureProperties, name = "albedo");
}

TEST(RecordEquality, TextureUpdateBatchDataComparesEveryField)
{
    EXPECT_COMPARED(TextureUpdateBatchData, x = 1);
    EXPECT_COMPARED(TextureUpdateBatchData, y = 1);
    EXPECT_COMPARED(TextureUpdateBatchData, z = 1);
    EXPECT_COMPARED(TextureUpdateBatchData, width = 1);
    EXPECT_COMPARED(TextureUpdateBatchData, height = 1);
    EXPECT_COMPARED(TextureUpdateBatchData, depth = 1);
    EXPECT_COMPARED(TextureUpdateBatchData, face = 1);
    EXPECT_COMPARED(TextureUpdateBatchData, format = 1);
    EXPECT_COMPARED(TextureUpdateBatchData, dataType = SbDataType::FLOAT);
    EXPECT_COMPARED(TextureUpdateBatchData, rowLength = 1);
    EXPECT_COMPARED(TextureUpdateBatchData, imageHeight = 1);
    EXPECT_COMPARED(TextureUpdateBatchData, level = 1);
    EXPECT_COMPARED(TextureUpdateBatchData, data = &record);
    EXPECT_COMPARED(TextureUpdateBatchData, flags = 0);
}

TEST(RecordEquality, ShaderParameterPropertiesComparesEveryField)
{
    EXPECT_COMPARED(ShaderParameterProperties<SbVec4f>, name = "color");
    EXPECT_COMPARED(ShaderParameterProperties<SbVec4f>, value[3] = 1.0f);
}

TEST(RecordEquality, ShaderParameterArrayPropertiesComparesEveryField)
{
    EXPECT_COMPARED(ShaderParameterArrayProperties<float>, name = "weights");
    EXPECT_COMPARED(ShaderParameterArrayProperties<float>, value.resize(1));
}

TEST(RecordEquality, TaskPropertiesComparesEveryField)
{
    EXPECT_COMPARED(TaskProperties, task = std::make_shared<EmptyTask>());
}

TEST(RecordEquality, TransformFeedbackPropertiesComparesEveryField)
{
    EXPECT_COMPARED(TransformFeedbackProperties, varyings.resize(1));
    EXPECT_COMPARED(TransformFeedbackProperties, buffers.resize(1));
    EXPECT_COMPARED(TransformFeedbackProperties, primitiveMode = 1);
    EXPECT_COMPARED(TransformFeedbackProperties, bufferMode = 1);
    EXPECT_COMPARED(TransformFeedbackProperties, discard = 1);
}

TEST(RecordEquality, LightingFlagsComparesEveryField)
{
    EXPECT_COMPARED(LightingFlags, lighting = true);
    EXPECT_COMPARED(LightingFlags, twoSided = true);
}

TEST(RecordEquality, ClipPlanePropertiesComparesEveryField)
{
    EXPECT_COMPARED(ClipPlaneProperties, planes[7][3] = 1.0f);
    EXPECT_COMPARED(ClipPlaneProperties, enableMask = 1);
}

TEST(RecordEquality, ShaderStateCorePropertiesComparesEveryField)
{
    EXPECT_COMPARED(ShaderStateCoreProperties, program = ShaderProgramHandle(1));
    EXPECT_COMPARED(ShaderStateCoreProperties, renderTarget = RenderTargetHandle(1));
    EXPECT_COMPARED(ShaderStateCoreProperties, viewport = ViewportHandle(1));
    EXPECT_COMPARED(ShaderStateCoreProperties, patchVertices = 3);
    EXPECT_COMPARED(ShaderStateCoreProperties, shaderParameters.resize(1));
    EXPECT_COMPARED(ShaderStateCoreProperties, shaderBuffers.resize(1));
    EXPECT_COMPARED(ShaderStateCoreProperties, textureImages.resize(1));
    EXPECT_COMPARED(ShaderStateCoreProperties, lightingFlags.lighting = true);
    EXPECT_COMPARED(ShaderStateCoreProperties, reserved = 1);
    EXPECT_COMPARED(ShaderStateCoreProperties, clipPlanes.enableMask = 1);
    EXPECT_COMPARED(ShaderStateCoreProperties, textures.mask = 1);
}

TEST(RecordEquality, RasterizerPropertiesComparesEveryField)
{
    EXPECT_COMPARED(RasterizerProperties, polygonOffsetUnits = 1.0f);
    EXPECT_COMPARED(RasterizerProperties, polygonOffsetFactor = 1.0f);
    EXPECT_COMPARED(RasterizerProperties, lineWidth = 2.0f);
    EXPECT_COMPARED(RasterizerProperties, pointSize = 2.0f);
    EXPECT_COMPARED(RasterizerProperties, sizeScale = 2.0f);
    EXPECT_COMPARED(RasterizerProperties, lineStipplePattern = 0);
    EXPECT_COMPARED(RasterizerProperties, lineStippleFactor = 1);
    EXPECT_COMPARED(RasterizerProperties, fillMode = 1);
    EXPECT_COMPARED(RasterizerProperties, cullMode = 1);
    EXPECT_COMPARED(RasterizerProperties, polygonOffsetEnable = 0);
    EXPECT_COMPARED(RasterizerProperties, frontFace = -1);
    EXPECT_COMPARED(RasterizerProperties, multisample = false);
    EXPECT_COMPARED(RasterizerProperties, pointSmooth = true);
    EXPECT_COMPARED(RasterizerProperties, lineSmooth = true);
}

TEST(RecordEquality, ColorTargetPropertiesComparesEveryField)
{
    EXPECT_COMPARED(ColorTargetProperties, colorOp = 1);
    EXPECT_COMPARED(ColorTargetProperties, srcColor = 18);
    EXPECT_COMPARED(ColorTargetProperties, dstColor = 18);
    EXPECT_COMPARED(ColorTargetProperties, alphaOp = 1);
    EXPECT_COMPARED(ColorTargetProperties, srcAlpha = 18);
    EXPECT_COMPARED(ColorTargetProperties, dstAlpha = 18);
    EXPECT_COMPARED(ColorTargetProperties, writeRed = false);
    EXPECT_COMPARED(ColorTargetProperties, writeGreen = false);
    EXPECT_COMPARED(ColorTargetProperties, writeBlue = false);
    EXPECT_COMPARED(ColorTargetProperties, writeAlpha = false);
    EXPECT_COMPARED(ColorTargetProperties, blendEnable = 1);
}

TEST(RecordEquality, ColorOutputPropertiesComparesEveryField)
{
    EXPECT_COMPARED(ColorOutputProperties, targets[7].blendEnable = 1);
    EXPECT_COMPARED(ColorOutputProperties, blendColor[2] = 1.0f);
    EXPECT_COMPARED(ColorOutputProperties, blendAlpha = 1.0f);
    EXPECT_COMPARED(ColorOutputProperties, logicOp = 1);
    EXPECT_COMPARED(ColorOutputProperties, logicOpEnable = 1);
}

TEST(RecordEquality, StencilPropertiesComparesEveryField)
{
    EXPECT_COMPARED(StencilProperties, func = 1);
    EXPECT_COMPARED(StencilProperties, reference = 1);
    EXPECT_COMPARED(StencilProperties, readMask = 1);
    EXPECT_COMPARED(StencilProperties, writeMask = 1);
    EXPECT_COMPARED(StencilProperties, stencilFail = 1);
    EXPECT_COMPARED(StencilProperties, depthFail = 1);
    EXPECT_COMPARED(StencilProperties, depthPass = 1);
}

TEST(RecordEquality, DepthStencilPropertiesComparesEveryField)
{
    EXPECT_COMPARED(DepthStencilProperties, depthTest = false);
    EXPECT_COMPARED(DepthStencilProperties, depthWrite = false);
    EXPECT_COMPARED(DepthStencilProperties, depthFunc = 2);
    EXPECT_COMPARED(DepthStencilProperties, stencilTest = true);
    EXPECT_COMPARED(DepthStencilProperties, front.func = 1);
    EXPECT_COMPARED(DepthStencilProperties, back.func = 1);
}

TEST(RecordEquality, ScissorPropertiesComparesEveryField)
{
    EXPECT_COMPARED(ScissorProperties, rectangle[3] = 1);
    EXPECT_COMPARED(ScissorProperties, enable = true);
}

TEST(RecordEquality, GfxStatePropertiesComparesEveryField)
{
    EXPECT_COMPARED(GfxStateProperties, rasterizer.lineSmooth = true);
    EXPECT_COMPARED(GfxStateProperties, colorOutput.blendAlpha = 1.0f);
    EXPECT_COMPARED(GfxStateProperties, depthStencil.depthTest = false);
    EXPECT_COMPARED(GfxStateProperties, scissor.enable = true);
}

TEST(RecordEquality, TransformPropertiesComparesEveryField)
{
    EXPECT_COMPARED(TransformProperties, part1.model[0][0] = 2.0f);
    EXPECT_COMPARED(TransformProperties, part1.textureMatrices[7][3][3] = 2.0f);
    EXPECT_COMPARED(TransformProperties, part2.view[0][0] = 2.0f);
    EXPECT_COMPARED(TransformProperties, part2.reserved[0][0] = 2.0f);
    EXPECT_COMPARED(TransformProperties, part2.projection[3][3] = 2.0f);
}

TEST(RecordEquality, LightPropertiesComparesEveryField)
{
    EXPECT_COMPARED(LightProperties, position[7][0] = 1.0f);
    EXPECT_COMPARED(LightProperties, spotDirection[7][0] = 1.0f);
    EXPECT_COMPARED(LightProperties, spotExponent[7] = 1.0f);
    EXPECT_COMPARED(LightProperties, spotCutoff[7] = 1.0f);
    EXPECT_COMPARED(LightProperties, constantAttenuation[7] = 2.0f);
    EXPECT_COMPARED(LightProperties, linearAttenuation[7] = 1.0f);
    EXPECT_COMPARED(LightProperties, quadraticAttenuation[7] = 1.0f);
    EXPECT_COMPARED(LightProperties, ambient[7][0] = 1.0f);
    EXPECT_COMPARED(LightProperties, diffuse[7][0] = 1.0f);
    EXPECT_COMPARED(LightProperties, specular[7][0] = 1.0f);
    EXPECT_COMPARED(LightProperties, enabledMask = 1);
}

TEST(RecordEquality, MaterialPropertiesComparesEveryField)
{
    EXPECT_COMPARED(MaterialProperties, lightModelAmbient[0] = 1.0f);
    EXPECT_COMPARED(MaterialProperties, localViewer = 1);
    EXPECT_COMPARED(MaterialProperties, setColor = false);
    EXPECT_COMPARED(MaterialProperties, flatShading = true);
    EXPECT_COMPARED(MaterialProperties, ambient.front[0] = 1.0f);
    EXPECT_COMPARED(MaterialProperties, ambient.back[0] = 1.0f);
    EXPECT_COMPARED(MaterialProperties, diffuse.front[0] = 1.0f);
    EXPECT_COMPARED(MaterialProperties, diffuse.back[0] = 1.0f);
    EXPECT_COMPARED(MaterialProperties, specular.front[0] = 1.0f);
    EXPECT_COMPARED(MaterialProperties, specular.back[0] = 1.0f);
    EXPECT_COMPARED(MaterialProperties, emission.front[0] = 1.0f);
    EXPECT_COMPARED(MaterialProperties, emission.back[0] = 1.0f);
    EXPECT_COMPARED(MaterialProperties, shininess.front = 1.0f);
    EXPECT_COMPARED(MaterialProperties, shininess.back = 1.0f);
}

TEST(RecordEquality, TexGenPropertiesComparesEveryField)
{
    EXPECT_COMPARED(TexGenProperties, units[7].planes[3][3] = 1.0f);
    EXPECT_COMPARED(TexGenProperties, units[7].mode = 0);
    EXPECT_COMPARED(TexGenProperties, units[7].coordinateMask = 1);
}

TEST(RecordEquality, TexEnvPropertiesComparesEveryField)
{
    EXPECT_COMPARED(TexEnvProperties, unitMask = 1);
    EXPECT_COMPARED(TexEnvProperties, modes[3] = 0x1E01);
}

TEST(RecordEquality, ShaderStatePropertiesComparesEveryField)
{
    EXPECT_COMPARED(ShaderStateProperties, patchVertices = 3);
    EXPECT_COMPARED(ShaderStateProperties, transform.part1.model[0][0] = 2.0f);
    EXPECT_COMPARED(ShaderStateProperties, light.enabledMask = 1);
    EXPECT_COMPARED(ShaderStateProperties, material.localViewer = 1);
    EXPECT_COMPARED(ShaderStateProperties, texGen.units[0].mode = 0);
    EXPECT_COMPARED(ShaderStateProperties, texEnv.unitMask = 1);
}

TEST(RecordEquality, TextureUnitsWithoutAUsedUnitAreEqual)
{
    TextureUnitProperties left;
    TextureUnitProperties right;
    right.textures[3] = TextureHandle(1);
    right.samplers[4] = SamplerHandle(1);
    EXPECT_TRUE(left == right);
    left.mask = 1;
    EXPECT_TRUE(left != right);
    right.mask = 1;
    EXPECT_TRUE(left != right);
    right.textures[3] = TextureHandle();
    EXPECT_TRUE(left != right);
    right.samplers[4] = SamplerHandle();
    EXPECT_TRUE(left == right);
}

} // namespace
