#pragma once

#include <cstdint>

namespace commandsbench
{

class FloorRenderer;

/// What a draw is without any engine: a command as large as CommandRender that takes two virtual calls to its renderer.
/// The bodies stand in a file of their own, so that the compiler cannot see through the calls.
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

} // namespace commandsbench
