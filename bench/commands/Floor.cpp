#include "commands/Floor.h"

namespace commandsbench
{

void FloorDraw::execute(FloorRenderer& renderer)
{
    renderer.execute(*this);
}

FloorRenderer::~FloorRenderer() = default;

void FloorRenderer::execute(FloorDraw&) {}

} // namespace commandsbench
