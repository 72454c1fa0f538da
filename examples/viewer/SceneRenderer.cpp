#include "SceneRenderer.h"

#include "Images.h"

#include <kavelor/SoPreferences.h>
#include <renderengine/renderengine.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <string>

namespace viewer
{

using namespace renderengine;

namespace
{

// Indices of the engine's tables (see docs/records.md for their meaning).
constexpr uint32_t c_texture2D = 2;
constexpr uint32_t c_texture2DMultisample = 3;
constexpr uint32_t c_depthStencil = 2;
constexpr uint32_t c_rgba = 8;
constexpr uint32_t c_rgba8 = 21;
constexpr uint32_t c_srgb8Alpha8 = 29;
constexpr uint32_t c_depth24Stencil8 = 84;
constexpr uint8_t c_colorAttachment0 = 0;
constexpr uint8_t c_depthStencilAttachment = 19;
constexpr uint32_t c_vertexStage = 0;
constexpr uint32_t c_fragmentStage = 2;
constexpr uint32_t c_triangles = 4;
constexpr uint8_t c_cullNone = 0;
constexpr uint8_t c_samples = 4; // what every OpenGL 4 device offers

const SbVec4f c_background(0.925f, 0.935f, 0.95f, 1.0f);

// The uniform blocks of the shaders, in their std140 layout.
struct CameraBlock
{
    SbMatrix viewProjection;
    SbVec4f eye;
    SbVec4f right;
    SbVec4f up;
    SbVec4f back;
};

struct TransformBlock
{
    SbMatrix model;
};

struct MaterialBlock
{
    SbVec4f baseColor;
    SbVec4f emissive;
    SbVec4f surface;
};

SbVec4f extended(const SbVec3f& v, float w)
{
    return SbVec4f(v[0], v[1], v[2], w);
}

/// Where the shader finds transforms and materials: the renderer for OpenGL 4.1 gives merged geometry the blocks of its
/// first member only, so there they travel as attributes.
MemberData chooseMemberData(const ContextInfo& info)
{
    constexpr int32_t firstVersionWithMergedBlocks = 430;
    std::string renderer = SoPreferences::getString("KVR_RENDERENGINE_RENDERER", "GL").upper().toStdString();
    if (renderer == "GL41" || info.version < firstVersionWithMergedBlocks ||
        !SoPreferences::getBool("KVR_ENABLE_SHADER_BUFFERS_MERGING", true))
        return MemberData::Attributes;
    if (info.vendor == "GPU_ATI" || !SoPreferences::getBool("KVR_SHADER_BUFFERS_MERGING_USE_UBO", true))
        return MemberData::StorageBlocks;
    return MemberData::UniformBlocks;
}

float distanceAlong(const SbVec3f& direction, const SbMatrix& model, const Mesh& mesh)
{
    Bounds bounds;
    for (const SbVec3f& position : mesh.positions)
        bounds.extend(position);
    const SbVec3f center = model.multVecMatrix(bounds.center());
    return center[0] * direction[0] + center[1] * direction[1] + center[2] * direction[2];
}

/// The transparent instances from the farthest to the nearest.
std::vector<std::size_t> transparentInstances(const Model& model, const SbVec3f& back)
{
    std::vector<std::pair<float, std::size_t>> places;
    for (std::size_t i = 0; i < model.instances.size(); ++i)
    {
        const Instance& instance = model.instances[i];
        const Mesh& mesh = model.meshes[instance.mesh];
        if (model.materials[mesh.material].isTransparent())
            places.emplace_back(distanceAlong(back, instance.model, mesh), i);
    }
    std::stable_sort(places.begin(), places.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::size_t> order;
    order.reserve(places.size());
    for (const auto& place : places)
        order.push_back(place.second);
    return order;
}

std::shared_ptr<const GfxStateProperties> opaqueState()
{
    auto state = std::make_shared<GfxStateProperties>();
    state->rasterizer.cullMode = c_cullNone;
    return state;
}

std::shared_ptr<const GfxStateProperties> transparentState()
{
    constexpr uint8_t one = 1;
    constexpr uint8_t sourceAlpha = 6;
    constexpr uint8_t oneMinusSourceAlpha = 7;
    auto state = std::make_shared<GfxStateProperties>();
    state->rasterizer.cullMode = c_cullNone;
    state->depthStencil.depthWrite = false;
    ColorTargetProperties& target = state->colorOutput.targets[0];
    target.blendEnable = 1;
    target.srcColor = sourceAlpha;
    target.dstColor = oneMinusSourceAlpha;
    target.srcAlpha = one;
    target.dstAlpha = oneMinusSourceAlpha;
    return state;
}

OverallAttribute constantAttribute(const char* name, const float* value, uint8_t components)
{
    OverallAttribute attribute;
    attribute.name = name;
    attribute.dataType = SbDataType::FLOAT;
    attribute.componentCount = components;
    std::memcpy(attribute.value, value, sizeof(float) * components);
    return attribute;
}

const SbVec4f c_white(1.0f, 1.0f, 1.0f, 1.0f);
const SbVec2f c_noTexCoord(0.0f, 0.0f);

/// The values of a mesh, or the same value for each of its vertices when it has none.
template <typename T> std::vector<T> filled(const std::vector<T>& values, const Mesh& mesh, const T& value)
{
    return values.empty() ? std::vector<T>(mesh.positions.size(), value) : values;
}

template <typename T> std::size_t byteSize(const std::vector<T>& values)
{
    return values.size() * sizeof(T);
}

} // namespace

struct SceneRenderer::MeshResources
{
    std::vector<VertexBufferHandle> vertexBuffers;
    std::vector<OverallAttribute> constants;
    IndexBufferHandle indexBuffer;
};

/// Instances that are drawn one behind the other with the same state.
struct SceneRenderer::Group
{
    bool transparent = false;
    int texture = -1; ///< index into m_textures, or -1
    std::vector<std::size_t> instances;
};

/// Which attributes come from buffers. It is the same for all meshes, since merged geometry shares its layout; what no
/// mesh of the model has is a constant.
struct SceneRenderer::Attributes
{
    explicit Attributes(const Model& model)
    {
        for (const Mesh& mesh : model.meshes)
        {
            texCoords = texCoords || !mesh.texCoords.empty();
            colors = colors || !mesh.colors.empty();
        }
    }

