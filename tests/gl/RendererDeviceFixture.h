#pragma once

#include "GLDeviceTestSupport.h"
#include "RendererDriver.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace renderengine
{

inline constexpr uint32_t pictureSize = 16;

using Pixel = std::array<uint8_t, 4>;
using Picture = std::vector<Pixel>;

inline constexpr Pixel black = {0, 0, 0, 0};
inline constexpr Pixel red = {255, 0, 0, 255};
inline constexpr Pixel green = {0, 255, 0, 255};
inline constexpr Pixel blue = {0, 0, 255, 255};
inline constexpr Pixel white = {255, 255, 255, 255};

// Indices of records: pixel formats, internal formats, attachments, texture types.
inline constexpr uint32_t depthStencilFormat = 2;
inline constexpr uint32_t rgbaFormat = 8;
inline constexpr uint32_t rgba8 = 21;
inline constexpr uint32_t depth24Stencil8 = 84;
inline constexpr uint8_t depthStencilAttachment = 19;
inline constexpr uint32_t texture2D = 2;
inline constexpr uint32_t texture2DMultisample = 3;

inline constexpr const char* plainVertexText = "#version 330\n"
                                               "in vec3 position;\n"
                                               "void main() { gl_Position = vec4(position, 1); }\n";

inline constexpr const char* colorFragmentText = "#version 330\n"
                                                 "uniform vec4 color;\n"
                                                 "out vec4 result;\n"
                                                 "void main() { result = color; }\n";

/// The vertices of a rectangle in device coordinates, for a strip.
inline std::array<float, 12> rectangle(float left, float right, float depth = 0.0f)
{
    return {left, -1, depth, right, -1, depth, left, 1, depth, right, 1, depth};
}

/// Drives one of the renderers on a real context, into a target of 16 by 16 pixels.
class RendererDevice : public ResourceDeviceTest, protected RendererDriver
{
protected:
    using ResourceDeviceTest::ResourceDeviceTest;

    void TearDown() override
    {
        renderer->destroy();
        // The reverse present step frees its objects with the renderer.
        renderer.reset();
        ResourceDeviceTest::TearDown();
    }

    template <class Renderer> void startOnDevice()
    {
        start<Renderer>();
        renderer->begin();
        colorTexture = makePictureTexture(texture2D, rgbaFormat, rgba8);
        depthTexture = makePictureTexture(texture2D, depthStencilFormat, depth24Stencil8);
        target = makeTarget({{colorTexture, 0}, {depthTexture, depthStencilAttachment}});
        viewport = makeViewport(static_cast<int32_t>(pictureSize), static_cast<int32_t>(pictureSize));
    }

    TextureHandle makePictureTexture(uint32_t type, uint32_t format, uint32_t internalFormat, uint8_t samples = 1)
    {
        TextureProperties properties;
        properties.type = type;
        properties.width = pictureSize;
        properties.height = pictureSize;
        properties.format = format;
        properties.internalFormat = internalFormat;
        properties.samples = samples;
        const TextureHandle handle = renderer->generateTextureHandle();
        run<CommandCreateTexture>(handle, properties);
        return handle;
    }

    RenderTargetHandle makeTarget(std::initializer_list<std::pair<TextureHandle, uint8_t>> attachments)
    {
        RenderTargetProperties properties;
        for (const auto& [texture, attachment] : attachments)
        {
            RenderTextureProperty entry;
            entry.texture = texture;
            entry.attachment = attachment;
            properties.attachments.push_back(entry);
        }
        const RenderTargetHandle handle = renderer->generateRenderTargetHandle();
        run<CommandCreateRenderTarget>(handle, properties);
        return handle;
    }

    ShaderProgramHandle link(std::initializer_list<std::pair<uint32_t, const char*>> stages)
    {
        ShaderProgramProperties program;
        for (const auto& [stage, text] : stages)
        {
            ShaderObjectProperties properties;
            properties.stage = stage;
            properties.source = text;
            program.shaderObjects.push_back(renderer->generateShaderObjectHandle());
            run<CommandCreateShaderObject>(program.shaderObjects.back(), properties);
            EXPECT_EQ(renderer->getShaderObjectLog(program.shaderObjects.back()), "");
        }
        const ShaderProgramHandle handle = renderer->generateShaderProgramHandle();
        run<CommandCreateShaderProgram>(handle, program);
        EXPECT_EQ(renderer->getShaderProgramLog(handle), "");
        return handle;
    }

    /// A state that draws into the target, without depth test and culling.
    Scene makeDeviceScene(const ShaderProgramHandle& program)
    {
        Scene scene;
        scene.shaderState.program = program;
        scene.shaderState.renderTarget = target;
        scene.shaderState.viewport = viewport;
        scene.gfxState.depthStencil.depthTest = false;
        scene.gfxState.rasterizer.cullMode = 0;
        return scene;
    }

    ShaderParameterHandle makeColor(const Pixel& pixel)
    {
        ShaderParameterProperties<SbVec4f> color;
        for (size_t i = 0; i < 4; ++i)
        {
            color.value[i] = static_cast<float>(pixel[i]) / 255.0f;
        }
        return makeParameter("color", color);
    }

    template <class Values>
    VertexBufferHandle makeVertices(const std::string& name, const Values& values, uint8_t componentCount = 3,
                                    uint32_t divisor = 0)
    {
        VertexBufferProperties properties;
        properties.componentCount = componentCount;
        properties.divisor = divisor;
        properties.buffer = makeBuffer(values.size() * sizeof(values[0]), values.data());
        properties.name = name;
        const VertexBufferHandle handle = renderer->generateVertexBufferHandle();
        run<CommandCreateVertexBuffer>(handle, properties);
        return handle;
    }

    IndexBufferHandle makeIndices(const std::vector<uint16_t>& values)
    {
        IndexBufferProperties properties;
        properties.dataType = SbDataType::UNSIGNED_SHORT;
        properties.buffer = makeBuffer(values.size() * 2, values.data());
        const IndexBufferHandle handle = renderer->generateIndexBufferHandle();
        run<CommandCreateIndexBuffer>(handle, properties);
        return handle;
    }

    /// A strip of four vertices, drawn without indices unless one is given.
    DrawProperties makeStrip(const std::array<float, 12>& positions, const IndexBufferHandle& indexBuffer = {})
    {
        DrawProperties properties;
        properties.vertexBuffers = {makeVertices("position", positions)};
        DrawRange range;
        range.primitive = 5;
        range.count = 4;
        range.indexBuffer = indexBuffer;
        properties.ranges = {range};
        return properties;
    }

    void draw(const Scene& scene, std::initializer_list<DrawProperties> members)
    {
        const DrawHandle handle = makeDraw(scene, {});
        for (const DrawProperties& member : members)
        {
            run<CommandAddDrawProperties>(handle, makeMember(member));
        }
        run<CommandRender>(handle);
    }

    void drawColored(Scene scene, const Pixel& color, const DrawProperties& properties)
    {
        scene.shaderState.shaderParameters = {makeColor(color)};
        draw(scene, {properties});
    }

    void clear(const Pixel& pixel = black)
    {
        ClearTargetProperties properties;
        for (size_t i = 0; i < 4; ++i)
        {
            properties.colors[0][i] = static_cast<float>(pixel[i]) / 255.0f;
        }
        run<CommandClearRT>(target, properties);
    }

    Picture read(const TextureHandle& texture)
    {
        run<CommandReadbackTexture>(texture);
        Picture picture(pictureSize * pictureSize);
        renderer->readbackTexture(texture, picture.data(), picture.size() * sizeof(Pixel));
        return picture;
    }

    Picture read() { return read(colorTexture); }

    static const Pixel& at(const Picture& picture, uint32_t x, uint32_t y) { return picture[y * pictureSize + x]; }

    static size_t count(const Picture& picture, const Pixel& pixel)
    {
        return static_cast<size_t>(std::count(picture.begin(), picture.end(), pixel));
    }

    TextureHandle colorTexture;
    TextureHandle depthTexture;
    RenderTargetHandle target;
    ViewportHandle viewport;
};

/// A suite over both renderers derives from this.
template <class Renderer> class BothRenderersDevice : public RendererDevice
{
protected:
    void SetUp() override { startOnDevice<Renderer>(); }
};

/// Both renderers, for typed suites.
using Renderers = ::testing::Types<RendererGL41, RendererGL46>;
class RendererNames
{
public:
    template <class Renderer> static std::string GetName(int index) { return index == 0 ? "GL41" : "GL46"; }
};

inline constexpr size_t allPixels = pictureSize * pictureSize;

} // namespace renderengine
