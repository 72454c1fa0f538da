#include <algorithm>
#include <type_traits>

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

TEST(RecordDefaults, Buffers)
{
    const BufferProperties buffer;
    EXPECT_EQ(buffer.kind, 0);
    EXPECT_EQ(buffer.size, 0u);
    EXPECT_EQ(buffer.data, nullptr);
    const IndexBufferProperties indexBuffer;
    EXPECT_EQ(indexBuffer.dataType.getType(), SbDataType::UNSIGNED_INT);
    EXPECT_FALSE(indexBuffer.buffer.isValid());
    const VertexBufferProperties vertexBuffer;
    EXPECT_EQ(vertexBuffer.slot, 0u);
    EXPECT_EQ(vertexBuffer.dataType.getType(), SbDataType::FLOAT);
    EXPECT_EQ(vertexBuffer.normalized, 0);
    EXPECT_EQ(vertexBuffer.componentCount, 4);
    EXPECT_EQ(vertexBuffer.stride, 0u);
    EXPECT_EQ(vertexBuffer.offset, 0u);
    EXPECT_EQ(vertexBuffer.divisor, 0u);
    EXPECT_FALSE(vertexBuffer.buffer.isValid());
    EXPECT_TRUE(vertexBuffer.name.empty());
    const ShaderBufferProperties shaderBuffer;
    EXPECT_EQ(shaderBuffer.kind, 1u);
    EXPECT_FALSE(shaderBuffer.buffer.isValid());
}

TEST(RecordDefaults, Sampler)
{
    const SamplerProperties sampler;
    EXPECT_EQ(sampler.borderColor, 0u);
    EXPECT_EQ(sampler.maxAnisotropy, 1.0f);
    EXPECT_EQ(sampler.wrapS, 2);
    EXPECT_EQ(sampler.wrapT, 2);
    EXPECT_EQ(sampler.wrapR, 2);
    EXPECT_EQ(sampler.minFilter, 2);
    EXPECT_EQ(sampler.magFilter, 2);
    EXPECT_EQ(sampler.mipFilter, 2);
}

TEST(RecordDefaults, ViewportBlitComputeAndClear)
{
    const ViewportProperties viewport;
    EXPECT_EQ(viewport.rectangle, SbVec4i32(0, 0, 0, 0));
    EXPECT_EQ(viewport.depthRange, SbVec2f(0.0f, 1.0f));
    EXPECT_EQ(viewport.sizeScale, 1.0f);
    const BlitProperties blit;
    EXPECT_EQ(blit.source, SbVec4i32(0, 0, 0, 0));
    EXPECT_EQ(blit.flags, 1);
    EXPECT_EQ(blit.filter, 1u);
    const ComputeProperties compute;
    EXPECT_EQ(compute.groups, SbVec3i32(1, 1, 1));
    EXPECT_FALSE(compute.releaseState);
    const ClearTargetProperties clear;
    for (const SbVec4f& color : clear.colors)
    {
        EXPECT_EQ(color, SbVec4f(0.0f, 0.0f, 0.0f, 0.0f));
    }
    EXPECT_EQ(clear.depth, 1.0f);
    EXPECT_EQ(clear.stencil, 0);
    EXPECT_EQ(clear.flags, 7);
    EXPECT_TRUE(clear.colorMask[0] && clear.colorMask[1] && clear.colorMask[2] && clear.colorMask[3]);
    EXPECT_TRUE(clear.depthWrite);
    EXPECT_EQ(clear.stencilWriteMask, 0xFFFFFFFFu);
}

