// Frames of creates, updates, draws and destroys on a renderer that does nothing, with a render thread, for as long as
// it takes a leak to show: fails when the resident memory grows by more than 1 MiB from the first hundredth of the
// frames to the last.
//
//     soak [FRAMES]        1000000 by default
//
// The renderer under test never takes a number back, so its tables grow by 4 bytes for each resource that is created:
// that is memory in use, not lost. Therefore resources live for many frames, one is replaced every 64 frames, each time
// of the next of five concepts, and a run of a million frames creates 15625 of them, for which the tables have reserved
// room from the start: filling it counts in the growth as up to 61 KiB.

#include "context/ContextBase.h"
#include "context/ContextFactory.h"
#include "renderer/RendererNull.h"

#include <renderengine/ContextInfo.h>
#include <renderengine/RenderCache.h>

#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace
{

using namespace renderengine;

constexpr int64_t LARGEST_GROWTH = 1024 * 1024;
constexpr uint64_t FRAMES_OF_A_RESOURCE = 64;

class SoakContext : public ContextBase
{
public:
    SoakContext() : ContextBase(ContextMultithread | ContextShare, 1)
    {
        m_renderer = new RendererNull(false);
        startRenderThread();
    }
    ~SoakContext() override { stopRenderThread(); }

    bool isValid() override { return true; }
    void init() override {}
    const ContextInfo& getContextInfo() override { return m_info; }
    bool makeCurrent() override { return true; }
    void doneCurrent() override {}

private:
    ContextInfo m_info;
};

/// Resident memory of the process in bytes; 0 when the system does not tell.
int64_t residentBytes()
{
    std::FILE* const file = std::fopen("/proc/self/statm", "r");
    if (file == nullptr)
    {
        return 0;
    }
    long long size = 0;
    long long resident = 0;
    const int count = std::fscanf(file, "%lld %lld", &size, &resident);
    std::fclose(file);
    return count == 2 ? resident * sysconf(_SC_PAGESIZE) : 0;
}

/// A client with one resource of each of some concepts.
class Client
{
public:
    Client() : m_kept(std::make_shared<RenderCache>()), m_recorded(std::make_shared<RenderCache>()), m_bytes(1024, 1)
    {
        for (uint32_t i = 0; i < 100; ++i)
        {
            m_kept->draw(DrawHandle(i));
        }
        BufferProperties buffer;
        buffer.size = m_bytes.size();
        buffer.data = m_bytes.data();
        m_buffer = m_context.createBuffer(buffer);
        m_texture = m_context.createTexture(TextureProperties());
        m_draw = m_context.createDraw(nullptr, nullptr);
        m_sampler = m_context.createSampler(SamplerProperties());
        m_parameter = m_context.createShaderParameter(m_value);
    }

    void runFrame(uint64_t frame)
    {
        if (frame % FRAMES_OF_A_RESOURCE == 0)
        {
            replace(frame / FRAMES_OF_A_RESOURCE);
        }
        BufferProperties buffer;
        buffer.size = m_bytes.size() - frame % 100;
        buffer.data = m_bytes.data();
        m_context.updateBuffer(m_buffer, buffer);
        m_context.updateDraw(m_draw, std::make_shared<GfxStateProperties>(), nullptr);
        m_context.updateShaderParameter(m_parameter, m_value);

        m_recorded->reset();
        TextureProperties texture;
        texture.data = {m_bytes.data()};
        m_recorded->updateTexture(m_texture, texture);
        m_recorded->copy(*m_kept, SbVec2i32(0, static_cast<int32_t>(frame % 100)));
        for (uint64_t i = 0; i < 20 + frame % 7; ++i)
        {
            m_recorded->draw(m_draw);
        }
        m_context.submit(m_recorded);
        m_context.submit(m_kept);
        m_context.execute(frame % 4 == 0);
    }

private:
    void replace(uint64_t turn)
    {
        switch (turn % 5)
        {
        case 0:
            m_context.destroyBuffer(m_buffer);
            m_buffer = m_context.createBuffer(BufferProperties());
            break;
        case 1:
            m_context.destroyTexture(m_texture);
            m_texture = m_context.createTexture(TextureProperties());
            break;
        case 2:
            m_context.destroyDraw(m_draw);
            m_draw = m_context.createDraw(nullptr, nullptr);
            break;
        case 3:
            m_context.destroySampler(m_sampler);
            m_sampler = m_context.createSampler(SamplerProperties());
            break;
        default:
            m_context.destroyShaderParameter(m_parameter);
            m_parameter = m_context.createShaderParameter(m_value);
            break;
        }
    }

    SoakContext m_context;
    std::shared_ptr<RenderCache> m_kept;
    std::shared_ptr<RenderCache> m_recorded;
    std::vector<uint8_t> m_bytes;
    ShaderParameterProperties<SbVec4f> m_value;
    BufferHandle m_buffer;
    TextureHandle m_texture;
    DrawHandle m_draw;
    SamplerHandle m_sampler;
    ShaderParameterHandle m_parameter;
};

} // namespace

int main(int count, char** arguments)
{
    const uint64_t frames = count > 1 ? std::strtoull(arguments[1], nullptr, 10) : 1000000;
    if (frames < 100)
    {
        std::fprintf(stderr, "soak: the number of frames must be at least 100\n");
        return 2;
    }
    Client client;
    int64_t early = 0;
    for (uint64_t frame = 0; frame < frames; ++frame)
    {
        if (frame == frames / 100)
        {
            early = residentBytes();
            std::printf("soak: %lld KiB resident behind 1 %% of the frames\n", static_cast<long long>(early / 1024));
        }
        client.runFrame(frame);
    }
    const int64_t late = residentBytes();
    std::printf("soak: %lld KiB resident behind all %llu\n", static_cast<long long>(late / 1024),
                static_cast<unsigned long long>(frames));
    if (early == 0 || late == 0)
    {
        std::fprintf(stderr, "soak: the resident memory cannot be read\n");
        return 1;
    }
    if (late - early > LARGEST_GROWTH)
    {
        std::fprintf(stderr, "soak: grew by %lld KiB, at most %lld are allowed\n",
                     static_cast<long long>((late - early) / 1024), static_cast<long long>(LARGEST_GROWTH / 1024));
        return 1;
    }
    return 0;
}
