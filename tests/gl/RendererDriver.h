#pragma once

#include "commands/CommandList.h"
#include "gl/RendererGL41.h"
#include "gl/RendererGL46.h"

#include <renderengine/BufferProperties.h>
#include <renderengine/DrawProperties.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <utility>

namespace renderengine
{

/// What one draw needs, all of it live.
struct Scene
{
    ShaderStateCoreProperties shaderState;
    GfxStateProperties gfxState;
    VertexBufferHandle vertexBuffer;
    IndexBufferHandle indexBuffer;
    DrawProperties properties;
    DrawPropertiesHandle member;
    DrawHandle draw;
};

/// A renderer driven by commands, one at a time, without context object, frame or thread.
class RendererDriver
{
protected:
    /// Makes a renderer, which reads its settings now.
    template <class Renderer> void start(bool debug = false) { renderer = std::make_unique<Renderer>(debug); }

    template <class Command, class... Arguments> void run(Arguments&&... arguments)
    {
        Command command;
        command.set(std::forward<Arguments>(arguments)...);
        renderer->execute(command);
    }

    BufferHandle makeBuffer(uint64_t size, const void* data = nullptr)
    {
        BufferProperties properties;
        properties.size = size;
        properties.data = data;
        const BufferHandle handle = renderer->generateBufferHandle();
        run<CommandCreateBuffer>(handle, properties);
        return handle;
    }

    /// Three floats a vertex.
    VertexBufferHandle makeVertexBuffer(const std::string& name, uint32_t vertexCount)
    {
        VertexBufferProperties properties;
        properties.componentCount = 3;
        properties.buffer = makeBuffer(vertexCount * 12);
        properties.name = name;
        const VertexBufferHandle handle = renderer->generateVertexBufferHandle();
        run<CommandCreateVertexBuffer>(handle, properties);
        return handle;
    }

    IndexBufferHandle makeIndexBuffer(uint32_t indexCount, SbDataType type = SbDataType::UNSIGNED_INT)
    {
        IndexBufferProperties properties;
        properties.dataType = type;
        properties.buffer = makeBuffer(uint64_t{indexCount} * type.getSize());
        const IndexBufferHandle handle = renderer->generateIndexBufferHandle();
        run<CommandCreateIndexBuffer>(handle, properties);
        return handle;
    }

    ShaderBufferHandle makeShaderBuffer(const std::string& name, uint32_t kind = 1, uint64_t size = 64)
    {
        ShaderBufferProperties properties;
        properties.kind = kind;
        properties.buffer = makeBuffer(size);
        properties.name = name;
        const ShaderBufferHandle handle = renderer->generateShaderBufferHandle();
        run<CommandCreateShaderBuffer>(handle, properties);
        return handle;
    }

    TextureHandle makeTexture(uint32_t type = 2, uint32_t format = 8, uint32_t internalFormat = 21)
    {
        TextureProperties properties;
        properties.type = type;
        properties.width = 4;
        properties.height = 4;
        properties.format = format;
        properties.internalFormat = internalFormat;
        const TextureHandle handle = renderer->generateTextureHandle();
        run<CommandCreateTexture>(handle, properties);
        return handle;
    }

    SamplerHandle makeSampler()
    {
        const SamplerHandle handle = renderer->generateSamplerHandle();
        run<CommandCreateSampler>(handle, SamplerProperties());
        return handle;
    }

    /// A target with a texture of its own at each of the attachment indices.
    RenderTargetHandle makeRenderTarget(std::initializer_list<uint8_t> attachments = {0})
    {
        RenderTargetProperties properties;
        for (const uint8_t attachment : attachments)
        {
            RenderTextureProperty entry;
            entry.texture = makeTexture();
            entry.attachment = attachment;
            properties.attachments.push_back(entry);
        }
        const RenderTargetHandle handle = renderer->generateRenderTargetHandle();
        run<CommandCreateRenderTarget>(handle, properties);
        return handle;
    }

    ViewportHandle makeViewport(int32_t width = 8, int32_t height = 6, float sizeScale = 1.0f)
    {
        ViewportProperties properties;
        properties.rectangle = SbVec4i32(0, 0, width, height);
        properties.sizeScale = sizeScale;
        const ViewportHandle handle = renderer->generateViewportHandle();
        run<CommandCreateViewport>(handle, properties);
        return handle;
    }

    ShaderProgramHandle makeProgram()
    {
        const ShaderProgramHandle handle = renderer->generateShaderProgramHandle();
        run<CommandCreateShaderProgram>(handle, ShaderProgramProperties());
        return handle;
    }

    template <class Record> ShaderParameterHandle makeParameter(const std::string& name, const Record& record)
    {
        Record named = record;
        named.name = name;
        const ShaderParameterHandle handle = renderer->generateShaderParameterHandle();
        run<CommandCreateShaderParameter<Record>>(handle, named);
        return handle;
    }

    DrawPropertiesHandle makeMember(const DrawProperties& properties)
    {
        const DrawPropertiesHandle handle = renderer->generateDrawPropertiesHandle();
        run<CommandCreateDrawProperties>(handle, properties);
        return handle;
    }

    DrawHandle makeDraw(const Scene& scene, std::initializer_list<DrawPropertiesHandle> members)
    {
        const DrawHandle handle = renderer->generateDrawHandle();
        run<CommandCreateDraw>(handle, std::make_shared<const GfxStateProperties>(scene.gfxState),
                               std::make_shared<const ShaderStateCoreProperties>(scene.shaderState));
        for (const DrawPropertiesHandle& member : members)
        {
            run<CommandAddDrawProperties>(handle, member);
        }
        return handle;
    }

    void updateState(const Scene& scene)
    {
        run<CommandUpdateDraw>(scene.draw, std::make_shared<const GfxStateProperties>(scene.gfxState),
                               std::make_shared<const ShaderStateCoreProperties>(scene.shaderState));
    }

    std::unique_ptr<RendererGL41> renderer;
};

} // namespace renderengine
