// What the engine itself does in a frame, on a table of GL functions that do nothing: 10,000 draws of unchanged state
// beside a loop that makes the same GL calls, merged draws of more and more geometries beside one multi-draw, and what
// a frame allocates.

#include "gl/EngineScene.h"
#include "gl/HandWritten.h"
#include "support/AllocationCounter.h"

#include <benchmark/benchmark.h>
#include <glbinding/NullGL.h>
#include <glbinding/RecordingGL.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <tuple>

namespace
{

using namespace bench;
using renderengine::glbinding::NullGL;
using renderengine::glbinding::RecordingGL;
using renderengine::testing::getAllocationCounts;

constexpr bool noDevice = false;

/// The GL calls of one draw: what a second draw of the same state adds to a frame.
double callsOfDraw()
{
    RecordingGL gl;
    const auto callsOfFrame = [&gl](uint32_t count)
    {
        const CubeData cubes(count);
        EngineScene scene(RendererKind::GL46, cubes, cubeIndices, false, noDevice);
        scene.drawFrame();
        gl.clear();
        scene.drawFrame();
        return gl.takeCalls().size();
    };
    return static_cast<double>(callsOfFrame(3) - callsOfFrame(2));
}

struct Drawn
{
    Drawn(RendererKind kind, uint32_t count, bool merging)
        : cubes(count), scene(kind, cubes, cubeIndices, merging, noDevice)
    {
        scene.drawFrame();
        scene.drawFrame();
    }

    const CubeData cubes;
    EngineScene scene;
};

/// Made once each: making 100,000 cubes takes longer than to measure them. They live to the end of the process.
EngineScene& drawnScene(RendererKind kind, int64_t count, bool merging)
{
    static std::map<std::tuple<RendererKind, int64_t, bool>, std::unique_ptr<Drawn>>& s_scenes =
        *new std::map<std::tuple<RendererKind, int64_t, bool>, std::unique_ptr<Drawn>>();
    std::unique_ptr<Drawn>& drawn = s_scenes[{kind, count, merging}];
    if (!drawn)
    {
        drawn = std::make_unique<Drawn>(kind, static_cast<uint32_t>(count), merging);
    }
    return drawn->scene;
}

void unmergedEngine(benchmark::State& state)
{
    static const double s_calls = callsOfDraw();
    const NullGL gl;
    EngineScene& scene = drawnScene(RendererKind::GL46, state.range(0), false);
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state)
    {
        scene.drawFrame();
    }
    const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - start;
    const auto draws = static_cast<double>(state.iterations() * state.range(0));
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.counters["ns"] = time.count() / draws;
    state.counters["calls"] = s_calls;
}

/// The same when a view was changed before every frame.
void regatheredEngine(benchmark::State& state)
{
    const NullGL gl;
    EngineScene& scene = drawnScene(RendererKind::GL46, state.range(0), false);
    for (auto _ : state)
    {
        scene.changeOneView();
        scene.drawFrame();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void unmergedFloor(benchmark::State& state)
{
    const NullGL gl;
    const CubeData cubes(static_cast<uint32_t>(state.range(0)));
    const HandWrittenLoop loop(cubes, cubeIndices, noDevice);
    for (auto _ : state)
    {
        loop.drawFrame();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <RendererKind Kind> void mergedEngine(benchmark::State& state)
{
    const NullGL gl;
    EngineScene& scene = drawnScene(Kind, state.range(0), true);
    for (auto _ : state)
    {
        scene.drawFrame();
    }
}

void mergedFloor(benchmark::State& state)
{
    const NullGL gl;
    const CubeData cubes(static_cast<uint32_t>(state.range(0)));
    const HandWrittenMultiDraw draw(cubes, cubeIndices);
    for (auto _ : state)
    {
        draw.drawFrame();
    }
}

template <bool Merging> void allocationsOfFrame(benchmark::State& state)
{
    const NullGL gl;
    EngineScene& scene = drawnScene(RendererKind::GL46, state.range(0), Merging);
    uint64_t allocations = 0;
    for (auto _ : state)
    {
        const uint64_t before = getAllocationCounts().allocations;
        scene.drawFrame();
        allocations = getAllocationCounts().allocations - before;
    }
    state.counters["allocations"] = static_cast<double>(allocations);
}

BENCHMARK(unmergedEngine)->Name("BM_UnmergedDraws/engine")->Arg(10000);
BENCHMARK(unmergedFloor)->Name("BM_UnmergedDraws/floor")->Arg(10000);
BENCHMARK(regatheredEngine)->Name("BM_UnmergedDrawsOfChangedView/engine")->Arg(10000);
BENCHMARK(unmergedFloor)->Name("BM_UnmergedDrawsOfChangedView/floor")->Arg(10000);
BENCHMARK_TEMPLATE(mergedEngine, RendererKind::GL41)
    ->Name("BM_MergedSteadyFrame/engine")
    ->RangeMultiplier(10)
    ->Range(100, 100000);
BENCHMARK(mergedFloor)->Name("BM_MergedSteadyFrame/floor")->RangeMultiplier(10)->Range(100, 100000);
BENCHMARK_TEMPLATE(mergedEngine, RendererKind::GL46)
    ->Name("BM_MergedBlocksFrame/engine")
    ->RangeMultiplier(10)
    ->Range(100, 100000);
BENCHMARK(mergedFloor)->Name("BM_MergedBlocksFrame/floor")->RangeMultiplier(10)->Range(100, 100000);
BENCHMARK_TEMPLATE(allocationsOfFrame, false)->Name("BM_AllocationsOfDraws")->Arg(100)->Arg(10000)->Iterations(3);
BENCHMARK_TEMPLATE(allocationsOfFrame, true)->Name("BM_AllocationsOfMergedDraw")->Arg(100)->Arg(10000)->Iterations(3);

} // namespace

BENCHMARK_MAIN();
