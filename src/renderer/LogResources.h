#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace renderengine
{

struct DrawProperties;
struct GfxStateProperties;
struct IndexBufferProperties;
struct RenderTargetProperties;
struct SamplerProperties;
struct ShaderStateCoreProperties;
struct TextureProperties;
struct VertexBufferProperties;
struct ViewportProperties;

// The objects behind the handles of RendererLog. Each method writes one line to the log; only a draw keeps anything.

/// What every one of them has: the number of its handle, 0xFFFFFFFF once it is dead.
struct ResourceLog
{
    uint32_t id = 0xFFFFFFFF;
};

struct DrawLog : ResourceLog
{
    void create(const std::shared_ptr<const ShaderStateCoreProperties>& newShaderState,
                const std::shared_ptr<const GfxStateProperties>& newGfxState);
    void update(const std::shared_ptr<const ShaderStateCoreProperties>& newShaderState,
                const std::shared_ptr<const GfxStateProperties>& newGfxState);
    void destroy();
    void addDrawProperties(uint32_t drawPropertiesId);
    void removeDrawProperties(uint32_t drawPropertiesId);
    void removeAllDrawProperties();

    std::shared_ptr<const ShaderStateCoreProperties> shaderState;
    std::shared_ptr<const GfxStateProperties> gfxState;
    std::vector<uint32_t> drawProperties;

private:
    void setState(const char* operation, const std::shared_ptr<const ShaderStateCoreProperties>& newShaderState,
                  const std::shared_ptr<const GfxStateProperties>& newGfxState);
};

struct DrawPropertiesLog : ResourceLog
{
    void create(const DrawProperties& properties);
    void update(const DrawProperties& properties);
    void destroy();
};

struct IndexBufferLog : ResourceLog
{
    void create(const IndexBufferProperties& properties);
    void update(const IndexBufferProperties& properties);
    void destroy();
};

struct QueryLog : ResourceLog
{
    void create(uint32_t type);
    void destroy();
};

struct RenderTargetLog : ResourceLog
{
    void create(const RenderTargetProperties& properties);
    void destroy();
};

struct SamplerLog : ResourceLog
{
    void create(const SamplerProperties& properties);
    void destroy();
};

struct TextureLog : ResourceLog
{
    void create(const TextureProperties& properties);
    void update(const TextureProperties& properties);
    void resize(uint32_t width, uint32_t height, uint32_t depth);
    void destroy();
};

struct VertexBufferLog : ResourceLog
{
    void create(const VertexBufferProperties& properties);
    void update(const VertexBufferProperties& properties);
    void destroy();
};

struct ViewportLog : ResourceLog
{
    void create(const ViewportProperties& properties);
    void update(const ViewportProperties& properties);
    void destroy();
};

} // namespace renderengine
