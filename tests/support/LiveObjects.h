#pragma once

#include <glbinding/GLEWContextStruct.h>

#include <string>
#include <vector>

namespace renderengine::testing
{

/// The GL objects that were made and not deleted through the table that is watched: buffers, textures, samplers,
/// framebuffers, renderbuffers, vertex arrays, queries, shaders, programs and syncs. One table at a time, used by one
/// thread at a time.
class LiveObjects
{
public:
    /// Puts counting entries before those of the table and forgets what was counted. The table must have its own
    /// entries still.
    static void watch(GLEWContextStruct& table);

    /// One text a kind that has live objects, such as "buffers: 3 7".
    static std::vector<std::string> list();
};

} // namespace renderengine::testing