    bool texCoords = false;
    bool colors = false;
};

SceneRenderer::SceneRenderer(ContextInterface& context, const Model& model, uint32_t width, uint32_t height,
                             bool merging)
    : m_context(context), m_width(width), m_height(height), m_merging(merging),
      m_memberData(chooseMemberData(context.getContextInfo())),
      m_camera(fitCamera(model, static_cast<float>(width) / static_cast<float>(height))),
      m_setup(std::make_shared<RenderCache>()), m_frame(std::make_shared<RenderCache>()),
      m_readback(std::make_shared<RenderCache>())
{
    m_context.setSize(width, height);
    createTargets();
    createTextures(model);
    const std::vector<Group> groups = groupInstances(model);
    createProgram(model, groups);
    createMaterials(model);
    createCamera(model);
    createDraws(model, groups);
    recordFrame();
}

/// Opaque instances by texture; behind them the transparent ones, whose order must stand.
std::vector<SceneRenderer::Group> SceneRenderer::groupInstances(const Model& model) const
{
    std::vector<Group> groups(m_textures.size() + 1);
    for (std::size_t i = 0; i < model.instances.size(); ++i)
    {
        const Material& material = model.materials[model.meshes[model.instances[i].mesh].material];
        if (!material.isTransparent())
        {
            const int texture = textureOf(material);
            groups[static_cast<std::size_t>(texture + 1)].texture = texture;
            groups[static_cast<std::size_t>(texture + 1)].instances.push_back(i);
        }
    }
    groups.erase(
        std::remove_if(groups.begin(), groups.end(), [](const Group& group) { return group.instances.empty(); }),
        groups.end());
    for (const std::size_t i : transparentInstances(model, m_camera.back))
    {
        const int texture = textureOf(model.materials[model.meshes[model.instances[i].mesh].material]);
        if (groups.empty() || !groups.back().transparent || groups.back().texture != texture)
        {
            groups.emplace_back();
            groups.back().transparent = true;
            groups.back().texture = texture;
        }
        groups.back().instances.push_back(i);
    }
    return groups;
}

int SceneRenderer::textureOf(const Material& material) const
{
    const int image = material.baseColorImage;
    return image >= 0 && m_textures[static_cast<std::size_t>(image)].isValid() ? image : -1;
}

TextureHandle SceneRenderer::createTarget(uint32_t type, uint8_t samples, uint32_t format, uint32_t internalFormat)
{
    TextureProperties properties;
    properties.type = type;
    properties.width = m_width;
    properties.height = m_height;
    properties.samples = samples;
    properties.format = format;
    properties.internalFormat = internalFormat;
    return m_context.createTexture(properties);
}

void SceneRenderer::createTargets()
{
    const TextureHandle color = createTarget(c_texture2DMultisample, c_samples, c_rgba, c_rgba8);
    const TextureHandle depth = createTarget(c_texture2DMultisample, c_samples, c_depthStencil, c_depth24Stencil8);
    m_resolvedColor = createTarget(c_texture2D, 1, c_rgba, c_rgba8);

    const auto attached = [](TextureHandle texture, uint8_t attachment)
    {
        RenderTextureProperty property;
        property.texture = texture;
        property.attachment = attachment;
        return property;
    };
    RenderTargetProperties multisample;
    multisample.attachments = {attached(color, c_colorAttachment0), attached(depth, c_depthStencilAttachment)};
    m_multisampleTarget = m_context.createRenderTarget(multisample);

    RenderTargetProperties resolve;
    resolve.attachments = {attached(m_resolvedColor, c_colorAttachment0)};
    m_resolveTarget = m_context.createRenderTarget(resolve);

    ViewportProperties viewport;
    viewport.rectangle = SbVec4i32(0, 0, static_cast<int32_t>(m_width), static_cast<int32_t>(m_height));
    m_viewport = m_context.createViewport(viewport);
}

void SceneRenderer::createProgram(const Model& model, const std::vector<Group>& groups)
{
    // The engine starts another batch where a merged block would grow beyond the device's limit.
    MergedCounts counts;
    for (const Group& group : groups)
        counts.draws = std::max(counts.draws, static_cast<uint32_t>(m_merging ? group.instances.size() : 1));
    const auto blockSize = static_cast<uint32_t>(std::max(m_context.getContextInfo().maxUniformBlockSize, 16384));
    const uint32_t blockLimit = blockSize / std::max(sizeof(TransformBlock), sizeof(MaterialBlock));
    counts.transforms = std::min(counts.draws, blockLimit);
    counts.materials = std::min({counts.draws, blockLimit, static_cast<uint32_t>(model.materials.size())});
    counts.draws = std::min(counts.draws, blockSize / static_cast<uint32_t>(sizeof(SbVec4i32)));

    const auto compile = [this](uint32_t stage, const std::string& source)
    {
        ShaderObjectProperties properties;
        properties.stage = stage;
        properties.source = source;
        const ShaderObjectHandle shader = m_context.createShaderObject(properties);
        const std::string& log = m_context.getShaderObjectLog(shader);
        if (!log.empty())
            throw std::runtime_error("a shader does not compile: " + log);
        return shader;
    };
    ShaderProgramProperties properties;
    properties.shaderObjects = {compile(c_vertexStage, vertexShader(m_memberData, counts)),
                                compile(c_fragmentStage, c_fragmentShader)};
    m_program = m_context.createShaderProgram(properties);
    const std::string& log = m_context.getShaderProgramLog(m_program);
    if (!log.empty())
        throw std::runtime_error("the shaders do not link: " + log);
    for (const ShaderObjectHandle& shader : properties.shaderObjects)
        m_context.destroyShaderObject(shader);

    ShaderParameterProperties<int> unit;
    unit.name = "baseColorTexture";
    unit.value = 0;
    m_textureUnit = m_context.createShaderParameter(unit);
}

void SceneRenderer::createTextures(const Model& model)
{
    SamplerProperties sampler;
    sampler.maxAnisotropy = 8.0f;
    m_sampler = m_context.createSampler(sampler);

    const auto limit = static_cast<uint32_t>(m_context.getContextInfo().maxTextureSize);
    for (const Image& image : model.images)
    {
        if (image.width > limit || image.height > limit)
        {
            m_textures.emplace_back();
            continue;
        }
        TextureProperties properties;
        properties.type = c_texture2D;
        properties.width = image.width;
        properties.height = image.height;
        properties.format = c_rgba;
        properties.internalFormat = c_srgb8Alpha8;
        properties.maxLevel = static_cast<uint16_t>(std::log2(std::max(image.width, image.height)));
        properties.data = {image.pixels.data()};
        m_textures.push_back(m_context.createTexture(properties));
        m_setup->generateMipmap(m_textures.back());
    }
}

BufferHandle SceneRenderer::createBuffer(const void* data, std::size_t size)
{
    BufferProperties properties;
    properties.size = size;
    properties.data = data;
    return m_context.createBuffer(properties);
}

ShaderBufferHandle SceneRenderer::createBlock(const char* name, const void* data, std::size_t size)
{
    ShaderBufferProperties properties;
    properties.buffer = createBuffer(data, size);
    properties.name = name;
    return m_context.createShaderBuffer(properties);
}

VertexBufferHandle SceneRenderer::createAttribute(const char* name, const void* data, std::size_t size,
                                                  uint8_t components)
{
    VertexBufferProperties properties;
    properties.dataType = SbDataType::FLOAT;
    properties.componentCount = components;
    properties.buffer = createBuffer(data, size);
    properties.name = name;
    return m_context.createVertexBuffer(properties);
}

void SceneRenderer::createMaterials(const Model& model)
{
    for (const Material& material : model.materials)
    {
        MaterialBlock block;
        block.baseColor = material.baseColor;
        block.emissive = extended(material.emissive, 0.0f);
        block.surface = SbVec4f(material.metallic, material.roughness, material.alphaCutoff,
                                textureOf(material) >= 0 ? 1.0f : 0.0f);
        if (m_memberData == MemberData::Attributes)
            m_materialAttributes.push_back({constantAttribute("materialColor", block.baseColor.getValue(), 4),
                                            constantAttribute("materialEmission", block.emissive.getValue(), 3),
                                            constantAttribute("materialSurface", block.surface.getValue(), 4)});
        else
            m_materialBlocks.push_back(createBlock("MaterialBlock", &block, sizeof(block)));
    }
}

void SceneRenderer::createCamera(const Model& model)
{
    CameraBlock block;
    block.viewProjection = m_camera.viewProjection;
    block.eye = extended(m_camera.eye, 1.0f);
    block.right = extended(m_camera.right, 0.0f);
    block.up = extended(m_camera.up, 0.0f);
    block.back = extended(m_camera.back, 0.0f);
    m_cameraBlock = createBlock("CameraBlock", &block, sizeof(block));

    // One shader state a texture, and one without: draws of the same texture share it.
    m_shaderStates.push_back(shaderStateFor(-1));
    for (std::size_t image = 0; image < model.images.size(); ++image)
        m_shaderStates.push_back(shaderStateFor(static_cast<int>(image)));
}

std::shared_ptr<const ShaderStateCoreProperties> SceneRenderer::shaderStateFor(int image)
{
    auto state = std::make_shared<ShaderStateCoreProperties>();
    state->program = m_program;
    state->renderTarget = m_multisampleTarget;
    state->viewport = m_viewport;
    state->shaderParameters = {m_textureUnit};
    state->shaderBuffers = {m_cameraBlock};
    if (image >= 0)
    {
        state->textures.mask = 1u;
        state->textures.textures[0] = m_textures[static_cast<std::size_t>(image)];
        state->textures.samplers[0] = m_sampler;
    }
    return state;
}

SceneRenderer::MeshResources SceneRenderer::createMesh(const Mesh& mesh, const Attributes& attributes)
{
    MeshResources resources;
    resources.vertexBuffers.push_back(createAttribute("position", mesh.positions.data(), byteSize(mesh.positions), 3));
    resources.vertexBuffers.push_back(createAttribute("normal", mesh.normals.data(), byteSize(mesh.normals), 3));
    if (attributes.texCoords)
    {
        const auto values = filled(mesh.texCoords, mesh, c_noTexCoord);
        resources.vertexBuffers.push_back(createAttribute("texCoord", values.data(), byteSize(values), 2));
    }
    else
        resources.constants.push_back(constantAttribute("texCoord", c_noTexCoord.getValue(), 2));
    if (attributes.colors)
    {
        const auto values = filled(mesh.colors, mesh, c_white);
        resources.vertexBuffers.push_back(createAttribute("color", values.data(), byteSize(values), 4));
    }
    else
        resources.constants.push_back(constantAttribute("color", c_white.getValue(), 4));

    IndexBufferProperties indices;
    indices.dataType = SbDataType::UNSIGNED_INT;
    indices.buffer = createBuffer(mesh.indices.data(), byteSize(mesh.indices));
    resources.indexBuffer = m_context.createIndexBuffer(indices);
    return resources;
}

DrawPropertiesHandle SceneRenderer::createInstance(const Model& model, const Instance& instance,
                                                   const MeshResources& resources)
{
    const Mesh& mesh = model.meshes[instance.mesh];
    TransformBlock transform;
    transform.model = instance.model;

    DrawProperties properties;
    properties.vertexBuffers = resources.vertexBuffers;
    properties.overallAttributes = resources.constants;
    if (m_memberData == MemberData::Attributes)
    {
        constexpr std::array<const char*, 4> rows = {"modelX", "modelY", "modelZ", "modelOrigin"};
        for (std::size_t row = 0; row < rows.size(); ++row)
            properties.overallAttributes.push_back(constantAttribute(rows[row], transform.model[row], 3));
        const std::vector<OverallAttribute>& material = m_materialAttributes[mesh.material];
        properties.overallAttributes.insert(properties.overallAttributes.end(), material.begin(), material.end());
    }
    else
    {
        // The engine takes the second entry for the transform and the third for the material of a geometry.
        properties.shaderBuffers = {ShaderBufferHandle(), createBlock("TransformBlock", &transform, sizeof(transform)),
                                    m_materialBlocks[mesh.material]};
    }
    DrawRange range;
    range.indexBuffer = resources.indexBuffer;
    range.primitive = c_triangles;
    range.count = static_cast<int32_t>(mesh.indices.size());
    properties.ranges = {range};
    return m_context.createDrawProperties(properties);
}

void SceneRenderer::createDraws(const Model& model, const std::vector<Group>& groups)
{
    const Attributes attributes(model);
    std::vector<MeshResources> meshes;
    for (const Mesh& mesh : model.meshes)
        meshes.push_back(createMesh(mesh, attributes));

    const auto opaque = opaqueState();
    const auto transparent = transparentState();
    for (const Group& group : groups)
    {
        const auto& gfxState = group.transparent ? transparent : opaque;
        const auto& shaderState = m_shaderStates[static_cast<std::size_t>(group.texture + 1)];
        for (const std::size_t index : group.instances)
        {
            if (!m_merging || index == group.instances.front())
                m_draws.push_back(m_context.createDraw(gfxState, shaderState));
            const Instance& instance = model.instances[index];
            m_context.addDrawProperties(m_draws.back(), createInstance(model, instance, meshes[instance.mesh]));
        }
    }
}

void SceneRenderer::recordFrame()
{
    ClearTargetProperties clear;
    clear.colors[0] = c_background;
    m_frame->clearRenderTarget(m_multisampleTarget, clear);
    for (const DrawHandle& draw : m_draws)
        m_frame->draw(draw);

    BlitProperties resolve;
    resolve.source = SbVec4i32(0, 0, static_cast<int32_t>(m_width), static_cast<int32_t>(m_height));
    resolve.destination = resolve.source;
    m_frame->blit(m_multisampleTarget, m_resolveTarget, resolve);
    m_readback->readbackTexture(m_resolvedColor);
}

double SceneRenderer::drawFrame()
{
    const auto start = std::chrono::steady_clock::now();
    if (m_setup)
        m_context.submit(m_setup);
    m_context.submit(m_frame);
    m_context.execute(true);
    m_setup.reset();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

Image SceneRenderer::readPicture()
{
    m_context.submit(m_readback);
    m_context.execute(true);
    Image image;
    image.width = m_width;
    image.height = m_height;
    image.pixels.resize(std::size_t{4} * m_width * m_height);
    m_context.readbackTexture(m_resolvedColor, image.pixels.data(), image.pixels.size());
    flipRows(image);
    return image;
}

} // namespace viewer
