#include "gl/DrawGL.h"

#include <utility>

namespace renderengine
{

void DrawGL::setState(const std::shared_ptr<const GfxStateProperties>& newGfxState,
                      std::shared_ptr<const ShaderStateCoreProperties> newShaderState, GfxStateSharing& sharing)
{
    shaderState = newShaderState ? std::move(newShaderState) : std::make_shared<const ShaderStateCoreProperties>();
    static const GfxStateProperties s_defaultState;
    const GfxStateProperties& record = newGfxState ? *newGfxState : s_defaultState;
    sizeScale = record.rasterizer.sizeScale;
    const GfxStateSharing::Entry& shared = sharing.share(record);
    gfxState = shared.gfxState;
    state = shared.state;
}

const GfxStateSharing::Entry& GfxStateSharing::share(const GfxStateProperties& record)
{
    GfxStateProperties wanted = record;
    for (const Entry& entry : m_entries)
    {
        if (entry.gfxState)
        {
            wanted.rasterizer.sizeScale = entry.gfxState->rasterizer.sizeScale;
            if (wanted == *entry.gfxState)
            {
                return entry;
            }
        }
    }
    Entry& entry = m_entries[m_next];
    m_next = (m_next + 1) % m_entries.size();
    entry.gfxState = std::make_shared<GfxStateProperties>(record);
    entry.state = std::make_shared<const StateGL>(entry.gfxState);
    return entry;
}

} // namespace renderengine
