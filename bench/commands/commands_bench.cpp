// The cost of recording a draw and of dispatching a command, each beside its floor: a vector of shared pointers to
// heap-allocated commands, and a loop of two virtual calls over it.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <ctime>
#include <memory>

#include <renderengine/RenderCache.h>

#include "commands/CommandBuffer.h"
#include "commands/CommandList.h"
#include "renderer/RendererNull.h"
#include "support/Floor.h"
#include "support/ParkedThread.h"

namespace
{

using namespace renderengine;
using namespace bench;

constexpr int CommandCount = 20000;

static_assert(sizeof(FloorDraw) == sizeof(CommandRender), "the floor appends commands of the same size");

/// Times `work` on a new list in each iteration, as time of the processor, since the machine may be shared; making and
/// dropping the list is not timed.
template <class List, class Work> void timeOnNewLists(benchmark::State& state, const Work& work)
{
    const ParkedThread parked;
    for (auto _ : state)
    {
        auto list = std::make_unique<List>();
        const std::clock_t start = std::clock();
        work(*list);
        benchmark::ClobberMemory();
        state.SetIterationTime(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    state.SetItemsProcessed(state.iterations() * CommandCount);
}

void recordEngine(benchmark::State& state)
{
    timeOnNewLists<RenderCache>(state,
                                [](RenderCache& cache)
                                {
                                    for (uint32_t i = 0; i < CommandCount; ++i)
                                    {
                                        cache.draw(DrawHandle(i));
                                    }
                                });
}

void recordFloor(benchmark::State& state)
{
    timeOnNewLists<FloorList>(state,
                              [](FloorList& list)
                              {
                                  for (uint32_t i = 0; i < CommandCount; ++i)
                                  {
                                      appendFloorDraw(list, i);
                                  }
                              });
}

/// A steady scene: one list is emptied and filled again, with both timed.
void rerecordEngine(benchmark::State& state)
{
    const ParkedThread parked;
    RenderCache cache;
    for (auto _ : state)
    {
        cache.reset();
        for (uint32_t i = 0; i < CommandCount; ++i)
        {
            cache.draw(DrawHandle(i));
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * CommandCount);
}

void rerecordFloor(benchmark::State& state)
{
    const ParkedThread parked;
    FloorList list;
    for (auto _ : state)
    {
        list.clear();
        for (uint32_t i = 0; i < CommandCount; ++i)
        {
            appendFloorDraw(list, i);
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * CommandCount);
}

void dispatchEngine(benchmark::State& state)
{
    const ParkedThread parked;
    RendererNull renderer(false);
    CommandBuffer commands;
    for (uint32_t i = 0; i < CommandCount; ++i)
    {
        commands.record<CommandRender>(DrawHandle(i));
    }
    for (auto _ : state)
    {
        renderer.executeCommands(commands);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * CommandCount);
}

void dispatchFloor(benchmark::State& state)
{
    const ParkedThread parked;
    FloorRenderer renderer;
    FloorList list;
    for (uint32_t i = 0; i < CommandCount; ++i)
    {
        appendFloorDraw(list, i);
    }
    for (auto _ : state)
    {
        executeFloor(list, renderer);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * CommandCount);
}

BENCHMARK(recordEngine)->Name("BM_RecordDraw/engine")->UseManualTime();
BENCHMARK(recordFloor)->Name("BM_RecordDraw/floor")->UseManualTime();
BENCHMARK(rerecordEngine)->Name("BM_RerecordDraw/engine");
BENCHMARK(rerecordFloor)->Name("BM_RerecordDraw/floor");
BENCHMARK(dispatchEngine)->Name("BM_DispatchNull/engine");
BENCHMARK(dispatchFloor)->Name("BM_DispatchNull/floor");

} // namespace

BENCHMARK_MAIN();
