#include "support/Floor.h"

namespace bench
{

FloorRenderer::~FloorRenderer() = default;

void FloorRenderer::execute(FloorDraw&) {}

} // namespace bench
