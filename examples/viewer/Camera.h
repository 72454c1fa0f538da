#pragma once

#include "Model.h"

namespace viewer
{

/// A perspective view of a model.
struct Camera
{
    /// World to clip coordinates, for row vectors: what OpenGL takes untransposed.
    SbMatrix viewProjection;
    SbVec3f eye;
    SbVec3f right;
    SbVec3f up;
    /// Away from what the camera looks at.
    SbVec3f back;
};

/// The camera that sees the whole model from the front, somewhat from the right and above, centred and as close as the
/// margin allows. `aspect` is width over height of the picture.
Camera fitCamera(const Model& model, float aspect);

} // namespace viewer
