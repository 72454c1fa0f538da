#pragma once

#include "RendererFixture.h"

#include <cstring>
#include <string>
#include <utility>
#include <vector>

namespace renderengine
{

/// The newer renderer on the recording table, with draws whose members have a transform and a material each.
class RendererGL46Test : public RendererGLTest
{
protected:
    void SetUp() override { restart(); }

    void restart()
    {
        start<RendererGL46>();
        renderer->begin();
        gl.clear();
    }

    /// Reads GL_MAX_UNIFORM_BLOCK_SIZE, from which the limits come.
    void beginWithBlockSize(int64_t bytes)
    {
        gl.answer(GL_MAX_UNIFORM_BLOCK_SIZE, bytes);
        renderer->begin();
    }

    ShaderBufferHandle block(const std::string& name, uint32_t value)
    {
        const std::vector<uint32_t> data(16, value);
        ShaderBufferProperties properties;
        properties.buffer = makeBuffer(64, data.data());
        properties.name = name;
        const ShaderBufferHandle handle = renderer->generateShaderBufferHandle();
        run<CommandCreateShaderBuffer>(handle, properties);
        return handle;
    }

    /// A draw of as many members as there are pairs, each with a transform and a material.
    DrawHandle makeMergedDraw(Scene& scene, const std::vector<std::pair<ShaderBufferHandle, ShaderBufferHandle>>& pairs)
    {
        const DrawHandle draw = makeDraw(scene, {});
        for (const auto& [transform, material] : pairs)
        {
            scene.properties.shaderBuffers = {ShaderBufferHandle(), transform, material};
            run<CommandAddDrawProperties>(draw, makeMember(scene.properties));
        }
        return draw;
    }

    std::vector<uint32_t> contentOf(GLuint buffer)
    {
        const std::vector<std::byte> bytes = gl.bufferContent(buffer);
        std::vector<uint32_t> values(bytes.size() / 4);
        std::memcpy(values.data(), bytes.data(), values.size() * 4);
        return values;
    }

    /// The GL buffer that the draw binds to a binding point.
    std::vector<uint32_t> boundContent(const char* target, int binding)
    {
        const std::string prefix = "glBindBufferBase(" + std::string(target) + ", " + std::to_string(binding) + ", ";
        const Texts calls = gl.callsMatching(prefix);
        return calls.empty() ? std::vector<uint32_t>{}
                             : contentOf(static_cast<GLuint>(std::stoul(calls.back().substr(prefix.size()))));
    }

    TextureImageHandle makeImage(const std::string& name, uint8_t unit, uint8_t access = 1)
    {
        TextureImageProperties properties;
        properties.texture = makeTexture();
        properties.name = name;
        properties.unit = static_cast<uint8_t>(unit & 31);
        properties.access = static_cast<uint8_t>(access & 3);
        properties.layer = 2;
        properties.level = 1;
        const TextureImageHandle handle = renderer->generateTextureImageHandle();
        run<CommandCreateTextureImage>(handle, properties);
        return handle;
    }
};

} // namespace renderengine
