#include "gl/EngineScene.h"

#include "renderer/Frame.h"

#include <glbinding/RecordingGL.h>
#include <glbinding/gl.h>

#include <stdexcept>

namespace bench
{

using namespace renderengine;

namespace
{

constexpr uint32_t texture2D = 2;
constexpr uint32_t depthStencilFormat = 2;
constexpr uint32_t rgbaFormat = 8;
constexpr uint32_t rgba8 = 21;
constexpr uint32_t depth24Stencil8 = 84;
constexpr uint8_t depthStencilAttachment = 19;
constexpr uint32_t fragmentStage = 2;

glbinding::ShaderReflection cubeReflection()
{
    const auto variable = [](const char* name, GLenum type)
    {
        glbinding::ShaderVariable result;
        result.name = name;
        result.type = type;
        return result;
    };
    glbinding::ShaderReflection reflection;
    reflection.attributes = {variable("position", GL_FLOAT_VEC3), variable("normal", GL_FLOAT_VEC3),
                             variable("KvrAttribDrawIndex", GL_FLOAT)};
    reflection.uniforms = {variable("KvrPointSize", GL_FLOAT), variable("KvrUseMergedShaderBuffers", GL_INT)};
    for (const char* name : {"Camera", "Transform", "Material_", "TransformIndirectBuffer", "TransformMergedBuffer",
                             "Material_IndirectBuffer", "Material_MergedBuffer"})
    {
        reflection.uniformBlocks.push_back(variable(name, 0));
    }
    return reflection;
}

} // namespace

EngineScene::EngineScene(RendererKind kind, const CubeData& cubes, uint32_t indexCount, bool merging, bool device)
    : m_cubes(cubes), m_indexCount(indexCount), m_merging(merging), m_frame(std::make_shared<RenderCache>())
{
    if (kind == RendererKind::GL41)
    {
        start<RendererGL41>();
    }
    else
    {
        start<RendererGL46>();
    }
    renderer->setSize(pictureSize, pictureSize);
    static_cast<RendererBase&>(*renderer).execute(); // binds the vertex array
    createTarget();
    createProgram(device);
    createMembers();
    createDraws();
}

EngineScene::~EngineScene()
{
    renderer->destroy();
}

void EngineScene::createTarget()
{
    const auto makePicture = [this](uint32_t format, uint32_t internalFormat)
    {
        TextureProperties properties;
        properties.type = texture2D;
        properties.width = pictureSize;
        properties.height = pictureSize;
        properties.format = format;
        properties.internalFormat = internalFormat;
        const TextureHandle handle = renderer->generateTextureHandle();
        run<CommandCreateTexture>(handle, properties);
        return handle;
    };
    m_color = makePicture(rgbaFormat, rgba8);
    RenderTargetProperties properties;
    properties.attachments.resize(2);
    properties.attachments[0].texture = m_color;
    properties.attachments[1].texture = makePicture(depthStencilFormat, depth24Stencil8);
    properties.attachments[1].attachment = depthStencilAttachment;
    m_scene.shaderState.renderTarget = renderer->generateRenderTargetHandle();
    run<CommandCreateRenderTarget>(m_scene.shaderState.renderTarget, properties);
    m_scene.shaderState.viewport = makeViewport(pictureSize, pictureSize);
}

void EngineScene::createProgram(bool device)
{
    ShaderProgramProperties program;
    if (!device)
    {
        glbinding::RecordingGL gl;
        gl.setReflection(cubeReflection());
        m_scene.shaderState.program = makeProgram();
        return;
    }
    GLint blockSize = 0;
    glGetIntegerv(GL_MAX_UNIFORM_BLOCK_SIZE, &blockSize);
    ShaderObjectProperties shader;
    shader.source = cubeVertexShader(cubesPerBlock(blockSize));
    for (const uint32_t stage : {0u, fragmentStage})
    {
        shader.stage = stage;
        program.shaderObjects.push_back(renderer->generateShaderObjectHandle());
        run<CommandCreateShaderObject>(program.shaderObjects.back(), shader);
        shader.source = cubeFragmentShader;
    }
    m_scene.shaderState.program = renderer->generateShaderProgramHandle();
    run<CommandCreateShaderProgram>(m_scene.shaderState.program, program);
    const std::string& log = renderer->getShaderProgramLog(m_scene.shaderState.program);
    if (!log.empty())
    {
        throw std::runtime_error("the program of the cubes does not link: " + log);
    }
}

ShaderBufferHandle EngineScene::makeBlock(const char* name, const void* data, uint64_t size)
{
    ShaderBufferProperties properties;
    properties.buffer = makeBuffer(size, data);
    properties.name = name;
    const ShaderBufferHandle handle = renderer->generateShaderBufferHandle();
    run<CommandCreateShaderBuffer>(handle, properties);
    return handle;
}

VertexBufferHandle EngineScene::makeAttribute(const char* name, const std::vector<float>& values)
{
    VertexBufferProperties properties;
    properties.componentCount = 3;
    properties.buffer = makeBuffer(values.size() * sizeof(float), values.data());
    properties.name = name;
    m_changing = properties.buffer;
    const VertexBufferHandle handle = renderer->generateVertexBufferHandle();
    run<CommandCreateVertexBuffer>(handle, properties);
    m_changingView = handle;
    m_changingRecord = properties;
    return handle;
}

void EngineScene::createMembers()
{
    const auto camera = CubeData::camera();
    m_scene.shaderState.shaderBuffers = {makeBlock("Camera", camera.data(), sizeof(camera))};
    for (uint32_t cube = 0; cube < m_cubes.count(); ++cube)
    {
        DrawProperties properties;
        properties.vertexBuffers = {makeAttribute("position", m_cubes.positions()),
                                    makeAttribute("normal", m_cubes.normals())};
        const TransformData transform = m_cubes.transform(cube);
        const MaterialData material = m_cubes.material(cube);
        properties.shaderBuffers = {ShaderBufferHandle(), makeBlock("Transform", &transform, sizeof(transform)),
                                    makeBlock("Material_", &material, sizeof(material))};
        IndexBufferProperties indices;
        indices.dataType = SbDataType::UNSIGNED_INT;
        indices.buffer = makeBuffer(m_indexCount * sizeof(uint32_t), m_cubes.indices().data());
        DrawRange range;
        range.indexBuffer = renderer->generateIndexBufferHandle();
        range.count = static_cast<int32_t>(m_indexCount);
        run<CommandCreateIndexBuffer>(range.indexBuffer, indices);
        properties.ranges = {range};
        m_members.push_back(makeMember(properties));
    }
}

void EngineScene::createDraws()
{
    const auto gfxState = std::make_shared<const GfxStateProperties>(m_scene.gfxState);
    const auto shaderState = std::make_shared<const ShaderStateCoreProperties>(m_scene.shaderState);
    m_frame = std::make_shared<RenderCache>();
    m_frame->clearRenderTarget(m_scene.shaderState.renderTarget, ClearTargetProperties());
    for (const DrawPropertiesHandle& member : m_members)
    {
        if (!m_merging || m_draws.empty())
        {
            m_draws.push_back(renderer->generateDrawHandle());
            run<CommandCreateDraw>(m_draws.back(), gfxState, shaderState);
            m_frame->draw(m_draws.back());
        }
        run<CommandAddDrawProperties>(m_draws.back(), member);
    }
}

void EngineScene::destroyDraws()
{
    for (DrawHandle& draw : m_draws)
    {
        run<CommandDestroyDraw>(draw);
    }
    m_draws.clear();
}

void EngineScene::renewDraws()
{
    destroyDraws();
    createDraws();
}

void EngineScene::changeOne()
{
    BufferProperties properties;
    properties.size = m_cubes.normals().size() * sizeof(float);
    properties.data = m_cubes.normals().data();
    run<CommandUpdateBuffer>(m_changing, properties);
}

void EngineScene::changeOneView()
{
    run<CommandUpdateVertexBuffer>(m_changingView, m_changingRecord);
}

void EngineScene::drawFrame()
{
    renderer->submit(m_frame);
    renderer->endFrame();
    static_cast<RendererBase&>(*renderer).execute();
}

std::vector<uint8_t> EngineScene::readPicture()
{
    std::vector<uint8_t> pixels(4 * pictureSize * pictureSize);
    run<CommandReadbackTexture>(m_color);
    renderer->readbackTexture(m_color, pixels.data(), pixels.size());
    return pixels;
}

} // namespace bench
