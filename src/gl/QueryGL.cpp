#include "gl/QueryGL.h"

#include "gl/DrawTablesGL.h"

namespace renderengine
{

void QueryGL::create(uint32_t type)
{
    glGenQueries(1, &m_name);
    m_target = type < gltables::queryTargets.size() ? *gltables::queryTargets.find(type) : GLenum{0};
}

void QueryGL::destroy()
{
    if (glIsQuery(m_name))
    {
        glDeleteQueries(1, &m_name);
    }
    m_name = 0;
}

void QueryGL::begin() const
{
    glBeginQuery(m_target, m_name);
}

void QueryGL::end() const
{
    glEndQuery(m_target);
}

uint64_t QueryGL::getResult() const
{
    switch (m_target)
    {
    case GL_SAMPLES_PASSED:
    case GL_PRIMITIVES_GENERATED:
    case GL_TRANSFORM_FEEDBACK_PRIMITIVES_WRITTEN:
    {
        GLuint result = 0;
        glGetQueryObjectuiv(m_name, GL_QUERY_RESULT, &result);
        return result;
    }
    case GL_ANY_SAMPLES_PASSED:
    case GL_ANY_SAMPLES_PASSED_CONSERVATIVE:
    {
        GLuint result = 0;
        glGetQueryObjectuiv(m_name, GL_QUERY_RESULT, &result);
        return result == 1 ? 1 : 0;
    }
    case GL_TIME_ELAPSED:
    case GL_TIMESTAMP:
    {
        GLuint64 result = 0;
        glGetQueryObjectui64v(m_name, GL_QUERY_RESULT, &result);
        return result;
    }
    default:
        return 0;
    }
}

} // namespace renderengine
