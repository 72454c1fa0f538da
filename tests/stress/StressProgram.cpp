// Eight threads record into caches of their own, one client submits them and makes, changes and destroys resources, and
// a render thread runs the frames: all of it within the rules for clients, so that a thread checker has nothing to
// report. At the end every draw has run exactly once for each submission.
//
//     stress_program [SUBMITS]        20000 by default; the environment's RENDERENGINE_STRESS_SUBMITS counts too

#include "CountingRenderer.h"
#include "Recorder.h"

#include "context/ContextFactory.h"
#include "context/FakeContext.h"
#include "renderer/RendererLog.h"
#include "renderer/RendererNull.h"

#include <spdlog/sinks/null_sink.h>
#include <spdlog/spdlog.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace
{

using namespace renderengine;
using renderengine::testing::CountingRenderer;
using renderengine::testing::FakeContext;
using renderengine::testing::Recorder;
using renderengine::testing::Recording;
using renderengine::testing::RecordingQueue;

constexpr uint32_t RECORDERS = 8;

struct Expected
{
    uint64_t draws = 0;
    uint64_t sum = 0;
    uint64_t pixelSum = 0;
};

/// What a client does between two frames. Each turn creates few resources and destroys as many.
void changeResources(FakeContext& context, uint64_t turn)
{
    std::vector<uint8_t> bytes(64, static_cast<uint8_t>(turn));
    BufferProperties bufferProperties;
    bufferProperties.size = bytes.size();
    bufferProperties.data = bytes.data();
    const BufferHandle buffer = context.createBuffer(bufferProperties);
    context.updateBuffer(buffer, bufferProperties);
    const TextureHandle texture = context.createTexture(TextureProperties());
    const SamplerHandle sampler = context.createSampler(SamplerProperties());
    const DrawHandle draw = context.createDraw(nullptr, nullptr);
    context.setSize(static_cast<uint32_t>(turn), 1);
    switch (turn % 8)
    {
    case 0:
        context.resizeBuffer(buffer, 128); // runs the resource list at once, as the next three
        break;
    case 1:
        context.createShaderObject(ShaderObjectProperties());
        break;
    case 2:
        context.mapBuffer(buffer, 0, 64, 1);
        break;
    case 3:
        context.executeResourceCommands();
        break;
    default:
        break;
    }
    context.destroyDraw(draw);
    context.destroySampler(sampler);
    context.destroyTexture(texture);
    context.destroyBuffer(buffer);
}

void endFrame(FakeContext& context, uint64_t frame)
{
    switch (frame % 4)
    {
    case 0:
        context.execute(true);
        break;
    case 1:
        context.flush(std::make_shared<RenderCache>(), true);
        break;
    default:
        context.execute(false);
        break;
    }
}

template <class Renderer> bool run(const char* name, uint64_t submits)
{
    renderengine::testing::Trace trace;
    auto* const renderer = new CountingRenderer<Renderer>(false);
    FakeContext context(ContextMultithread | ContextShare, trace, renderer);
    context.init();

    Expected expected;
    {
        RecordingQueue ready;
        std::vector<std::unique_ptr<Recorder>> recorders;
        for (uint32_t i = 0; i < RECORDERS; ++i)
        {
            recorders.push_back(std::make_unique<Recorder>(i, ready));
        }
        for (uint64_t i = 0; i < submits; ++i)
        {
            const Recording recording = ready.pop();
            context.submit(recording.cache);
            expected.draws += recording.draws;
            expected.sum += recording.sum;
            expected.pixelSum += recording.pixelSum;
            for (const std::unique_ptr<Recorder>& recorder : recorders)
            {
                if (recorder->owns(recording.cache))
                {
                    recorder->giveBack(recording);
                }
            }
            if (i % 4 == 3)
            {
                changeResources(context, i / 4);
                endFrame(context, i / 4);
            }
        }
    }
    context.execute(true);
    const bool passed = renderer->getDraws() == expected.draws && renderer->getSum() == expected.sum &&
                        renderer->getPixelSum() == expected.pixelSum;
    std::printf("%s: %llu submits, %llu draws of %llu: %s\n", name, static_cast<unsigned long long>(submits),
                static_cast<unsigned long long>(renderer->getDraws()), static_cast<unsigned long long>(expected.draws),
                passed ? "ok" : "WRONG");
    return passed;
}

uint64_t chosenSubmits(int count, char** arguments)
{
    const char* text = count > 1 ? arguments[1] : std::getenv("RENDERENGINE_STRESS_SUBMITS");
    return text != nullptr ? std::strtoull(text, nullptr, 10) : 20000;
}

} // namespace

int main(int count, char** arguments)
{
    const auto logger = std::make_shared<spdlog::logger>("", std::make_shared<spdlog::sinks::null_sink_mt>());
    logger->set_level(spdlog::level::trace);
    spdlog::set_default_logger(logger);

    const uint64_t submits = chosenSubmits(count, arguments);
    if (submits == 0)
    {
        std::fprintf(stderr, "stress_program: the number of submits must be above 0\n");
        return 2;
    }
    const bool nullPassed = run<RendererNull>("RendererNull", submits);
    const bool logPassed = run<RendererLog>("RendererLog", submits);
    return nullPassed && logPassed ? 0 : 1;
}
