#include "gl/PlainDraw.h"

#include "gl/BufferContainerGL.h"
#include "gl/CachePrefetch.h"
#include "gl/ShaderProgramGL.h"

namespace renderengine
{

bool PlainDraw::isCurrent(const ShaderProgramGL& program) const
{
    return m_viewStamp == BufferContainerGL::getChangeStamp() && m_linkStamp == program.getLinkStamp();
}

void PlainDraw::restart(const ShaderProgramGL& program)
{
    m_viewStamp = BufferContainerGL::getChangeStamp();
    m_linkStamp = program.getLinkStamp();
    blocks.clear();
    attributes.clear();
    ranges.clear();
}

void PlainDraw::prefetch() const
{
    prefetchElements(blocks);
    prefetchElements(attributes);
    prefetchElements(ranges);
}

} // namespace renderengine
