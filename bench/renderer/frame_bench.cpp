// A frame that replays a kept cache, and how recording and replaying grow with the number of commands, each beside its
// floor: the same with a vector of shared pointers to heap-allocated commands.

#include "commands/CommandBuffer.h"
#include "renderer/RendererNull.h"
#include "support/Floor.h"
#include "support/ParkedThread.h"

#include <renderengine/RenderCache.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>

namespace
{

using namespace renderengine;
using namespace bench;

void runFrame(RendererBase& renderer, const std::shared_ptr<RenderCache>& cache)
{
    renderer.submit(cache);
    renderer.endFrame();
    renderer.execute(); // clears the frame's commands and drops the frame
}

void fill(RenderCache& cache, int64_t count)
{
    for (int64_t i = 0; i < count; ++i)
    {
        cache.draw(DrawHandle(static_cast<uint32_t>(i)));
    }
}

void fill(FloorList& list, int64_t count)
{
    for (int64_t i = 0; i < count; ++i)
    {
        appendFloorDraw(list, static_cast<uint32_t>(i));
    }
}

void replayEngine(benchmark::State& state)
{
    const ParkedThread parked;
    RendererNull renderer(false);
    const auto cache = std::make_shared<RenderCache>();
    fill(*cache, state.range(0));
    for (auto _ : state)
    {
        runFrame(renderer, cache);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void replayFloor(benchmark::State& state)
{
    const ParkedThread parked;
    FloorRenderer renderer;
    FloorList list;
    fill(list, state.range(0));
    for (auto _ : state)
    {
        const FloorList frame = list;
        executeFloor(frame, renderer);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

/// Commands that an iteration handles in all, in as many frames as it takes; each empties the cache and fills it again.
constexpr int64_t TOTAL = 1000000;

void growthEngine(benchmark::State& state)
{
    const ParkedThread parked;
    RendererNull renderer(false);
    const auto cache = std::make_shared<RenderCache>();
    fill(*cache, state.range(0)); // a scene that goes on: its memory is there already
    runFrame(renderer, cache);
    for (auto _ : state)
    {
        for (int64_t done = 0; done < TOTAL; done += state.range(0))
        {
            cache->reset();
            fill(*cache, state.range(0));
            runFrame(renderer, cache);
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * TOTAL);
}

/// The same with a cache of its own for each frame, which has to find its memory anew.
void freshGrowthEngine(benchmark::State& state)
{
    const ParkedThread parked;
    RendererNull renderer(false);
    for (auto _ : state)
    {
        for (int64_t done = 0; done < TOTAL; done += state.range(0))
        {
            const auto cache = std::make_shared<RenderCache>();
            fill(*cache, state.range(0));
            runFrame(renderer, cache);
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * TOTAL);
}

void freshGrowthFloor(benchmark::State& state)
{
    const ParkedThread parked;
    FloorRenderer renderer;
    for (auto _ : state)
    {
        for (int64_t done = 0; done < TOTAL; done += state.range(0))
        {
            FloorList list;
            fill(list, state.range(0));
            const FloorList frame = list;
            executeFloor(frame, renderer);
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * TOTAL);
}

void growthFloor(benchmark::State& state)
{
    const ParkedThread parked;
    FloorRenderer renderer;
    FloorList list;
    fill(list, state.range(0));
    for (auto _ : state)
    {
        for (int64_t done = 0; done < TOTAL; done += state.range(0))
        {
            list.clear();
            fill(list, state.range(0));
            const FloorList frame = list;
            executeFloor(frame, renderer);
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * TOTAL);
}

BENCHMARK(replayEngine)->Name("BM_ReplayKeptCache/engine")->Arg(1000)->Arg(20000);
BENCHMARK(replayFloor)->Name("BM_ReplayKeptCache/floor")->Arg(1000)->Arg(20000);
// Each size handles the same number of commands, so the times themselves show how the cost of a command grows.
BENCHMARK(growthEngine)->Name("BM_RecordAndReplay/engine")->RangeMultiplier(10)->Range(1000, TOTAL);
BENCHMARK(growthFloor)->Name("BM_RecordAndReplay/floor")->RangeMultiplier(10)->Range(1000, TOTAL);
BENCHMARK(freshGrowthEngine)->Name("BM_RecordAndReplayFresh/engine")->RangeMultiplier(10)->Range(1000, TOTAL);
BENCHMARK(freshGrowthFloor)->Name("BM_RecordAndReplayFresh/floor")->RangeMultiplier(10)->Range(1000, TOTAL);

} // namespace

BENCHMARK_MAIN();
