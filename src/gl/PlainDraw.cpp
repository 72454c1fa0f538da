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

void PlainDraw::clear()
{
    m_viewStamp = 0;
    blocks.clear();
    attributes.clear();
    ranges.clear();
}

void PlainDraw::setCurrent(const ShaderProgramGL& program)
{
    m_viewStamp = BufferContainerGL::getChangeStamp();
    m_linkStamp = program.getLinkStamp();
}

void PlainDraw::prefetch() const
{
    prefetchElements(blocks);
    prefetchElements(attributes);
    prefetchElements(ranges);
}

} // namespace renderengine
