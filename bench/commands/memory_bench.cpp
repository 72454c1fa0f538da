// What a recorded draw takes in memory, and how often a frame that replays a kept cache allocates. Both are counted,
// not timed, so they have no floor beside them.

#include "commands/CommandBuffer.h"
#include "renderer/RendererNull.h"
#include "support/AllocationCounter.h"

#include <renderengine/RenderCache.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <memory>

namespace
{

using namespace renderengine;
using renderengine::testing::getAllocationCounts;

std::shared_ptr<RenderCache> cacheOfDraws(int64_t count)
{
    auto cache = std::make_shared<RenderCache>();
    for (int64_t i = 0; i < count; ++i)
    {
        cache->draw(DrawHandle(static_cast<uint32_t>(i)));
    }
    return cache;
}

/// A cache that holds all memory that the process keeps for commands, so that others have to ask the allocator for
/// theirs.
std::shared_ptr<RenderCache> holdKeptMemory()
{
    return cacheOfDraws(400000);
}

void memoryOfDraw(benchmark::State& state)
{
    uint64_t bytes = 0;
    for (auto _ : state)
    {
        const std::shared_ptr<RenderCache> holder = holdKeptMemory();
        const uint64_t before = getAllocationCounts().liveBytes;
        const std::shared_ptr<RenderCache> cache = cacheOfDraws(state.range(0));
        bytes = getAllocationCounts().liveBytes - before;
    }
    state.counters["bytes"] = static_cast<double>(bytes) / static_cast<double>(state.range(0));
}

void allocationsOfFrame(benchmark::State& state)
{
    RendererNull renderer(false);
    const std::shared_ptr<RenderCache> cache = cacheOfDraws(state.range(0));
    const auto allocationsOfOne = [&]
    {
        const uint64_t before = getAllocationCounts().allocations;
        renderer.submit(cache);
        renderer.endFrame();
        static_cast<RendererBase&>(renderer).execute();
        return getAllocationCounts().allocations - before;
    };
    allocationsOfOne(); // what the first frame makes once
    uint64_t fewest = ~uint64_t(0);
    uint64_t most = 0;
    for (auto _ : state)
    {
        const uint64_t allocations = allocationsOfOne();
        fewest = std::min(fewest, allocations);
        most = std::max(most, allocations);
    }
    if (fewest != most)
    {
        state.SkipWithError("some frames allocate more often than others");
    }
    state.counters["allocations"] = static_cast<double>(most);
}

BENCHMARK(memoryOfDraw)->Name("BM_MemoryOfDraw")->Arg(1000)->Arg(20000)->Arg(100000)->Arg(1000000)->Iterations(1);
BENCHMARK(allocationsOfFrame)
    ->Name("BM_AllocationsOfFrame")
    ->Arg(100)
    ->Arg(10000)
    ->Arg(100000)
    ->Iterations(200); // enough for what happens only now and then

} // namespace

BENCHMARK_MAIN();
