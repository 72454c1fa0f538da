// What it costs to create and destroy a resource of each concept and to run the frame of it on a renderer that does
// nothing, beside its floor: two heap-allocated commands of the sizes of the engine's in a vector of shared pointers.
//
// The renderer gives out a new number for each resource and takes none back, 4 bytes a resource: what its tables grow
// by belongs to the engine's side.

#include "commands/CommandList.h"
#include "renderer/RendererNull.h"
#include "support/Floor.h"
#include "support/ParkedThread.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>

namespace
{

using namespace renderengine;
using namespace bench;

constexpr int COUNT = 100;

/// A command as large as one of the engine's.
template <class Command> struct FloorOf : FloorDraw
{
    uint8_t payload[sizeof(Command) > sizeof(FloorDraw) ? sizeof(Command) - sizeof(FloorDraw) : 1];
};

template <class Turn> void runEngine(benchmark::State& state, const Turn& turn)
{
    const ParkedThread parked;
    RendererNull renderer(false);
    for (auto _ : state)
    {
        for (int i = 0; i < COUNT; ++i)
        {
            turn(renderer);
        }
        renderer.endFrame();
        static_cast<RendererBase&>(renderer).execute();
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * COUNT);
}

template <class Create, class Destroy> void runFloor(benchmark::State& state)
{
    const ParkedThread parked;
    FloorRenderer renderer;
    for (auto _ : state)
    {
        FloorList created;
        FloorList destroyed;
        for (int i = 0; i < COUNT; ++i)
        {
            created.push_back(std::make_shared<FloorOf<Create>>());
            destroyed.push_back(std::make_shared<FloorOf<Destroy>>());
        }
        executeFloor(created, renderer);
        executeFloor(destroyed, renderer);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * COUNT);
}

template <class Create, class Destroy, class Turn> void add(const char* concept_, const Turn& turn)
{
    const std::string name = std::string("BM_CreateDestroy") + concept_;
    benchmark::RegisterBenchmark((name + "/engine").c_str(),
                                 [turn](benchmark::State& state) { runEngine(state, turn); });
    benchmark::RegisterBenchmark((name + "/floor").c_str(), runFloor<Create, Destroy>);
}

#define RENDERENGINE_ADD(CONCEPT)                                              \
    add<CommandCreate##CONCEPT, CommandDestroy##CONCEPT>(                      \
        #CONCEPT, [properties = CONCEPT##Properties()](RendererBase& renderer) \
        { renderer.destroy##CONCEPT(renderer.create##CONCEPT(properties)); })

void addAll()
{
    add<CommandCreateDraw, CommandDestroyDraw>(
        "Draw", [gfxState = std::make_shared<const GfxStateProperties>(),
                 shaderState = std::make_shared<const ShaderStateCoreProperties>()](RendererBase& renderer)
        { renderer.destroyDraw(renderer.createDraw(gfxState, shaderState)); });
    add<CommandCreateDrawProperties, CommandDestroyDrawProperties>(
        "DrawProperties", [properties = DrawProperties()](RendererBase& renderer)
        { renderer.destroyDrawProperties(renderer.createDrawProperties(properties)); });
    RENDERENGINE_ADD(Buffer);
    RENDERENGINE_ADD(VertexBuffer);
    RENDERENGINE_ADD(IndexBuffer);
    RENDERENGINE_ADD(ShaderBuffer);
    RENDERENGINE_ADD(TextureImage);
    RENDERENGINE_ADD(Sampler);
    RENDERENGINE_ADD(Texture);
    RENDERENGINE_ADD(RenderTarget);
    RENDERENGINE_ADD(Viewport);
    RENDERENGINE_ADD(ShaderObject);
    RENDERENGINE_ADD(ShaderProgram);
    using Parameter = ShaderParameterProperties<SbVec4f>;
    add<CommandCreateShaderParameter<Parameter>, CommandDestroyShaderParameter>(
        "ShaderParameter", [properties = Parameter()](RendererBase& renderer)
        { renderer.destroyShaderParameter(renderer.createShaderParameter(properties)); });
    add<CommandCreateQuery, CommandDestroyQuery>("Query", [](RendererBase& renderer)
                                                 { renderer.destroyQuery(renderer.createQuery(0)); });
}

} // namespace

int main(int count, char** arguments)
{
    addAll();
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