TEST(RecordDefaults, Textures)
{
    const TextureProperties texture;
    EXPECT_EQ(texture.type, 2u);
    EXPECT_EQ(texture.immutable, 0);
    EXPECT_EQ(texture.compressed, 0);
    EXPECT_EQ(texture.width, 1u);
    EXPECT_EQ(texture.height, 1u);
    EXPECT_EQ(texture.depth, 1u);
    EXPECT_EQ(texture.baseLevel, 0);
    EXPECT_EQ(texture.maxLevel, 0);
    EXPECT_EQ(texture.samples, 1);
    EXPECT_EQ(texture.format, 8u);
    EXPECT_EQ(texture.internalFormat, 21u);
    EXPECT_EQ(texture.swizzle[0], 0u);
    EXPECT_EQ(texture.swizzle[1], 2u);
    EXPECT_EQ(texture.swizzle[2], 1u);
    EXPECT_EQ(texture.swizzle[3], 3u);
    EXPECT_EQ(texture.dataType.getType(), SbDataType::UNSIGNED_BYTE);
    EXPECT_TRUE(texture.data.empty());
    EXPECT_TRUE(texture.sizes.empty());
    const TextureUpdateBatchData entry;
    EXPECT_EQ(entry.width, 0u);
    EXPECT_EQ(entry.format, 8u);
    EXPECT_EQ(entry.dataType.getType(), SbDataType::UNSIGNED_BYTE);
    EXPECT_EQ(entry.data, nullptr);
    EXPECT_EQ(entry.flags, 1);
    const TextureImageProperties image;
    EXPECT_FALSE(image.texture.isValid());
    EXPECT_EQ(image.layer, 0);
    EXPECT_EQ(image.level, 0);
    EXPECT_EQ(image.unit, 0);
    EXPECT_EQ(image.access, 0);
    EXPECT_EQ(image.layered, 0);
}

TEST(RecordDefaults, Draw)
{
    const DrawRange range;
    EXPECT_FALSE(range.indexBuffer.isValid());
    EXPECT_EQ(range.primitive, 4u);
    EXPECT_EQ(range.firstVertex, 0);
    EXPECT_EQ(range.indexOffset, 0u);
    EXPECT_EQ(range.count, 0);
    EXPECT_EQ(range.instanceCount, 1);
    EXPECT_EQ(range.baseInstance, 0u);
    EXPECT_FALSE(range.primitiveRestart);
    EXPECT_EQ(range.primitiveRestartValue, 0xFFFFFFFFu);
    const OverallAttribute attribute;
    EXPECT_EQ(attribute.dataType.getType(), SbDataType::FLOAT);
    EXPECT_EQ(attribute.componentCount, 4);
    EXPECT_EQ(sizeof(attribute.value), 32u);
    EXPECT_TRUE(std::all_of(attribute.value, attribute.value + 32, [](uint8_t byte) { return byte == 0; }));
}

TEST(RecordDefaults, ShaderState)
{
    const ShaderStateCoreProperties core;
    EXPECT_FALSE(core.program.isValid());
    EXPECT_FALSE(core.renderTarget.isValid());
    EXPECT_FALSE(core.viewport.isValid());
    EXPECT_EQ(core.patchVertices, 1u);
    EXPECT_TRUE(core.shaderParameters.empty());
    EXPECT_TRUE(core.shaderBuffers.empty());
    EXPECT_TRUE(core.textureImages.empty());
    EXPECT_FALSE(core.lightingFlags.lighting);
    EXPECT_FALSE(core.lightingFlags.twoSided);
    EXPECT_EQ(core.reserved, 0);
    EXPECT_EQ(core.clipPlanes.enableMask, 0);
    EXPECT_EQ(core.textures.mask, 0u);
    for (int i = 0; i < 32; ++i)
    {
        EXPECT_FALSE(core.textures.samplers[i].isValid());
        EXPECT_FALSE(core.textures.textures[i].isValid());
    }
}

