#include "RecordDecoder.h"

#include <algorithm>
#include <iterator>

namespace renderengine::fuzz
{

namespace
{

/// Sides of a texture with pixels: at most 16 by 16 by 16 texels of 32 bytes.
constexpr uint32_t PIXEL_SIDE = 16;

/// What all pointers to pixels and bytes lead to.
/// A cube-map array reads six images for each of its layers.
uint8_t s_memory[PIXEL_SIDE * PIXEL_SIDE * PIXEL_SIDE * 32 * 6];

/// A shader for each stage, with the names that ByteReader::text() gives.
constexpr const char* SHADERS[] = {
    "#version 330\n"
    "in vec3 position;\n"
    "in vec3 normal;\n"
    "layout(std140) uniform Transform { mat4 transforms[4]; };\n"
    "uniform mat4 matrix;\n"
    "out vec3 passed;\n"
    "void main() { passed = normal; gl_Position = matrix * transforms[0] * vec4(position, 1.0); }\n",
    "#version 330\n"
    "layout(triangles) in;\n"
    "layout(triangle_strip, max_vertices = 3) out;\n"
    "in vec3 passed[];\n"
    "out vec3 carried;\n"
    "void main() { for (int i = 0; i < 3; ++i) { carried = passed[i]; gl_Position = gl_in[i].gl_Position;\n"
    "EmitVertex(); } }\n",
    "#version 330\n"
    "uniform vec4 color[3];\n"
    "uniform sampler2D normalMap;\n"
    "layout(std140) uniform Lights { vec4 lights[4]; };\n"
    "out vec4 result;\n"
    "void main() { result = color[1] + lights[2] + texture(normalMap, vec2(0.5)); }\n",
    "#version 400\n"
    "layout(vertices = 3) out;\n"
    "void main() { gl_out[gl_InvocationID].gl_Position = gl_in[gl_InvocationID].gl_Position;\n"
    "gl_TessLevelOuter[0] = gl_TessLevelOuter[1] = gl_TessLevelOuter[2] = gl_TessLevelInner[0] = 2.0; }\n",
    "#version 400\n"
    "layout(triangles) in;\n"
    "void main() { gl_Position = gl_in[0].gl_Position * gl_TessCoord.x + gl_in[1].gl_Position; }\n",
    "#version 430\n"
    "layout(local_size_x = 4) in;\n"
    "uniform vec4 color[3];\n"
    "layout(std430) buffer Lights { vec4 lights[]; };\n"
    "layout(rgba8) uniform image2D matrix;\n"
    "void main() { lights[gl_GlobalInvocationID.x] = color[2];\n"
    "imageStore(matrix, ivec2(gl_GlobalInvocationID.xy), color[1]); }\n"};

} // namespace

uint64_t RecordDecoder::bufferSize()
{
    const uint64_t size = m_reader.wide();
    // More than any heap gives: recording has to refuse it. What lies between would only cost time.
    return size > 0x7FFFFFFFFFFFFFFFu ? size : size % (m_limits.bufferSize + 1);
}

BufferProperties RecordDecoder::buffer()
{
    BufferProperties properties;
    properties.kind = m_reader.byte();
    properties.size = bufferSize();
    if (properties.size <= sizeof(s_memory) && m_reader.flag())
    {
        properties.data = s_memory;
    }
    return properties;
}

SbDataType RecordDecoder::dataType()
{
    return SbDataType(static_cast<SbDataType::Type>(m_reader.below(12)));
}

DrawRange RecordDecoder::drawRange()
{
    DrawRange range;
    range.indexBuffer = pick<IndexBufferHandle>();
    range.primitive = m_reader.number();
    range.firstVertex = static_cast<int32_t>(limited(m_reader.number(), m_limits.drawCount));
    range.indexOffset = m_reader.wide();
    range.count = static_cast<int32_t>(limited(m_reader.number(), m_limits.drawCount));
    range.instanceCount = static_cast<int32_t>(limited(m_reader.number(), m_limits.drawCount));
    range.baseInstance = m_reader.number();
    range.primitiveRestart = m_reader.flag();
    range.primitiveRestartValue = m_reader.number();
    return range;
}

OverallAttribute RecordDecoder::overallAttribute()
{
    OverallAttribute attribute;
    attribute.slot = m_reader.number();
    attribute.dataType = dataType();
    attribute.normalized = m_reader.byte();
    attribute.componentCount = m_reader.byte();
    attribute.name = m_reader.text();
    std::fill(std::begin(attribute.value), std::end(attribute.value), m_reader.byte());
    return attribute;
}

DrawProperties RecordDecoder::drawProperties()
{
    DrawProperties properties;
    properties.vertexBuffers = pickSome<VertexBufferHandle>();
    properties.shaderBuffers = pickSome<ShaderBufferHandle>();
    properties.ranges.resize(m_reader.below(4));
    for (DrawRange& range : properties.ranges)
    {
        range = drawRange();
    }
    properties.overallAttributes.resize(m_reader.below(3));
    for (OverallAttribute& attribute : properties.overallAttributes)
    {
        attribute = overallAttribute();
    }
    return properties;
}

VertexBufferProperties RecordDecoder::vertexBuffer()
{
    VertexBufferProperties properties;
    properties.slot = m_reader.number();
    properties.dataType = dataType();
    properties.normalized = m_reader.byte();
    properties.componentCount = m_reader.byte();
    properties.stride = m_reader.number();
    properties.offset = m_reader.number();
    properties.divisor = m_reader.number();
    properties.buffer = pick<BufferHandle>();
    properties.name = m_reader.text();
    return properties;
}

IndexBufferProperties RecordDecoder::indexBuffer()
{
    IndexBufferProperties properties;
    properties.dataType = dataType();
    properties.buffer = pick<BufferHandle>();
    return properties;
}

ShaderBufferProperties RecordDecoder::shaderBuffer()
{
    ShaderBufferProperties properties;
    properties.kind = m_reader.number();
    properties.buffer = pick<BufferHandle>();
    properties.name = m_reader.text();
    return properties;
}

TextureImageProperties RecordDecoder::textureImage()
{
    TextureImageProperties properties;
    properties.texture = pick<TextureHandle>();
    properties.name = m_reader.text();
    properties.layer = static_cast<uint16_t>(m_reader.number());
    properties.level = m_reader.byte();
    properties.unit = static_cast<uint8_t>(m_reader.byte() & 31u);
    properties.access = static_cast<uint8_t>(m_reader.byte() & 3u);
    properties.layered = static_cast<uint8_t>(m_reader.byte() & 1u);
    return properties;
}

SamplerProperties RecordDecoder::sampler()
{
    SamplerProperties properties;
    properties.borderColor = m_reader.number();
    properties.maxAnisotropy = m_reader.real();
    properties.wrapS = static_cast<uint8_t>(m_reader.byte() & 7u);
    properties.wrapT = static_cast<uint8_t>(m_reader.byte() & 7u);
    properties.wrapR = static_cast<uint8_t>(m_reader.byte() & 7u);
    properties.minFilter = static_cast<uint8_t>(m_reader.byte() & 3u);
    properties.magFilter = static_cast<uint8_t>(m_reader.byte() & 3u);
    properties.mipFilter = static_cast<uint8_t>(m_reader.byte() & 3u);
    return properties;
}

TextureProperties RecordDecoder::texture()
{
    TextureProperties properties;
    properties.type = m_reader.number();
    properties.immutable = m_reader.byte();
    properties.compressed = static_cast<uint8_t>(m_reader.byte() & 1u);
    properties.width = textureSize();
    properties.height = textureSize();
    properties.depth = textureSize();
    properties.baseLevel = static_cast<uint16_t>(m_reader.number());
    properties.maxLevel = static_cast<uint16_t>(m_reader.number());
    properties.samples = m_reader.byte();
    properties.format = m_reader.number();
    properties.internalFormat = m_reader.number();
    for (uint32_t& channel : properties.swizzle)
    {
        channel = m_reader.number();
    }
    properties.dataType = dataType();
    properties.name = m_reader.text();
    fillPixels(properties);
    return properties;
}

void RecordDecoder::fillPixels(TextureProperties& properties)
{
    properties.data.resize(m_reader.below(20));
    properties.sizes.resize(m_reader.below(4));
    for (uint32_t& size : properties.sizes)
    {
        size = limited(m_reader.number(), 4096);
    }
    if (properties.data.empty())
    {
        return;
    }
    if (properties.compressed == 0)
    {
        properties.width = limited(properties.width, PIXEL_SIDE);
        properties.height = limited(properties.height, PIXEL_SIDE);
        properties.depth = limited(properties.depth, PIXEL_SIDE);
    }
    for (const void*& pixels : properties.data)
    {
        pixels = m_reader.flag() ? s_memory : nullptr;
    }
}

TextureUpdateBatchDataProperties RecordDecoder::textureBatch()
{
    TextureUpdateBatchDataProperties properties(m_reader.below(4));
    for (TextureUpdateBatchData& entry : properties)
    {
        entry.x = m_reader.number();
        entry.y = m_reader.number();
        entry.z = m_reader.number();
        entry.width = limited(m_reader.number(), PIXEL_SIDE);
        entry.height = limited(m_reader.number(), PIXEL_SIDE);
        entry.depth = limited(m_reader.number(), PIXEL_SIDE);
        entry.face = m_reader.byte();
        entry.format = m_reader.number();
        entry.dataType = dataType();
        entry.rowLength = limited(m_reader.number(), PIXEL_SIDE);
        entry.imageHeight = limited(m_reader.number(), PIXEL_SIDE);
        entry.level = m_reader.number();
        entry.data = m_reader.flag() ? s_memory : nullptr;
        entry.flags = m_reader.byte();
    }
    return properties;
}

RenderTargetProperties RecordDecoder::renderTarget()
{
    RenderTargetProperties properties;
    properties.attachments.resize(m_reader.below(7));
    for (RenderTextureProperty& attachment : properties.attachments)
    {
        attachment.texture = pick<TextureHandle>();
        attachment.layer = static_cast<uint16_t>(m_reader.number());
        attachment.attachment = m_reader.byte();
        attachment.level = m_reader.byte();
    }
    properties.srgb = m_reader.byte();
    return properties;
}

ViewportProperties RecordDecoder::viewport()
{
    ViewportProperties properties;
    fillValue(properties.rectangle);
    fillValue(properties.depthRange);
    properties.sizeScale = m_reader.real();
    return properties;
}

ShaderObjectProperties RecordDecoder::shaderObject()
{
    ShaderObjectProperties properties;
    properties.stage = m_reader.number();
    if (m_limits.validShaders && m_reader.byte() < 0xE0)
    {
        properties.source = SHADERS[properties.stage % std::size(SHADERS)];
        return properties;
    }
    properties.source = m_reader.text();
    return properties;
}

ShaderProgramProperties RecordDecoder::shaderProgram()
{
    ShaderProgramProperties properties;
    properties.shaderObjects = pickSome<ShaderObjectHandle>();
    return properties;
}

ClearTargetProperties RecordDecoder::clearTarget()
{
    ClearTargetProperties properties;
    fillValue(properties.colors[m_reader.below(8)]);
    properties.depth = m_reader.real();
    properties.stencil = m_reader.integer();
    properties.flags = m_reader.byte();
    properties.colorMask[m_reader.below(4)] = m_reader.flag();
    properties.depthWrite = m_reader.flag();
    properties.stencilWriteMask = m_reader.number();
    return properties;
}

BlitProperties RecordDecoder::blit()
{
    BlitProperties properties;
    fillValue(properties.source);
    fillValue(properties.destination);
    properties.flags = m_reader.byte();
    properties.filter = m_reader.number();
    return properties;
}

ComputeProperties RecordDecoder::compute()
{
    ComputeProperties properties;
    fillValue(properties.groups);
    for (size_t i = 0; i < 3; ++i)
    {
        properties.groups[i] = static_cast<int32_t>(
            limited(static_cast<uint32_t>(properties.groups[i]), m_limits.groupCount, m_limits.refusedGroupCount));
    }
    properties.releaseState = m_reader.flag();
    return properties;
}

TransformFeedbackProperties RecordDecoder::transformFeedback()
{
    TransformFeedbackProperties properties;
    properties.varyings.resize(m_reader.below(4));
    for (std::string& varying : properties.varyings)
    {
        varying = m_reader.text();
    }
    properties.buffers = pickSome<BufferHandle>();
    properties.primitiveMode = m_reader.number();
    properties.bufferMode = m_reader.number();
    properties.discard = m_reader.byte();
    return properties;
}

void RecordDecoder::fillRasterizer(RasterizerProperties& properties)
{
    properties.polygonOffsetUnits = m_reader.real();
    properties.polygonOffsetFactor = m_reader.real();
    properties.lineWidth = m_reader.real();
    properties.pointSize = m_reader.real();
    properties.sizeScale = m_reader.real();
    properties.lineStipplePattern = static_cast<int16_t>(m_reader.number());
    properties.lineStippleFactor = m_reader.byte();
    properties.fillMode = static_cast<uint8_t>(m_reader.byte() & 3u);
    properties.cullMode = static_cast<uint8_t>(m_reader.byte() & 3u);
    properties.polygonOffsetEnable = static_cast<uint8_t>(m_reader.byte() & 7u);
    properties.frontFace = m_reader.flag() ? -1 : 0;
    properties.multisample = m_reader.flag();
    properties.pointSmooth = m_reader.flag();
    properties.lineSmooth = m_reader.flag();
}

void RecordDecoder::fillColorOutput(ColorOutputProperties& properties)
{
    ColorTargetProperties& target = properties.targets[m_reader.below(8)];
    target.colorOp = static_cast<uint8_t>(m_reader.byte() & 7u);
    target.srcColor = static_cast<uint8_t>(m_reader.byte() & 31u);
    target.dstColor = static_cast<uint8_t>(m_reader.byte() & 31u);
    target.alphaOp = static_cast<uint8_t>(m_reader.byte() & 7u);
    target.srcAlpha = static_cast<uint8_t>(m_reader.byte() & 31u);
    target.dstAlpha = static_cast<uint8_t>(m_reader.byte() & 31u);
    target.writeRed = m_reader.flag();
    target.writeAlpha = m_reader.flag();
    target.blendEnable = static_cast<uint8_t>(m_reader.byte() & 1u);
    fillValue(properties.blendColor);
    properties.blendAlpha = m_reader.real();
    properties.logicOp = static_cast<uint8_t>(m_reader.byte() & 15u);
    properties.logicOpEnable = static_cast<uint8_t>(m_reader.byte() & 1u);
}

StencilProperties RecordDecoder::stencil()
{
    StencilProperties properties;
    properties.func = m_reader.number();
    properties.reference = m_reader.integer();
    properties.readMask = m_reader.number();
    properties.writeMask = m_reader.number();
    properties.stencilFail = m_reader.number();
    properties.depthFail = m_reader.number();
    properties.depthPass = m_reader.number();
    return properties;
}

std::shared_ptr<const GfxStateProperties> RecordDecoder::gfxState()
{
    const uint32_t parts = m_reader.byte();
    if (parts == 0xFF)
    {
        return nullptr;
    }
    auto properties = std::make_shared<GfxStateProperties>();
    if ((parts & 1) != 0)
    {
        fillRasterizer(properties->rasterizer);
    }
    if ((parts & 2) != 0)
    {
        fillColorOutput(properties->colorOutput);
    }
    if ((parts & 4) != 0)
    {
        DepthStencilProperties& depthStencil = properties->depthStencil;
        depthStencil.depthTest = m_reader.flag();
        depthStencil.depthWrite = m_reader.flag();
        depthStencil.depthFunc = m_reader.number();
        depthStencil.stencilTest = m_reader.flag();
        depthStencil.front = stencil();
        depthStencil.back = stencil();
    }
    if ((parts & 8) != 0)
    {
        for (size_t i = 0; i < 4; ++i)
        {
            properties->scissor.rectangle[i] = static_cast<uint16_t>(m_reader.number());
        }
        properties->scissor.enable = m_reader.flag();
    }
    return properties;
}

void RecordDecoder::fillShaderStateCore(ShaderStateCoreProperties& properties)
{
    properties.program = pick<ShaderProgramHandle>();
    properties.renderTarget = pick<RenderTargetHandle>();
    properties.viewport = pick<ViewportHandle>();
    const uint32_t parts = m_reader.byte();
    if ((parts & 1) != 0)
    {
        properties.patchVertices = m_reader.number();
        properties.shaderParameters = pickSome<ShaderParameterHandle>();
    }
    if ((parts & 2) != 0)
    {
        properties.shaderBuffers = pickSome<ShaderBufferHandle>();
        properties.textureImages = pickSome<TextureImageHandle>();
    }
    if ((parts & 4) != 0)
    {
        properties.lightingFlags.lighting = m_reader.flag();
        properties.lightingFlags.twoSided = m_reader.flag();
        properties.reserved = m_reader.byte();
        properties.clipPlanes.enableMask = m_reader.byte();
        fillValue(properties.clipPlanes.planes[m_reader.below(8)]);
    }
    if ((parts & 8) != 0)
    {
        properties.textures.mask = m_reader.number();
        for (uint32_t i = m_reader.below(4); i > 0; --i)
        {
            const uint32_t unit = m_reader.below(32);
            properties.textures.samplers[unit] = pick<SamplerHandle>();
            properties.textures.textures[unit] = pick<TextureHandle>();
        }
    }
}

std::shared_ptr<const ShaderStateCoreProperties> RecordDecoder::shaderStateCore()
{
    if (m_reader.byte() == 0xFF)
    {
        return nullptr;
    }
    auto properties = std::make_shared<ShaderStateCoreProperties>();
    fillShaderStateCore(*properties);
    return properties;
}

ShaderStateProperties RecordDecoder::shaderState()
{
    ShaderStateProperties properties;
    fillShaderStateCore(properties);
    fillValue(properties.transform.part1.model);
    const uint32_t unit = m_reader.below(8);
    fillValue(properties.transform.part1.textureMatrices[unit]);
    fillValue(properties.transform.part2.projection);
    fillValue(properties.light.position[unit]);
    properties.light.spotCutoff[unit] = m_reader.real();
    properties.light.enabledMask = m_reader.byte();
    fillValue(properties.material.diffuse.front);
    properties.material.shininess.back = m_reader.real();
    properties.material.localViewer = m_reader.byte();
    properties.texGen.units[unit].mode = m_reader.number();
    properties.texGen.units[unit].coordinateMask = m_reader.byte();
    properties.texEnv.unitMask = m_reader.number();
    properties.texEnv.modes[unit % 4] = m_reader.number();
    return properties;
}

} // namespace renderengine::fuzz
