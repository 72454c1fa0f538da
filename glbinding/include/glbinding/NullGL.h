#pragma once

#include <glbinding/CurrentTable.h>

namespace renderengine::glbinding
{
/// A GL that does nothing, for benchmarks of the code above it: no call allocates, records or locks. Names count up,
/// compile and link status are true, framebuffers are complete, fences are signalled, the version is 4.6, buffers map
/// to a fixed block of 16 MiB that all mappings share, and everything else is 0.
///
/// The object pins its table for the thread that made it, see ScopedTable.
class NullGL
{
public:
    NullGL();

    /// The table, never null; the same for all objects. Use it with ScopedTable on further threads.
    static const GLEWContextStruct* table();

private:
    ScopedTable m_scope;
};
} // namespace renderengine::glbinding
