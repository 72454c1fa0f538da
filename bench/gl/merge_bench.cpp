// 10,000 cubes on the device, merged and one by one, beside hand-written GL; and what the merge itself costs. A frame
// ends when the device has finished it.

#include "gl/BenchContext.h"
#include "gl/EngineScene.h"
#include "gl/HandWritten.h"

#include <benchmark/benchmark.h>
#include <glbinding/gl.h>

#include <chrono>
#include <cstdint>
#include <utility>
#include <vector>

namespace
{

using namespace bench;

constexpr uint32_t cubeCount = 10000;
constexpr bool onDevice = true;

const CubeData& cubes()
{
    static const CubeData s_cubes(cubeCount);
    return s_cubes;
}

/// Something to draw in a context of its own, so that the sides of a pair share no state. Made once; the contexts live
/// to the end of the process.
template <class Drawn> class InContext
{
public:
    template <class... Arguments> explicit InContext(Arguments&&... arguments)
    {
        const BenchContext::Current current(*m_context);
        m_drawn = new Drawn(std::forward<Arguments>(arguments)...);
    }

    BenchContext& context() { return *m_context; }
    Drawn& operator*() { return *m_drawn; }
    Drawn* operator->() { return m_drawn; }

private:
    BenchContext* m_context = new BenchContext();
    Drawn* m_drawn = nullptr;
};

using Engine = InContext<EngineScene>;

Engine& engine(uint32_t indexCount, bool merging)
{
    if (!merging)
    {
        static Engine s_unmerged(RendererKind::GL46, cubes(), cubeIndices, false, onDevice);
        return s_unmerged;
    }
    if (indexCount == cubeIndices)
    {
        static Engine s_merged(RendererKind::GL46, cubes(), cubeIndices, true, onDevice);
        return s_merged;
    }
    static Engine s_mergedSmall(RendererKind::GL46, cubes(), 3u, true, onDevice);
    return s_mergedSmall;
}

InContext<HandWrittenMultiDraw>& multiDraw(uint32_t indexCount)
{
    if (indexCount == cubeIndices)
    {
        static InContext<HandWrittenMultiDraw> s_full(cubes(), cubeIndices);
        return s_full;
    }
    static InContext<HandWrittenMultiDraw> s_small(cubes(), 3u);
    return s_small;
}

InContext<HandWrittenLoop>& loop()
{
    static InContext<HandWrittenLoop> s_loop(cubes(), cubeIndices, onDevice);
    return s_loop;
}

InContext<HandWrittenCopies>& copies()
{
    static InContext<HandWrittenCopies> s_copies(cubes(), cubeIndices);
    return s_copies;
}

/// Both sides must draw the same.
std::vector<uint8_t> expectedPicture(uint32_t indexCount)
{
    InContext<HandWrittenMultiDraw>& drawn = multiDraw(indexCount);
    const BenchContext::Current current(drawn.context());
    drawn->drawFrame();
    return drawn->readPicture();
}

template <class Drawn> void measure(benchmark::State& state, InContext<Drawn>& drawn, uint32_t indexCount)
{
    const std::vector<uint8_t> expected = expectedPicture(indexCount);
    const BenchContext::Current current(drawn.context());
    for (int i = 0; i < 2; ++i)
    {
        drawn->drawFrame();
        glFinish();
    }
    if (drawn->readPicture() != expected)
    {
        state.SkipWithError("the picture is not the expected one");
        return;
    }
    for (auto _ : state)
    {
        drawn->drawFrame();
        glFinish();
    }
}

void mergedEngine(benchmark::State& state)
{
    const auto indexCount = static_cast<uint32_t>(state.range(0));
    measure(state, engine(indexCount, true), indexCount);
}

void mergedFloor(benchmark::State& state)
{
    const auto indexCount = static_cast<uint32_t>(state.range(0));
    measure(state, multiDraw(indexCount), indexCount);
}

void unmergedEngine(benchmark::State& state)
{
    measure(state, engine(cubeIndices, false), cubeIndices);
}

void unmergedFloor(benchmark::State& state)
{
    measure(state, loop(), cubeIndices);
}

void setTime(benchmark::State& state, std::chrono::steady_clock::time_point start)
{
    state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
}

/// The whole first frame: the merge, and then the drawing of all cubes.
void firstFrameEngine(benchmark::State& state)
{
    Engine& drawn = engine(cubeIndices, true);
    const BenchContext::Current current(drawn.context());
    for (auto _ : state)
    {
        drawn->renewDraws();
        glFinish();
        const auto start = std::chrono::steady_clock::now();
        drawn->drawFrame();
        glFinish();
        setTime(state, start);
    }
}

/// The same by hand: the copies, and then the multi-draw.
void firstFrameFloor(benchmark::State& state)
{
    InContext<HandWrittenCopies>& source = copies();
    InContext<HandWrittenMultiDraw>& drawn = multiDraw(cubeIndices);
    for (auto _ : state)
    {
        std::chrono::steady_clock::time_point start;
        {
            const BenchContext::Current current(source.context());
            glFinish();
            start = std::chrono::steady_clock::now();
            source->copyAll();
            glFinish();
        }
        const BenchContext::Current current(drawn.context());
        drawn->drawFrame();
        glFinish();
        setTime(state, start);
    }
}

/// What the first frame takes beyond a steady one, beside the copies alone.
void mergeEngine(benchmark::State& state)
{
    Engine& drawn = engine(cubeIndices, true);
    const BenchContext::Current current(drawn.context());
    for (auto _ : state)
    {
        drawn->renewDraws();
        glFinish();
        const auto start = std::chrono::steady_clock::now();
        drawn->drawFrame();
        glFinish();
        const auto first = std::chrono::steady_clock::now() - start;
        const auto next = std::chrono::steady_clock::now();
        drawn->drawFrame();
        glFinish();
        const std::chrono::duration<double> steady = std::chrono::steady_clock::now() - next;
        state.SetIterationTime(std::chrono::duration<double>(first).count() - steady.count());
    }
}

template <void (HandWrittenCopies::*CopyAll)() const> void mergeFloor(benchmark::State& state)
{
    InContext<HandWrittenCopies>& drawn = copies();
    const BenchContext::Current current(drawn.context());
    for (auto _ : state)
    {
        const auto start = std::chrono::steady_clock::now();
        ((*drawn).*CopyAll)();
        glFinish();
        setTime(state, start);
    }
}

/// A frame in which the vertices of one cube changed.
void changeOneEngine(benchmark::State& state)
{
    Engine& drawn = engine(cubeIndices, true);
    const BenchContext::Current current(drawn.context());
    drawn->drawFrame();
    for (auto _ : state)
    {
        drawn->changeOne();
        glFinish();
        const auto start = std::chrono::steady_clock::now();
        drawn->drawFrame();
        glFinish();
        setTime(state, start);
    }
}

BENCHMARK(mergedEngine)->Name("BM_MergedFrame/engine")->Arg(36)->Arg(3)->UseRealTime();
BENCHMARK(mergedFloor)->Name("BM_MergedFrame/floor")->Arg(36)->Arg(3)->UseRealTime();
// The pair with the narrowest gate; what else runs on the machine slows a frame by up to a half for seconds.
constexpr int unmergedRepetitions = 25;
BENCHMARK(unmergedEngine)->Name("BM_UnmergedFrame/engine")->UseRealTime()->Repetitions(unmergedRepetitions);
BENCHMARK(unmergedFloor)->Name("BM_UnmergedFrame/floor")->UseRealTime()->Repetitions(unmergedRepetitions);
BENCHMARK(mergedEngine)->Name("BM_MergedOverUnmerged/engine")->Arg(36)->UseRealTime();
BENCHMARK(unmergedEngine)->Name("BM_MergedOverUnmerged/floor")->Arg(36)->UseRealTime();
BENCHMARK(firstFrameEngine)->Name("BM_FirstFrame/engine")->UseManualTime();
BENCHMARK(firstFrameFloor)->Name("BM_FirstFrame/floor")->UseManualTime();
BENCHMARK(mergeEngine)->Name("BM_Merge/engine")->UseManualTime();
BENCHMARK_TEMPLATE(mergeFloor, &HandWrittenCopies::copyAll)->Name("BM_Merge/floor")->UseManualTime();
BENCHMARK(mergeEngine)->Name("BM_MergeByEngineCalls/engine")->UseManualTime();
BENCHMARK_TEMPLATE(mergeFloor, &HandWrittenCopies::copyAllAsEngine)
    ->Name("BM_MergeByEngineCalls/floor")
    ->UseManualTime();
BENCHMARK(changeOneEngine)->Name("BM_ChangeOne/engine")->UseManualTime();
BENCHMARK(firstFrameEngine)->Name("BM_ChangeOne/floor")->UseManualTime();

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    // In a fixed order and on a fresh heap: where thousands of small objects lie decides as much as what is done with
    // them.
    loop();
    engine(cubeIndices, false);
    multiDraw(cubeIndices);
    copies();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
