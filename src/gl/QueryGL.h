#pragma once

#include <glbinding/gl.h>

#include <cstdint>

namespace renderengine
{

/// One GL query object with the target it was created for.
class QueryGL
{
public:
    /// `type` is the index of a query type: samples passed, any samples passed, the conservative form, primitives
    /// generated, transform-feedback primitives written, time elapsed, timestamp. Any other value has no target.
    void create(uint32_t type);

    /// `glDeleteQueries`, when the name is still a query.
    void destroy();

    /// `glBeginQuery`.
    void begin() const;

    /// `glEndQuery`.
    void end() const;

    /// Waits for the result and returns it: a count, 0 or 1 for the any-samples types, nanoseconds for the timers, 0
    /// for a query without a target.
    uint64_t getResult() const;

private:
    GLuint m_name = 0;
    GLenum m_target = 0;
};

} // namespace renderengine
