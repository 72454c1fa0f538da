#include "support/Triangle.h"

#include <renderengine/renderengine.h>

#include <array>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>

namespace renderengine::testing
{

namespace
{

// Indices of the engine's tables.
constexpr uint32_t s_vertexStage = 0;
constexpr uint32_t s_fragmentStage = 2;
constexpr uint32_t s_triangles = 4;
constexpr uint32_t s_texture2D = 2;

constexpr const char* s_vertexSource = "#version 410 core\n"
                                       "in vec2 position;\n"
                                       "void main() { gl_Position = vec4(position, 0.0, 1.0); }\n";
constexpr const char* s_fragmentSource = "#version 410 core\n"
                                         "out vec4 color;\n"
                                         "void main() { color = vec4(1.0, 0.0, 0.0, 1.0); }\n";

/// What a triangle needs on the device, destroyed with the object.
class Scene
{
public:
    explicit Scene(ContextInterface& context) : m_context(context)
    {
        createTarget();
        createProgram();
        createDraw();
    }
    ~Scene()
    {
        m_context.destroyDraw(m_draw);
        m_context.destroyDrawProperties(m_drawProperties);
        m_context.destroyVertexBuffer(m_vertexBuffer);
        m_context.destroyBuffer(m_buffer);
        m_context.destroyShaderProgram(m_program);
        m_context.destroyViewport(m_viewport);
        m_context.destroyRenderTarget(m_target);
        m_context.destroyTexture(m_texture);
        m_context.execute(true);
    }
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    std::vector<uint8_t> draw();

private:
    void createTarget();
    void createProgram();
    void createDraw();
    ShaderObjectHandle compile(uint32_t stage, const char* source);

    ContextInterface& m_context;
    TextureHandle m_texture;
    RenderTargetHandle m_target;
    ViewportHandle m_viewport;
    ShaderProgramHandle m_program;
    BufferHandle m_buffer;
    VertexBufferHandle m_vertexBuffer;
    DrawPropertiesHandle m_drawProperties;
    DrawHandle m_draw;
};

void Scene::createTarget()
{
    TextureProperties texture;
    texture.type = s_texture2D;
    texture.width = triangleSize;
    texture.height = triangleSize;
    m_texture = m_context.createTexture(texture);
    RenderTargetProperties target;
    target.attachments.resize(1);
    target.attachments[0].texture = m_texture;
    m_target = m_context.createRenderTarget(target);
    ViewportProperties viewport;
    viewport.rectangle = SbVec4i32(0, 0, triangleSize, triangleSize);
    m_viewport = m_context.createViewport(viewport);
}

ShaderObjectHandle Scene::compile(uint32_t stage, const char* source)
{
    ShaderObjectProperties properties;
    properties.stage = stage;
    properties.source = source;
    const ShaderObjectHandle shader = m_context.createShaderObject(properties);
    const std::string& log = m_context.getShaderObjectLog(shader);
    if (!log.empty())
    {
        throw std::runtime_error("the shader does not compile: " + log);
    }
    return shader;
}

void Scene::createProgram()
{
    ShaderProgramProperties properties;
    properties.shaderObjects = {compile(s_vertexStage, s_vertexSource), compile(s_fragmentStage, s_fragmentSource)};
    m_program = m_context.createShaderProgram(properties);
    const std::string& log = m_context.getShaderProgramLog(m_program);
    if (!log.empty())
    {
        throw std::runtime_error("the shaders do not link: " + log);
    }
    for (const ShaderObjectHandle& shader : properties.shaderObjects)
    {
        m_context.destroyShaderObject(shader);
    }
}

void Scene::createDraw()
{
    const std::array<float, 6> corners = {-1.0f, -1.0f, 1.0f, -1.0f, -1.0f, 1.0f};
    BufferProperties buffer;
    buffer.size = sizeof(corners);
    buffer.data = corners.data();
    m_buffer = m_context.createBuffer(buffer);
    VertexBufferProperties vertexBuffer;
    vertexBuffer.dataType = SbDataType::FLOAT;
    vertexBuffer.componentCount = 2;
    vertexBuffer.buffer = m_buffer;
    vertexBuffer.name = "position";
    m_vertexBuffer = m_context.createVertexBuffer(vertexBuffer);

    DrawProperties geometry;
    geometry.vertexBuffers = {m_vertexBuffer};
    DrawRange range;
    range.primitive = s_triangles;
    range.count = 3;
    geometry.ranges = {range};
    m_drawProperties = m_context.createDrawProperties(geometry);

    auto gfxState = std::make_shared<GfxStateProperties>();
    gfxState->rasterizer.cullMode = 0;
    gfxState->depthStencil.depthTest = false;
    auto shaderState = std::make_shared<ShaderStateCoreProperties>();
    shaderState->program = m_program;
    shaderState->renderTarget = m_target;
    shaderState->viewport = m_viewport;
    m_draw = m_context.createDraw(gfxState, shaderState);
    m_context.addDrawProperties(m_draw, m_drawProperties);
    // The corners are on this function's stack.
    m_context.executeResourceCommands();
}

std::vector<uint8_t> Scene::draw()
{
    ClearTargetProperties clear;
    clear.colors[0] = SbVec4f(0.0f, 1.0f, 0.0f, 1.0f);
    const auto frame = std::make_shared<RenderCache>();
    frame->clearRenderTarget(m_target, clear);
    frame->draw(m_draw);
    frame->readbackTexture(m_texture);
    m_context.submit(frame);
    m_context.execute(true);
    std::vector<uint8_t> picture(std::size_t{4} * triangleSize * triangleSize);
    m_context.readbackTexture(m_texture, picture.data(), picture.size());
    return picture;
}

} // namespace

std::vector<uint8_t> drawTriangle(ContextInterface& context)
{
    return Scene(context).draw();
}

bool isTriangle(const std::vector<uint8_t>& picture)
{
    constexpr std::array<uint8_t, 4> red = {255, 0, 0, 255};
    constexpr std::array<uint8_t, 4> green = {0, 255, 0, 255};
    for (uint32_t y = 0; y < triangleSize; ++y)
    {
        for (uint32_t x = 0; x < triangleSize; ++x)
        {
            const uint32_t sum = x + y + 1;
            if (sum == triangleSize)
            {
                continue;
            }
            const std::array<uint8_t, 4>& wanted = sum < triangleSize ? red : green;
            const std::size_t first = std::size_t{4} * (std::size_t{y} * triangleSize + x);
            for (std::size_t channel = 0; channel < wanted.size(); ++channel)
            {
                if (picture[first + channel] != wanted[channel])
                {
                    return false;
                }
            }
        }
    }
    return true;
}

} // namespace renderengine::testing
