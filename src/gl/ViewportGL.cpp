#include "gl/ViewportGL.h"

#include <glbinding/gl.h>

namespace renderengine
{

void ViewportGL::apply() const
{
    const SbVec4i32& rectangle = m_properties.rectangle;
    glViewport(rectangle[0], rectangle[1], rectangle[2], rectangle[3]);
    glDepthRange(static_cast<GLdouble>(m_properties.depthRange[0]), static_cast<GLdouble>(m_properties.depthRange[1]));
}

} // namespace renderengine
