#include "gl/GLTables.h"

#include <spdlog/spdlog.h>

#include <cassert>

namespace renderengine::gltables
{

void reportUnknownIndex(const char* what, uint32_t index, size_t size)
{
    assert(index < size && "index outside its table");
    spdlog::error("[RendererGL] The {} index {} is outside its table of {} entries.", what, index, size);
}

} // namespace renderengine::gltables
