#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

namespace bench
{

class FloorRenderer;

/// What a draw is without any engine: a command as large as CommandRender that takes two virtual calls to its renderer.
/// The bodies of the two stand in files of their own: seeing both, the compiler would guess the second call's target
/// and leave the call out.
struct FloorCommand
{
    virtual void execute(FloorRenderer& renderer) = 0;
    virtual ~FloorCommand() = default;
};

struct FloorDraw : FloorCommand
{
    void execute(FloorRenderer& renderer) override;

    uint32_t id = 0xFFFFFFFFu;
};

class FloorRenderer
{
public:
    virtual ~FloorRenderer();
    virtual void execute(FloorDraw& draw);
};

using FloorList = std::vector<std::shared_ptr<FloorCommand>>;

inline void appendFloorDraw(FloorList& list, uint32_t id)
{
    auto draw = std::make_shared<FloorDraw>();
    draw->id = id;
    list.push_back(std::move(draw));
}

inline void executeFloor(const FloorList& list, FloorRenderer& renderer)
{
    for (const std::shared_ptr<FloorCommand>& command : list)
    {
        command->execute(renderer);
    }
}

} // namespace bench
