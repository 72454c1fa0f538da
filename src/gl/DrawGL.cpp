#include "gl/DrawGL.h"

#include <utility>

namespace renderengine
{

void DrawGL::setState(const std::shared_ptr<const GfxStateProperties>& newGfxState,
                      std::shared_ptr<const ShaderStateCoreProperties> newShaderState)
{
    shaderState = newShaderState ? std::move(newShaderState) : std::make_shared<const ShaderStateCoreProperties>();
    gfxState =
        newGfxState ? std::make_shared<GfxStateProperties>(*newGfxState) : std::make_shared<GfxStateProperties>();
    state = std::make_unique<StateGL>(gfxState);
}

} // namespace renderengine