TEST(RecordDefaults, FixedFunctionStateIsThatOfANewContext)
{
    const ShaderStateProperties state;
    EXPECT_EQ(state.transform.part1.model, SbMatrix());
    EXPECT_EQ(state.transform.part2.projection, SbMatrix());
    EXPECT_EQ(state.light.enabledMask, 0);
    EXPECT_EQ(state.light.position[3], SbVec4f(0.0f, 0.0f, 1.0f, 0.0f));
    EXPECT_EQ(state.light.spotDirection[3], SbVec4f(0.0f, 0.0f, -1.0f, 0.0f));
    EXPECT_EQ(state.light.spotExponent[7], 0.0f);
    EXPECT_EQ(state.light.spotCutoff[7], 180.0f);
    EXPECT_EQ(state.light.constantAttenuation[7], 1.0f);
    EXPECT_EQ(state.light.linearAttenuation[7], 0.0f);
    EXPECT_EQ(state.light.quadraticAttenuation[7], 0.0f);
    EXPECT_EQ(state.light.diffuse[0], SbVec4f(1.0f, 1.0f, 1.0f, 1.0f));
    EXPECT_EQ(state.light.specular[0], SbVec4f(1.0f, 1.0f, 1.0f, 1.0f));
    EXPECT_EQ(state.light.diffuse[1], SbVec4f(0.0f, 0.0f, 0.0f, 1.0f));
    EXPECT_EQ(state.light.ambient[0], SbVec4f(0.0f, 0.0f, 0.0f, 1.0f));
    EXPECT_EQ(state.material.lightModelAmbient, SbVec4f(0.2f, 0.2f, 0.2f, 1.0f));
    EXPECT_EQ(state.material.localViewer, 0);
    EXPECT_TRUE(state.material.setColor);
    EXPECT_FALSE(state.material.flatShading);
    EXPECT_EQ(state.material.ambient.front, SbVec4f(0.2f, 0.2f, 0.2f, 1.0f));
    EXPECT_EQ(state.material.diffuse.back, SbVec4f(0.8f, 0.8f, 0.8f, 1.0f));
    EXPECT_EQ(state.material.emission.front, SbVec4f(0.0f, 0.0f, 0.0f, 1.0f));
    EXPECT_EQ(state.material.shininess.front, 0.0f);
    const TexGenUnitProperties& unit = state.texGen.units[7];
    EXPECT_EQ(unit.mode, 1u);
    EXPECT_EQ(unit.coordinateMask, 0);
    EXPECT_EQ(unit.planes[0][0], 1.0f);
    EXPECT_EQ(unit.planes[1][1], 1.0f);
    EXPECT_EQ(unit.planes[2][2], 0.0f);
    EXPECT_EQ(unit.planes[3][3], 0.0f);
    EXPECT_EQ(state.texEnv.unitMask, 0u);
    EXPECT_EQ(state.texEnv.modes[3], 0x2100u);
}

TEST(RecordDefaults, GfxState)
{
    const GfxStateProperties state;
    EXPECT_EQ(state.rasterizer.polygonOffsetUnits, 0.0f);
    EXPECT_EQ(state.rasterizer.polygonOffsetFactor, 0.0f);
    EXPECT_EQ(state.rasterizer.lineWidth, 1.0f);
    EXPECT_EQ(state.rasterizer.pointSize, 1.0f);
    EXPECT_EQ(state.rasterizer.sizeScale, 1.0f);
    EXPECT_EQ(state.rasterizer.lineStipplePattern, -1);
    EXPECT_EQ(state.rasterizer.lineStippleFactor, 0);
    EXPECT_EQ(state.rasterizer.fillMode, 2);
    EXPECT_EQ(state.rasterizer.cullMode, 2);
    EXPECT_EQ(state.rasterizer.polygonOffsetEnable, 1);
    EXPECT_EQ(state.rasterizer.frontFace, 0);
    EXPECT_TRUE(state.rasterizer.multisample);
    EXPECT_FALSE(state.rasterizer.pointSmooth);
    EXPECT_FALSE(state.rasterizer.lineSmooth);
    const ColorTargetProperties& target = state.colorOutput.targets[7];
    EXPECT_EQ(target.colorOp, 0);
    EXPECT_EQ(target.srcColor, 1);
    EXPECT_EQ(target.dstColor, 0);
    EXPECT_EQ(target.alphaOp, 0);
    EXPECT_EQ(target.srcAlpha, 1);
    EXPECT_EQ(target.dstAlpha, 0);
    EXPECT_TRUE(target.writeRed && target.writeGreen && target.writeBlue && target.writeAlpha);
    EXPECT_EQ(target.blendEnable, 0);
    EXPECT_EQ(state.colorOutput.blendColor, SbVec3f(0.0f, 0.0f, 0.0f));
    EXPECT_EQ(state.colorOutput.blendAlpha, 0.0f);
    EXPECT_EQ(state.colorOutput.logicOp, 3);
    EXPECT_EQ(state.colorOutput.logicOpEnable, 0);
    EXPECT_TRUE(state.depthStencil.depthTest);
    EXPECT_TRUE(state.depthStencil.depthWrite);
    EXPECT_EQ(state.depthStencil.depthFunc, 1u);
    EXPECT_FALSE(state.depthStencil.stencilTest);
    EXPECT_EQ(state.depthStencil.back.func, 7u);
    EXPECT_EQ(state.depthStencil.back.reference, 0);
    EXPECT_EQ(state.depthStencil.back.readMask, 0xFFFFFFFFu);
    EXPECT_EQ(state.depthStencil.back.writeMask, 0xFFFFFFFFu);
    EXPECT_EQ(state.depthStencil.back.stencilFail, 0u);
    EXPECT_EQ(state.depthStencil.back.depthFail, 0u);
    EXPECT_EQ(state.depthStencil.back.depthPass, 0u);
    EXPECT_EQ(state.scissor.rectangle, SbVec4us(0, 0, 0, 0));
    EXPECT_FALSE(state.scissor.enable);
}

