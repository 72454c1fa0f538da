#pragma once

namespace viewer
{

/// GLSL 4.10 sources of the viewer's one program. The uniform blocks mirror CameraBlock, TransformBlock and
/// MaterialBlock of SceneRenderer.cpp; all colours in them are linear.
extern const char* const c_vertexShader;
extern const char* const c_fragmentShader;

} // namespace viewer
