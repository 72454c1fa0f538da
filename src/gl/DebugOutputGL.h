#pragma once

#include <glbinding/gl.h>

namespace renderengine
{

/// Turns one message of the driver into one log line at error level. Installed with glDebugMessageCallback; length and
/// userParam are not used.
///
/// `KVR_OPENGL_DEBUG_VERBOSE_LEVEL` (integer, default 0, read at the first message) is a floor: 0 shows every message,
/// 1 hides notifications, 2 also low severity, 3 also medium, 4 and above also high. Messages of an unknown severity
/// are always shown.
void GLAPIENTRY debugOutputCallback(GLenum source, GLenum type, GLuint id, GLenum severity, GLsizei length,
                                    const GLchar* message, const void* userParam);

} // namespace renderengine
