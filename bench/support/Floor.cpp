#include "support/Floor.h"

namespace bench
{

void FloorDraw::execute(FloorRenderer& renderer)
{
    renderer.execute(*this);
}

} // namespace bench
