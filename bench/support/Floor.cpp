#include "support/Floor.h"

namespace bench
{

void FloorDraw::execute(FloorRenderer& renderer)
{
    renderer.execute(*this);
}

FloorRenderer::~FloorRenderer() = default;

void FloorRenderer::execute(FloorDraw&) {}

} // namespace bench
