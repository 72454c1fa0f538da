#include "commands/CommandList.h"
#include "renderer/RendererBase.h"

namespace renderengine
{

#define RENDERENGINE_DISPATCH(COMMAND)            \
    void COMMAND::execute(RendererBase& renderer) \
    {                                             \
        renderer.execute(*this);                  \
    }
RENDERENGINE_COMMANDS_BEFORE_TASK(RENDERENGINE_DISPATCH)
RENDERENGINE_DISPATCH(CommandTask)
RENDERENGINE_COMMANDS_BEFORE_PARAMETERS(RENDERENGINE_DISPATCH)
RENDERENGINE_COMMANDS_AFTER_PARAMETERS(RENDERENGINE_DISPATCH)
#undef RENDERENGINE_DISPATCH

template <class Properties> void CommandUpdateShaderParameter<Properties>::execute(RendererBase& renderer)
{
    renderer.execute(*this);
}

template <class Properties> void CommandCreateShaderParameter<Properties>::execute(RendererBase& renderer)
{
    renderer.execute(*this);
}

#define RENDERENGINE_INSTANTIATE(PROPERTIES)                  \
    template struct CommandUpdateShaderParameter<PROPERTIES>; \
    template struct CommandCreateShaderParameter<PROPERTIES>;
RENDERENGINE_SHADER_PARAMETERS(RENDERENGINE_INSTANTIATE)
#undef RENDERENGINE_INSTANTIATE

} // namespace renderengine
