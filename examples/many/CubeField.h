#pragma once

#include "Model.h"

namespace many
{

/// A field of cubes on crossing waves: as many as asked for, each a mesh of its own with 24 vertices and 36 indices,
/// its own place and its own material. The field has the same extent whatever the number.
viewer::Model makeCubeField(unsigned count);

} // namespace many