TEST(RecordDefaults, OtherRecords)
{
    EXPECT_EQ(RenderTextureProperty().attachment, 0);
    EXPECT_EQ(RenderTargetProperties().srgb, 0);
    EXPECT_EQ(ShaderObjectProperties().stage, 0u);
    EXPECT_TRUE(ShaderProgramProperties().shaderObjects.empty());
    EXPECT_EQ(ShaderParameterProperties<float>().value, 0.0f);
    EXPECT_EQ(ShaderParameterProperties<SbMatrix>().value, SbMatrix());
    EXPECT_TRUE(ShaderParameterArrayProperties<int>().value.empty());
    EXPECT_EQ(TaskProperties().task, nullptr);
    const TransformFeedbackProperties feedback;
    EXPECT_EQ(feedback.primitiveMode, 0u);
    EXPECT_EQ(feedback.bufferMode, 0u);
    EXPECT_EQ(feedback.discard, 0);
}

TEST(RecordLayout, HasTheSizesOfTheInterface)
{
    EXPECT_EQ(sizeof(SamplerProperties), 12u);
    EXPECT_EQ(sizeof(IndexBufferProperties), 8u);
    EXPECT_EQ(sizeof(RenderTextureProperty), 8u);
    EXPECT_EQ(sizeof(ColorTargetProperties), 9u);
    EXPECT_EQ(sizeof(StencilProperties), 28u);
    EXPECT_EQ(sizeof(RasterizerProperties), 28u);
    EXPECT_EQ(sizeof(ViewportProperties), 28u);
    EXPECT_EQ(sizeof(LightingFlags), 2u);
}

TEST(RecordLayout, PacksTheSamplerFiltersIntoTheMiddleByte)
{
    SamplerProperties sampler;
    sampler.wrapS = 0;
    sampler.wrapT = 0;
    sampler.wrapR = 0;
    sampler.magFilter = 0;
    sampler.mipFilter = 0;
    sampler.minFilter = 3;
    EXPECT_EQ(reinterpret_cast<const uint8_t*>(&sampler)[9] & 0x7F, 3 << 3);
    sampler.minFilter = 0;
    sampler.magFilter = 3;
    EXPECT_EQ(reinterpret_cast<const uint8_t*>(&sampler)[9] & 0x7F, 3 << 5);
}

TEST(RecordLayout, PacksTheRasterizerFlagsIntoOneByteFromTheLowBit)
{
    RasterizerProperties rasterizer;
    rasterizer.fillMode = 1;
    rasterizer.cullMode = 3;
    rasterizer.polygonOffsetEnable = 5;
    rasterizer.frontFace = -1;
    EXPECT_EQ(reinterpret_cast<const uint8_t*>(&rasterizer)[23], 1 | (3 << 2) | (5 << 4) | (1 << 7));
}

TEST(RecordLayout, CanBeCopiedBytewiseWherePlain)
{
    EXPECT_TRUE(std::is_trivially_copyable_v<GfxStateProperties>);
    EXPECT_TRUE(std::is_trivially_copyable_v<SamplerProperties>);
    EXPECT_TRUE(std::is_trivially_copyable_v<ViewportProperties>);
    EXPECT_TRUE(std::is_trivially_copyable_v<BlitProperties>);
    EXPECT_TRUE(std::is_trivially_copyable_v<ComputeProperties>);
    EXPECT_TRUE(std::is_trivially_copyable_v<ClearTargetProperties>);
    EXPECT_TRUE(std::is_trivially_copyable_v<IndexBufferProperties>);
}

TEST(TaskInterface, HasNoVirtualDestructorAndNoData)
{
    EXPECT_FALSE(std::has_virtual_destructor_v<TaskInterface>);
    EXPECT_TRUE(std::is_abstract_v<TaskInterface>);
    EXPECT_EQ(sizeof(TaskInterface), sizeof(void*));
}

} // namespace
